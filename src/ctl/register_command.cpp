#include <CLI/CLI.hpp>
#include <ostream>

#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/text_table.h"
#include "db/recordset.h"
#include "family/modCommon.h"

namespace owb::ctl {

namespace {

class RegisterCommand final : public Command {
  public:
    const char* name() const override { return "register"; }
    const char* summary() const override { return "Print the day counts of a month"; }
    const char* contract() const override {
        return "One line for each employee and slice of the month: head, salary calendar days\n"
               "(NWD), Pay Days, Present Days and overtime hours, as the last recalculation left\n"
               "them. Rows that still await one bear a star. Without --month it is the last month\n"
               "that is not locked and has begun.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("--month", month_, "Month as Mmm/YYYY");
    }

    int run(Streams& io) override {
        Connection connection;
        openDatabase(connection, db_);
        const int64_t month = chosenMonth(connection);
        const std::string monthText = std::to_string(month);
        Recordset rows(connection,
                       "SELECT ME.EMPID, ME.EMPNAME, MA.ATTHEADNAME, LM.NODCALC, LM.NOD, LM.NDP, "
                       "LM.OT1, LM.OT2, LM.EDITMODEYN FROM LEV_MONTHDET LM, MAS_EMPLOYEE ME, "
                       "MAS_EMPLOYEEDET MD, MAS_ATTHEAD MA WHERE ME.EMPID = LM.EMPID AND "
                       "MD.EMPID = LM.EMPID AND MD.EMPDETID = LM.EMPDETID AND "
                       "MA.ATTHEADID = MD.ATTHEADID AND LM.MONTHYEAR = " +
                           monthText + " ORDER BY ME.EMPID, LM.EMPDETID");
        std::vector<std::vector<std::string>> table = {
            {"Employee", "Name", "Head", "NWD", "Pay Days", "Present Days", "OT1", "OT2", ""}};
        for (; !rows.IsEOF(); rows.MoveNext()) {
            std::vector<std::string> line;
            for (size_t i = 0; i < 8; ++i) line.push_back(rows.Fields(i).toText());
            line.push_back(rows.Fields("EDITMODEYN").toBool() ? "*" : "");
            table.push_back(std::move(line));
        }
        io.out << "Register of " << FnStrMonthYearText(static_cast<int32_t>(month)) << "\n\n"
               << textTable(table);
        return 0;
    }

  private:
    int64_t chosenMonth(Connection& connection) const {
        if (!month_.empty()) {
            const int64_t month = FnLngMonthYearOfText(month_);
            if (month == 0) throw CommandError("\"" + month_ + "\" is no month (Mmm/YYYY)");
            return month;
        }
        Recordset last(connection,
                       "SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR WHERE ISNULL(LOCKEDYN, 0) = 0 "
                       "AND CALCSTARTDATE <= GETDATE()");
        if (last.Fields(0).isNull())
            throw CommandError("every month is locked; name one (--month)");
        return last.Fields(0).toInt();
    }

    std::string db_, month_;
};

}  // namespace

std::unique_ptr<Command> makeRegisterCommand() {
    return std::make_unique<RegisterCommand>();
}

}  // namespace owb::ctl
