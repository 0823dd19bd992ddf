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
               "overtime, for two years and more up to the month of the clock, or for the months\n"
               "that are told. The same options give the same rows. The last two months are open.\n"
               "What it says is not yet worked out: owbctl process does that.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "File to make")->required();
        app.add_option("--employees", options_.employees)
            ->check(CLI::Range(1, 20000))
            ->capture_default_str();
        app.add_option("--to", to_, "Last month as Mmm/YYYY; otherwise that of the clock");
        app.add_option("--from", from_, "First month as Mmm/YYYY");
        app.add_option("--months", months_, "Number of months; otherwise two years and more")
            ->check(CLI::Range(1, 240));
        app.add_option("--seed", options_.seed)->capture_default_str();
        app.add_flag("--branch-holidays", options_.branchHolidays,
                     "Holidays of branches in every year");
    }

    int run(Streams& io) override {
        readMonths();
        ProgressLine line(io);
        sample::makeSampleFile(databaseFile(db_), options_, line);
        return 0;
    }

  private:
    static int32_t monthOf(const std::string& text) {
        const int32_t month = FnLngMonthYearOfText(text);
        if (month == 0) throw CommandError("\"" + text + "\" is no month (Mmm/YYYY)");
        return month;
    }

    // Two of --from, --to and --months tell the span; the last month is that of the clock where it
    // is not told.
    void readMonths() {
        if (!from_.empty() && !to_.empty() && months_ > 0)
            throw CommandError("--from, --to and --months are one too many");
        const int32_t last = to_.empty() ? FnLngMonthYearOfDate(wallClock()) : monthOf(to_);
        const sample::SampleOptions usual = sample::optionsUpTo(last);
        options_.fromMonth = !from_.empty() ? monthOf(from_)
                             : months_ > 0  ? last - months_ + 1
                                            : usual.fromMonth;
        options_.months = months_ > 0 ? months_ : last - options_.fromMonth + 1;
        if (options_.months < 1 || options_.months > kMostMonths)
            throw CommandError("the months must be 1 to 240, the last one not before the first");
    }

    static constexpr int kMostMonths = 240;
    std::string db_, from_, to_;
    int months_ = 0;  // 0: not told
    sample::SampleOptions options_;
};

}  // namespace

std::unique_ptr<Command> makeSampleCommand() {
    return std::make_unique<SampleCommand>();
}

}  // namespace owb::ctl
