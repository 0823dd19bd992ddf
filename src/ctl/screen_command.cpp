#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <istream>
#include <ostream>

#include "app/frmMain.h"
#include "ctl/command.h"
#include "ctl/database.h"
#include "script/script_front_end.h"
#include "session/MemorySettingsStore.h"

namespace owb::ctl {

namespace {

class ScreenCommand final : public Command {
  public:
    const char* name() const override { return "screen"; }
    const char* summary() const override { return "Open a screen and drive it by script"; }
    const char* contract() const override {
        return "Does what a start of the program with that menu identifier and attendance head "
               "does,\n"
               "with a script at the keys: one command a line, # begins a comment.\n"
               "  set NAME VALUE            click NAME          menu NAME     key NAME KEY\n"
               "  cell GRID ROW COL [= TEXT]   check GRID ROW COL Yes|No   dump GRID\n"
               "  dblclick NAME [ROW COL]   rightclick GRID ROW COL        show NAME\n"
               "  answer Yes|No|Cancel|OK   file PATH   close\n"
               "Prints the screens that open and close, each box with its answer, and what is "
               "asked\n"
               "for. A line that cannot be done is told on stderr, and the status is then 1.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("MENU", menu_, "Menu identifier")->required();
        app.add_option("HEAD", head_, "Attendance head, 0 none")->required();
        app.add_option("-f,--file", file_, "Script; otherwise it is read from stdin");
        app.add_option("--user", user_, "User whose rights hold")->capture_default_str();
    }

    int run(Streams& io) override {
        std::ifstream file;
        if (!file_.empty()) {
            file.open(file_);
            if (!file) throw CommandError("cannot read \"" + file_ + "\"");
        }
        ScriptFrontEnd frontEnd(file_.empty() ? io.in : file, io.out, io.err);
        MemorySettingsStore settings;
        settings.SaveSetting("Settings", "DBType", "SQL");
        settings.SaveSetting("Settings", "User", user_);
        const auto executable = std::filesystem::read_symlink("/proc/self/exe");
        Session session(settings, frontEnd, wallClock, executable.parent_path().string());
        const int status = frmMain(session, frontEnd).RunOn(connectionString(db_), menu_, head_);
        return frontEnd.failed() ? 1 : status;
    }

  private:
    std::string db_, file_, user_ = "ADMIN";
    int32_t menu_ = 0, head_ = 0;
};

}  // namespace

std::unique_ptr<Command> makeScreenCommand() {
    return std::make_unique<ScreenCommand>();
}

}  // namespace owb::ctl
