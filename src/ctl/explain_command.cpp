#include <CLI/CLI.hpp>
#include <iomanip>
#include <ostream>

#include "ctl/known_keys.h"
#include "ctl/output_form.h"
#include "ctl/reading_session.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/ExplainAllotment.h"
#include "session/queries.h"

namespace owb::ctl {

namespace {

class HeldSteps final : public AllotmentSteps {
  public:
    void step(const std::string& what, const std::string& finding) override {
        all.push_back({{"what", what}, {"finding", finding}});
    }
    Json all = Json::array();
};

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
        app.add_option("LEAVE", leave_, "Leave: short name or LEVID")->required();
        app.add_option("MONTH", month_, "Month as Mmm/YYYY")->required();
        form_.declare(app);
    }

    int run(Streams& io) override {
        ReadingSession reading(db_);
        Session& session = reading.session;
        requireEmployee(session.gConn, employee_);
        const NamedLeave leave = leaveNamed(session.gConn, leave_);
        leave_ = leave.shortName;
        const int32_t month = monthNamed(session.gConn, month_);
        Recordset rows(
            session.gConn,
            FnStrAllotRows(
                "LEV_ALLOTMENT LA",
                Sql() << "WHERE LA.EMPID = " << employee_ << " AND LA.LEVID = " << leave.id
                      << " AND [DBO].FNLNGMONTHYEAR(LA.ALLOTFROM, LA.ALLOTTO) = " << month
                      << " ORDER BY LA.ALLOTFROM"));
        if (rows.IsEOF()) throw CommandError("the ledger holds no such row");
        Json told = Json::array();
        for (; !rows.IsEOF(); rows.MoveNext()) {
            const AllotRow row = FnReadAllotRow(rows);
            if (form_.json || form_.csv)
                told.push_back(jsonOfRow(session, row));
            else
                print(session, row, io.out);
        }
        if (form_.json) printJson(io.out, told);
        if (form_.csv) printCsv(io.out, {"from", "to", "head", "what", "finding"}, stepsOf(told));
        return 0;
    }

  private:
    static std::string ledgerQuery(const AllotRow& row) {
        return "SELECT COLEV AS broughtForward, ALLOTLEV AS allotted, ACTALLOTLEV AS unrounded, "
               "LAPSE AS lapsed, CAST(ISNULL(EDITMODEYN, 0) AS bit) AS awaitsRecalculation FROM "
               "LEV_ALLOTMENT WHERE "
               "ALLOTID = " +
               std::to_string(row.lngAllotId);
    }

    Json jsonOfRow(Session& session, const AllotRow& row) const {
        HeldSteps steps;
        ExplainAllotment(session, row, steps);
        return {{"leave", leave_},
                {"employee", employee_},
                {"from", FnStrIsoDate(row.dteFrom)},
                {"to", FnStrIsoDate(row.dteTo)},
                {"head", row.intAttHeadId},
                {"steps", steps.all},
                {"ledger", jsonOf(session.gConn.Run(ledgerQuery(row)).sets.front()).at(0)}};
    }

    // Every step of every row, with the span and the head of its row.
    static Json stepsOf(const Json& rows) {
        Json all = Json::array();
        for (const Json& row : rows)
            for (Json step : row.at("steps")) {
                for (const char* key : {"from", "to", "head"}) step[key] = row.at(key);
                all.push_back(std::move(step));
            }
        return all;
    }

    void print(Session& session, const AllotRow& row, std::ostream& out) const {
        out << leave_ << " of employee " << employee_ << ", " << FnStrIsoDate(row.dteFrom) << " to "
            << FnStrIsoDate(row.dteTo) << ", head " << row.intAttHeadId << '\n';
        PrintedSteps steps(out);
        ExplainAllotment(session, row, steps);
        Recordset rs(session.gConn, ledgerQuery(row));
        const auto amount = [&](const char* column) { return rs.Fields(column).toText(); };
        steps.step("in the ledger",
                   amount("broughtForward") + " brought forward, " + amount("allotted") +
                       " allotted (" + amount("unrounded") + " unrounded), " + amount("lapsed") +
                       " lapsed at its close" +
                       (rs.Fields("awaitsRecalculation").toBool() ? "; awaits recalculation" : ""));
    }

    std::string db_, leave_, month_;
    int64_t employee_ = 0;
    OutputForm form_;
};

}  // namespace

std::unique_ptr<Command> makeExplainCommand() {
    return std::make_unique<ExplainCommand>();
}

}  // namespace owb::ctl
