#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/database.h"
#include "db/embedded/embedded_driver.h"

namespace owb::ctl {

namespace {

class BackupCommand final : public Command {
  public:
    const char* name() const override { return "backup"; }
    const char* summary() const override { return "Copy a database, also while it is in use"; }
    const char* contract() const override {
        return "The copy holds what was committed at one moment, whatever others write meanwhile;\n"
               "they need not wait. It is a database file like any other. An existing file is "
               "left\n"
               "alone: that is an error.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database file")->required();
        app.add_option("FILE", file_, "File to make")->required();
    }

    int run(Streams&) override {
        backupEmbedded(databaseFile(db_), file_);
        return 0;
    }

  private:
    std::string db_, file_;
};

}  // namespace

std::unique_ptr<Command> makeBackupCommand() {
    return std::make_unique<BackupCommand>();
}

}  // namespace owb::ctl
