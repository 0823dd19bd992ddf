#include <CLI/CLI.hpp>
#include <filesystem>
#include <ostream>

#include "app/frmMain.h"
#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/progress_line.h"
#include "script/batch_front_end.h"
#include "session/MemorySettingsStore.h"

namespace owb::ctl {

namespace {

// With nobody to answer, a warning is a failure and a question takes its default.
class ReportedBoxes final : public MessageBoxes {
  public:
    ReportedBoxes(std::ostream& errors, ProgressLine& line) : errors_(errors), line_(line) {}

    BoxAnswer show(const Box& box) override {
        if (box.icon == BoxIcon::Critical || box.icon == BoxIcon::Warning) {
            line_.clear();
            errors_ << "error: " << box.text << '\n';
            failed = true;
        }
        return box.defaultAnswer;
    }

    bool failed = false;

  private:
    std::ostream& errors_;
    ProgressLine& line_;
};

class ProcessCommand final : public Command {
  public:
    const char* name() const override { return "process"; }
    const char* summary() const override { return "Recalculate everything that is marked"; }
    const char* contract() const override {
        return "Does what a start of the program with that menu identifier does. 1600: the\n"
               "configuration pass, which installs the server objects and makes the rows that "
               "each\n"
               "month needs, then the full recalculation. 1601: the options only, then the\n"
               "recalculation without allotment. What was broken off is taken up again.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("--menu", menu_, "Menu identifier")
            ->check(CLI::IsMember({1600, 1601}))
            ->capture_default_str();
    }

    int run(Streams& io) override {
        ProgressLine line(io);
        ReportedBoxes boxes(io.err, line);
        BatchFrontEnd frontEnd(boxes, line);
        MemorySettingsStore settings;
        const auto executable = std::filesystem::read_symlink("/proc/self/exe");
        Session session(settings, frontEnd, wallClock, executable.parent_path().string());
        const int status = frmMain(session, frontEnd).RunOn(connectionString(db_), menu_, 0);
        return boxes.failed ? 1 : status;
    }

  private:
    std::string db_;
    int32_t menu_ = 1600;
};

}  // namespace

std::unique_ptr<Command> makeProcessCommand() {
    return std::make_unique<ProcessCommand>();
}

}  // namespace owb::ctl
