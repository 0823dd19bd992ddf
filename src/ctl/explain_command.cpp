#include <CLI/CLI.hpp>
#include <iomanip>
#include <ostream>

#include "ctl/reading_session.h"
#include "db/recordset.h"
#include "family/modCommon.h"
#include "leave/ExplainAllotment.h"
#include "session/queries.h"

namespace owb::ctl {

namespace {

// What the engine finds, a line each: its name in a column of its own.
class PrintedSteps final : public AllotmentSteps {
  public:
    explicit PrintedSteps(std::ostream& out) : out_(out) {}
    void step(const std::string& what, const std::string& finding) override {
        out_ << "  " << std::left << std::setw(17) << what << finding << '\n';
    }

  private:
    std::ostream& out_;
};

class ExplainCommand final : public Command {
  public:
    const char* name() const override { return "explain"; }
    const char* summary() const override {
        return "Tell how a row of the leave ledger comes about";
    }
    const char* contract() const override {
        return "Works the rows of an employee and leave in a month out before your eyes: the\n"
               "setting in force, whether the row receives a credit, the days and the fraction,\n"
               "the rounding, the row before with its closing balance piece by piece, the rule\n"
               "of carrying over and what it did. Nothing is written. Below stands what the\n"
               "ledger holds.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        app.add_option("EMPID", employee_, "Employee")->required();
        app.add_option("LEVSHORT", leave_, "Leave's abbreviation")->required();
        app.add_option("MONTH", month_, "Month as Mmm/YYYY")->required();
    }

    int run(Streams& io) override {
        const int32_t month = FnLngMonthYearOfText(month_);
        if (month == 0) throw CommandError("\"" + month_ + "\" is no month (Mmm/YYYY)");
        ReadingSession reading(db_);
        Session& session = reading.session;
        const std::string leave =
            FnVarValueOrThrow(session, "SELECT LEVID FROM ATT_DEFINITION WHERE LEVSHORT = '" +
                                           session.gSpChar.FnStrSpSQL(leave_) + "'")
                .toText();
        if (leave.empty()) throw CommandError("there is no leave \"" + leave_ + "\"");
        Recordset rows(session.gConn,
                       FnStrAllotRows("LEV_ALLOTMENT LA",
                                      "WHERE LA.EMPID = " + std::to_string(employee_) +
                                          " AND LA.LEVID = " + leave +
                                          " AND [DBO].FNLNGMONTHYEAR(LA.ALLOTFROM, LA.ALLOTTO) = " +
                                          std::to_string(month) + " ORDER BY LA.ALLOTFROM"));
        if (rows.IsEOF()) throw CommandError("the ledger holds no such row");
        PrintedSteps steps(io.out);
        for (; !rows.IsEOF(); rows.MoveNext()) {
            const AllotRow row = FnReadAllotRow(rows);
            io.out << leave_ << " of employee " << employee_ << ", " << FnStrIsoDate(row.dteFrom)
                   << " to " << FnStrIsoDate(row.dteTo) << ", head " << row.intAttHeadId << '\n';
            ExplainAllotment(session, row, steps);
            tellStored(session, row, steps);
        }
        return 0;
    }

  private:
    static void tellStored(Session& session, const AllotRow& row, AllotmentSteps& steps) {
        Recordset rs(session.gConn,
                     "SELECT ACTALLOTLEV, ALLOTLEV, COLEV, LAPSE, EDITMODEYN FROM LEV_ALLOTMENT "
                     "WHERE ALLOTID = " +
                         std::to_string(row.lngAllotId));
        auto amount = [&](const char* column) { return rs.Fields(column).toText(); };
        steps.step("in the ledger",
                   amount("COLEV") + " brought forward, " + amount("ALLOTLEV") + " allotted (" +
                       amount("ACTALLOTLEV") + " unrounded), " + amount("LAPSE") +
                       " lapsed at its close" +
                       (rs.Fields("EDITMODEYN").toBool() ? "; awaits recalculation" : ""));
    }

    std::string db_, leave_, month_;
    int64_t employee_ = 0;
};

}  // namespace

std::unique_ptr<Command> makeExplainCommand() {
    return std::make_unique<ExplainCommand>();
}

}  // namespace owb::ctl
