#include <CLI/CLI.hpp>
#include <ostream>

#include "base/number_text.h"
#include "ctl/json_text.h"
#include "ctl/known_keys.h"
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
               "slice, as the last recalculation left it. LEAVE is a short name or a\n"
               "LEVID, 0 the sum of all leaves. With HEAD, a name or a number, only a slice under\n"
               "that attendance head counts.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("EMPID", employee_, "Employee")->required();
        app.add_option("LEAVE", leave_, "Leave: short name or LEVID")->required();
        app.add_option("DATE", date_, "Date as YYYY-MM-DD")->required();
        app.add_option("HEAD", head_, "Attendance head: name or number");
        app.add_flag("--json", json_, kJsonHelp);
    }

    int run(Streams& io) override {
        const auto date = parseDate(date_);
        if (!date) throw CommandError("\"" + date_ + "\" is no date (YYYY-MM-DD)");
        ReadingSession reading(db_);
        Connection& connection = reading.session.gConn;
        requireEmployee(connection, employee_);
        requireMonthOfDay(connection, isoText(*date));
        const int32_t leave = leave_ == "0" ? 0 : leaveNamed(connection, leave_).id;
        const double balance = GetClosingBalance(reading.session, employee_, leave, *date, {},
                                                 headNamed(connection, head_));
        if (json_)
            printJson(io.out, {{"employee", employee_},
                               {"leave", leave},
                               {"date", isoText(*date)},
                               {"balance", balance}});
        else
            io.out << formatNumber(balance, "0.00") << '\n';
        return 0;
    }

  private:
    std::string db_, leave_, date_, head_ = "0";
    int64_t employee_ = 0;
    bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> makeBalanceCommand() {
    return std::make_unique<BalanceCommand>();
}

}  // namespace owb::ctl
