#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <istream>
#include <ostream>

#include "app/frmMain.h"
#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/known_keys.h"
#include "qt/print/pdf_file.h"
#include "script/script_commands.h"
#include "script/script_front_end.h"
#include "session/MemorySettingsStore.h"

namespace owb::ctl {

namespace {

class ScreenCommand final : public Command {
  public:
    const char* name() const override { return "screen"; }
    const char* summary() const override { return "Open a screen and drive it by script"; }
    const char* contract() const override {
        static const std::string text =
            "Does what a start of the program with that menu identifier and attendance head does,\n"
            "with a script at the keys: one command a line, # begins a comment.\n" +
            scriptHelp() +
            "Rows and columns count what is visible, from 1; a column may be named by its "
            "caption.\n"
            "Prints the screens that open and close, each box with its answer, and what is asked\n"
            "for. A line that cannot be done is told on stderr, and the status is then 1.";
        return text.c_str();
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("MENU", menu_, "Menu identifier")->required();
        app.add_option("HEAD", head_, "Attendance head: name or number, 0 none")->required();
        app.add_option("-f,--file", file_, "Script; otherwise it is read from stdin");
        app.add_option("--user", user_, "User whose rights hold")->capture_default_str();
        app.add_option("--clock", clock_, "Today, as YYYY-MM-DD or dd/mm/yyyy");
        app.add_option("--setting", settings_, "SECTION.KEY=VALUE of the settings; repeatable")
            ->allow_extra_args(false);
        app.add_option("--folder", folder_, "The program's folder; otherwise that of owbctl");
    }

    int run(Streams& io) override {
        std::ifstream file;
        if (!file_.empty()) {
            file.open(file_);
            if (!file) throw CommandError("cannot read \"" + file_ + "\"");
        }
        ScriptFrontEnd frontEnd(file_.empty() ? io.in : file, io.out, io.err);
        frontEnd.printToPdf = printToPdf;
        MemorySettingsStore settings;
        settings.SaveSetting("Settings", "DBType", "SQL");
        settings.SaveSetting("Settings", "User", user_);
        for (const std::string& setting : settings_) writeSetting(settings, setting);
        Session session(settings, frontEnd, clock(), programFolder());
        const int status =
            frmMain(session, frontEnd).RunOn(connectionString(db_), menu_, headNumber());
        return frontEnd.failed() ? 1 : status;
    }

  private:
    int32_t headNumber() const {
        Connection connection;
        openCompany(connection, db_);
        return headNamed(connection, head_);
    }

    // The section ends at the first point: keys may hold one.
    static void writeSetting(SettingsStore& settings, const std::string& setting) {
        const size_t equals = setting.find('='), point = setting.find('.');
        if (equals == std::string::npos || point > equals || point == 0 || point + 1 == equals)
            throw CommandError("\"" + setting + "\" is no setting (SECTION.KEY=VALUE)");
        settings.SaveSetting(setting.substr(0, point),
                             setting.substr(point + 1, equals - point - 1),
                             setting.substr(equals + 1));
    }

    std::function<DateTime()> clock() const {
        if (clock_.empty()) return wallClock;
        const auto day = parseTypedDate(clock_);
        if (!day) throw CommandError("\"" + clock_ + "\" is no date (YYYY-MM-DD or dd/mm/yyyy)");
        return [day = *day] { return day; };
    }

    std::string programFolder() const {
        namespace fs = std::filesystem;
        if (folder_.empty()) return fs::read_symlink("/proc/self/exe").parent_path().string();
        if (!fs::is_directory(folder_))
            throw CommandError("there is no folder \"" + folder_ + "\"");
        return folder_;
    }

    std::string db_, file_, user_ = "ADMIN", clock_, folder_, head_;
    std::vector<std::string> settings_;
    int32_t menu_ = 0;
};

}  // namespace

std::unique_ptr<Command> makeScreenCommand() {
    return std::make_unique<ScreenCommand>();
}

}  // namespace owb::ctl
