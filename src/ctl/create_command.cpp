#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/database.h"
#include "schema/modSQLFunction.h"

namespace owb::ctl {

namespace {

class CreateCommand final : public Command {
  public:
    const char* name() const override { return "create"; }
    const char* summary() const override { return "Make a new embedded database"; }
    const char* contract() const override {
        return "The new file holds the family's tables, views and routines and the delivered "
               "rows.\n"
               "An existing file is left alone: that is an error.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "File to make")->required();
        app.add_flag("--empty", empty_, "No tables at all");
    }

    int run(Streams&) override {
        makeDatabase(db_, [this](Connection& connection) {
            if (!empty_) createFamilyDatabase(connection);
        });
        return 0;
    }

  private:
    std::string db_;
    bool empty_ = false;
};

}  // namespace

std::unique_ptr<Command> makeCreateCommand() {
    return std::make_unique<CreateCommand>();
}

}  // namespace owb::ctl
