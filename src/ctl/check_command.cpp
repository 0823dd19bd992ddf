#include <CLI/CLI.hpp>
#include <iterator>
#include <ostream>

#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/output_form.h"
#include "leave/ledger_checks.h"

namespace owb::ctl {

namespace {

// A count that must be 0, of a table that the database may lack. A remark may be more than 0.
struct TableCheck {
    const char* table;
    const char* what;
    const char* count;
    bool remark = false;
};

constexpr TableCheck kChecks[] = {
    {"MAS_MONTHYEAR", "months without both dates, or that end before they begin",
     "SELECT COUNT(*) FROM MAS_MONTHYEAR WHERE CALCSTARTDATE IS NULL OR CALCENDDATE IS NULL OR "
     "CALCENDDATE < CALCSTARTDATE"},
    {"MAS_MONTHYEAR", "pairs of months that overlap",
     "SELECT COUNT(*) FROM MAS_MONTHYEAR A, MAS_MONTHYEAR B WHERE A.MONTHYEAR < B.MONTHYEAR AND "
     "A.CALCENDDATE >= B.CALCSTARTDATE"},
    {"MAS_EMPLOYEEDET", "versions of a head that does not exist",
     "SELECT COUNT(*) FROM MAS_EMPLOYEEDET WHERE ATTHEADID NOT IN (SELECT ATTHEADID FROM "
     "MAS_ATTHEAD)"},
    {"MAS_EMPLOYEEDET", "pairs of versions of one employee that overlap",
     "SELECT COUNT(*) FROM MAS_EMPLOYEEDET A, MAS_EMPLOYEEDET B WHERE A.EMPID = B.EMPID AND "
     "A.EMPDETID < B.EMPDETID AND ISNULL(A.EFFTODATE, '2099-12-31') >= B.EFFFROMDATE AND "
     "ISNULL(B.EFFTODATE, '2099-12-31') >= A.EFFFROMDATE"},
    {"LEV_MONTHDET", "month rows without a salary row",
     "SELECT COUNT(*) FROM LEV_MONTHDET LM WHERE NOT EXISTS (SELECT * FROM SLC_SALARYCALC_E SE "
     "WHERE SE.EMPID = LM.EMPID AND SE.EMPDETID = LM.EMPDETID AND SE.MONTHYEAR = LM.MONTHYEAR)"},
    {"LEV_MONTHDET", "keys with several month rows",
     "SELECT COUNT(*) FROM (SELECT EMPID FROM LEV_MONTHDET GROUP BY EMPID, EMPDETID, MONTHYEAR "
     "HAVING COUNT(*) > 1) D"},
    {"LEV_MONTHDET", "month rows without figures",
     "SELECT COUNT(*) FROM LEV_MONTHDET WHERE ISNULL(EDITMODEYN, 0) = 0 AND (NODCALC IS NULL OR "
     "NOD IS NULL OR NDP IS NULL)"},
    {"LEV_DETAILS", "leave rows of no leave, or of a leave that is not defined",
     "SELECT COUNT(*) FROM LEV_DETAILS WHERE LEVID = 0 OR LEVID NOT IN (SELECT LEVID FROM "
     "ATT_DEFINITION)"},
    {"LEV_DETAILS", "keys with several leave rows",
     "SELECT COUNT(*) FROM (SELECT EMPID FROM LEV_DETAILS GROUP BY EMPID, EMPDETID, LEVID, "
     "LEAVEDATE HAVING COUNT(*) > 1) D"},
    {"LEV_DETAILS", "days with two leaves on one half",
     "SELECT COUNT(*) FROM (SELECT EMPID FROM LEV_DETAILS WHERE LEVID <> 3 GROUP BY EMPID, "
     "LEAVEDATE HAVING SUM(CASE WHEN FIRSTHALFYN = 1 THEN 1 ELSE 0 END) > 1 OR SUM(CASE WHEN "
     "SECONDHALFYN = 1 THEN 1 ELSE 0 END) > 1) D"},
    {"LEV_DETAILS", "leave rows of a version that the employee has not",
     "SELECT COUNT(*) FROM LEV_DETAILS LD WHERE NOT EXISTS (SELECT * FROM MAS_EMPLOYEEDET MD WHERE "
     "MD.EMPID = LD.EMPID AND MD.EMPDETID = LD.EMPDETID)"},
    {"LEV_OTDETAILS", "keys with several overtime rows",
     "SELECT COUNT(*) FROM (SELECT EMPID FROM LEV_OTDETAILS GROUP BY EMPID, EMPDETID, OTDATE "
     "HAVING COUNT(*) > 1) D"},
    {"ATT_DAYTODAY", "keys with several register rows",
     "SELECT COUNT(*) FROM (SELECT EMPID FROM ATT_DAYTODAY GROUP BY EMPID, EMPDETID, MONTHYEAR "
     "HAVING COUNT(*) > 1) D"},
    {"ATT_DAYTODAY", "register rows without their row of numbers",
     "SELECT COUNT(*) FROM ATT_DAYTODAY WHERE ATTTRANNO NOT IN (SELECT ATTTRANNO FROM "
     "ATT_OVERTIME)"},
    {"ATT_OVERTIME", "rows of numbers without a register row",
     "SELECT COUNT(*) FROM ATT_OVERTIME WHERE ATTTRANNO NOT IN (SELECT ATTTRANNO FROM "
     "ATT_DAYTODAY)"},
    {"LEV_ALLOTMENT", "keys with several ledger rows",
     "SELECT COUNT(*) FROM (SELECT ALLOTID FROM LEV_ALLOTMENT GROUP BY ALLOTID HAVING COUNT(*) > "
     "1) D"},
    {"LEV_MONTHDET", "month rows that await recalculation",
     "SELECT COUNT(*) FROM LEV_MONTHDET WHERE EDITMODEYN = 1", true},
    {"ATT_DAYTODAY", "register rows that await recalculation",
     "SELECT COUNT(*) FROM ATT_DAYTODAY WHERE EDITMODEYN = 1", true},
    {"LEV_ALLOTMENT", "ledger rows that await recalculation",
     "SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1", true},
};

// What was found, told at once as text or held for the JSON object or the CSV at the end.
class Findings {
  public:
    Findings(std::ostream& out, const OutputForm& form)
        : out_(out), form_(form), held_(form.json || form.csv) {}

    void damaged(const std::string& what) {
        ++faults_;
        if (held_)
            all_.push_back({{"what", what}, {"fault", true}});
        else
            out_ << what << '\n';
    }
    void rows(const char* table, int64_t count, const char* what, bool remark) {
        if (!remark) ++faults_;
        if (held_)
            all_.push_back({{"table", table}, {"rows", count}, {"what", what}, {"fault", !remark}});
        else
            out_ << table << ": " << count << ' ' << what << '\n';
    }
    // Whose rows those of the last finding are.
    void employees(const ResultSet& found) {
        constexpr size_t kNamed = 20;
        if (held_)
            for (const Value& employee : found.cells)
                all_.back()["employees"].push_back(jsonOf(employee));
        if (held_ || found.rows == 0) return;
        out_ << "  employees ";
        for (size_t row = 0; row < std::min(found.rows, kNamed); ++row)
            out_ << (row > 0 ? ", " : "") << found.at(row, 0).toText();
        if (found.rows > kNamed) out_ << " and " << found.rows - kNamed << " more";
        out_ << '\n';
    }
    // Whether there was no fault.
    bool end() {
        const bool sound = faults_ == 0;
        if (form_.json)
            printJson(out_, {{"sound", sound}, {"findings", all_}});
        else if (form_.csv)
            printCsv(out_, {"fault", "table", "rows", "what", "employees"}, all_);
        else
            out_ << (sound ? "sound\n" : "not sound\n");
        return sound;
    }

  private:
    std::ostream& out_;
    const OutputForm form_;
    const bool held_;
    Json all_ = Json::array();
    size_t faults_ = 0;
};

class CheckCommand final : public Command {
  public:
    const char* name() const override { return "check"; }
    const char* summary() const override { return "Tell whether a database is sound"; }
    const char* contract() const override {
        return "Looks at the file and its catalog, and at the rows of the family's tables where\n"
               "they are there. Prints one line for each finding and \"sound\" when there is no\n"
               "fault. Rows that await recalculation are told, but are no fault. Exit status 1\n"
               "when the database is not sound.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        form_.declare(app);
    }

    int run(Streams& io) override {
        Connection connection;
        openDatabase(connection, db_);
        Findings findings(io.out, form_);
        for (const std::string& line : connection.CheckIntegrity()) findings.damaged(line);
        const auto count = [&](const char* table, const char* what, const std::string& query,
                               bool remark) {
            if (!tableExists(connection, table)) return false;
            const int64_t found = connection.Run(query).sets.front().at(0, 0).toInt();
            if (found > 0) findings.rows(table, found, what, remark);
            return found > 0;
        };
        for (const TableCheck& check : kChecks)
            count(check.table, check.what, check.count, check.remark);
        for (const bool remark : {false, true})
            for (const LedgerCheck& check : remark ? FnLedgerRemarks() : FnLedgerChecks())
                if (count("LEV_ALLOTMENT", check.what, check.count, remark) &&
                    !check.employees.empty())
                    findings.employees(connection.Run(check.employees).sets.front());
        return findings.end() ? 0 : 1;
    }

  private:
    std::string db_;
    OutputForm form_;
};

}  // namespace

std::unique_ptr<Command> makeCheckCommand() {
    return std::make_unique<CheckCommand>();
}

}  // namespace owb::ctl
