#include <CLI/CLI.hpp>
#include <ostream>

#include "base/csv.h"
#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/known_keys.h"
#include "ctl/output_form.h"
#include "ctl/text_table.h"
#include "db/recordset.h"
#include "db/sql_text.h"
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
        form_.declare(app);
    }

    int run(Streams& io) override {
        Connection connection;
        openCompany(connection, db_);
        const int64_t month = chosenMonth(connection);
        const std::string monthText = FnStrMonthYearText(static_cast<int32_t>(month));
        const BatchResult result = connection.Run(
            "SELECT " + sqlLiteral(monthText) +
            " AS month, ME.EMPID AS employee, ME.EMPNAME AS name, MA.ATTHEADNAME AS head, "
            "LM.NODCALC AS nwd, LM.NOD AS payDays, LM.NDP AS presentDays, LM.OT1 AS ot1, LM.OT2 AS "
            "ot2, CAST(ISNULL(LM.EDITMODEYN, 0) AS bit) AS awaitsRecalculation FROM LEV_MONTHDET "
            "LM, MAS_EMPLOYEE ME, "
            "MAS_EMPLOYEEDET MD, MAS_ATTHEAD MA WHERE ME.EMPID = LM.EMPID AND "
            "MD.EMPID = LM.EMPID AND MD.EMPDETID = LM.EMPDETID AND "
            "MA.ATTHEADID = MD.ATTHEADID AND LM.MONTHYEAR = " +
            std::to_string(month) + " ORDER BY ME.EMPID, LM.EMPDETID");
        const ResultSet& rows = result.sets.front();
        if (form_.json)
            printJson(io.out, jsonOf(rows));
        else if (form_.csv)
            io.out << csvText(rows);
        else
            io.out << "Register of " << monthText << "\n\n" << textTable(linesOf(rows));
        return 0;
    }

  private:
    int64_t chosenMonth(Connection& connection) const {
        if (!month_.empty()) return monthNamed(connection, month_);
        Recordset last(connection,
                       "SELECT MAX(MONTHYEAR) FROM MAS_MONTHYEAR WHERE ISNULL(LOCKEDYN, 0) = 0 "
                       "AND CALCSTARTDATE <= GETDATE()");
        if (last.Fields(0).isNull())
            throw CommandError("every month is locked; name one (--month)");
        return last.Fields(0).toInt();
    }

    static std::vector<std::vector<std::string>> linesOf(const ResultSet& rows) {
        std::vector<std::vector<std::string>> table = {
            {"Employee", "Name", "Head", "NWD", "Pay Days", "Present Days", "OT1", "OT2", ""}};
        for (size_t row = 0; row < rows.rows; ++row) {
            std::vector<std::string> line;
            for (size_t c = 1; c < 9; ++c) line.push_back(rows.at(row, c).toText());
            line.push_back(rows.at(row, 9).toBool() ? "*" : "");
            table.push_back(std::move(line));
        }
        return table;
    }

    std::string db_, month_;
    OutputForm form_;
};

}  // namespace

std::unique_ptr<Command> makeRegisterCommand() {
    return std::make_unique<RegisterCommand>();
}

}  // namespace owb::ctl
