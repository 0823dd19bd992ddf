#include <CLI/CLI.hpp>

#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/progress_line.h"
#include "family/modCommon.h"
#include "sample/sample.h"

namespace owb::ctl {

namespace {

class SampleCommand final : public Command {
  public:
    const char* name() const override { return "sample"; }
    const char* summary() const override { return "Make a sample company"; }
    const char* contract() const override {
        return "A new database with employees, calendars, leave rules, leave taken, hours and\n"
               "overtime over many months; the same options give the same rows. What it says is\n"
               "not yet worked out: owbctl process does that.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "File to make")->required();
        app.add_option("--employees", options_.employees)
            ->check(CLI::Range(1, 20000))
            ->capture_default_str();
        app.add_option("--months", options_.months)
            ->check(CLI::Range(1, 240))
            ->capture_default_str();
        app.add_option("--from", from_, "First month as Mmm/YYYY")->capture_default_str();
        app.add_option("--seed", options_.seed)->capture_default_str();
    }

    int run(Streams& io) override {
        options_.fromMonth = FnLngMonthYearOfText(from_);
        if (options_.fromMonth == 0) throw CommandError("\"" + from_ + "\" is no month (Mmm/YYYY)");
        ProgressLine line(io);
        sample::makeSampleFile(databaseFile(db_), options_, line);
        return 0;
    }

  private:
    std::string db_;
    std::string from_ = "Apr/2024";
    sample::SampleOptions options_;
};

}  // namespace

std::unique_ptr<Command> makeSampleCommand() {
    return std::make_unique<SampleCommand>();
}

}  // namespace owb::ctl
