#include <CLI/CLI.hpp>
#include <ostream>

#include "base/number_text.h"
#include "ctl/json_text.h"
#include "ctl/reading_session.h"
#include "leave/modLeaveFunctions.h"

namespace owb::ctl {

namespace {

class BalanceCommand final : public Command {
  public:
    const char* name() const override { return "balance"; }
    const char* summary() const override { return "Print the balance of a leave on a date"; }
    const char* contract() const override {
        return "The balance of the month slice that holds the date, with all leave entered in the\n"
               "slice, as the last recalculation left it. LEVID 0 is the sum of all leaves. With\n"
               "HEAD only a slice under that attendance head counts.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("EMPID", employee_, "Employee")->required();
        app.add_option("LEVID", leave_, "Leave")->required();
        app.add_option("DATE", date_, "Date as YYYY-MM-DD")->required();
        app.add_option("HEAD", head_, "Attendance head");
        app.add_flag("--json", json_, kJsonHelp);
    }

    int run(Streams& io) override {
        const auto date = parseDate(date_);
        if (!date) throw CommandError("\"" + date_ + "\" is no date (YYYY-MM-DD)");
        ReadingSession reading(db_);
        const double balance =
            GetClosingBalance(reading.session, employee_, leave_, *date, {}, head_);
        if (json_)
            printJson(io.out, {{"employee", employee_},
                               {"leave", leave_},
                               {"date", isoText(*date)},
                               {"balance", balance}});
        else
            io.out << formatNumber(balance, "0.00") << '\n';
        return 0;
    }

  private:
    std::string db_, date_;
    int64_t employee_ = 0;
    int32_t leave_ = 0, head_ = 0;
    bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> makeBalanceCommand() {
    return std::make_unique<BalanceCommand>();
}

}  // namespace owb::ctl
