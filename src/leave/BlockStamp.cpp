#include "leave/BlockStamp.h"

#include <array>
#include <sstream>

#include "db/numbered_column.h"
#include "db/recordset.h"
#include "session/Session.h"

namespace owb {

namespace {

// A column as a whole number; NULL is a value of its own.
std::string whole(std::string column) {
    const char kind = column.back();
    if (kind == '@' || kind == '*') column.pop_back();
    if (kind == '@')
        return "CAST(DATEDIFF(DAY, '1900-01-01', ISNULL(" + column + ", '1753-01-01')) AS bigint)";
    if (kind == '*') return "ISNULL(CAST(" + column + " * 100 AS bigint), -1)";
    return "ISNULL(CAST(" + column + " AS bigint), -1)";
}

std::string weeks() {
    std::string columns = " EFFFROM WEEKID";
    for (const char* week : {"1", "2", "3", "4", "5"})
        columns += std::string(" FH") + week + "YN SH" + week + "YN";
    return columns;
}

std::string hours() {
    std::string columns = "AO.ATTTRANNO";
    for (int day = 1; day <= 31; ++day)
        columns += " ISNULL(" + numberedColumn("OTDAY", day) + ",0)*";
    return columns;
}

// The terms with an operator between them, in pairs of pairs: how deep an expression may nest is
// limited.
std::string paired(const std::string& op, const std::vector<std::string>& terms, size_t from,
                   size_t to) {
    if (to - from == 1) return terms[from];
    const size_t middle = from + (to - from) / 2;
    return "(" + paired(op, terms, from, middle) + op + paired(op, terms, middle, to) + ")";
}
std::string paired(const std::string& op, const std::vector<std::string>& terms) {
    return paired(op, terms, 0, terms.size());
}

// A text of several sums.
std::string joined(const std::vector<std::string>& sums) {
    std::vector<std::string> texts;
    for (const std::string& sum : sums) texts.push_back("CAST(" + sum + " AS varchar(20))");
    return paired(" + ' ' + ", texts);
}

// The short names stand in the cells of registers.
const std::string kShortNames =
    "ISNULL((SELECT SUM(CAST(LEVID * (LEN(LEVSHORT) + UNICODE(LEVSHORT) * 131 + "
    "ISNULL(UNICODE(SUBSTRING(LEVSHORT, 2, 1)), 0) * 8209 + ISNULL(UNICODE(SUBSTRING(LEVSHORT, 3, "
    "1)), 0) * 31) AS bigint)) FROM ATT_DEFINITION WITH (HOLDLOCK) WHERE LEVSHORT <> ''), 0)";

}  // namespace

BlockStamp::BlockStamp(Session& session, std::function<void()> forgetRules)
    : session_(session), forgetRules_(std::move(forgetRules)) {}

// Each row gives a weighted sum of its columns, and that times its own remainder, so that neither
// one column nor an exchange between two rows goes unseen. The lock keeps what was summed as it is
// until the transaction ends.
std::string BlockStamp::SumSql(const std::string& from, const std::string& columns,
                               const std::string& where) {
    static constexpr std::array<int, 8> kWeights = {7919,     104729,   1299709, 611953,
                                                    15485863, 86028121, 3571,    9973};
    std::istringstream names(columns);
    std::vector<std::string> terms;
    for (std::string name; names >> name;) {
        const size_t n = terms.size();
        terms.push_back(whole(name) + " * " +
                        std::to_string(kWeights[n % kWeights.size()] + 2 * (n / kWeights.size())));
    }
    return "ISNULL((SELECT SUM(T.H * (T.H % 1021)) FROM (SELECT ABS(" + paired(" + ", terms) +
           ") % 2147483647 AS H FROM " + from + where + ") T), 0)";
}

std::string BlockStamp::RulesSql(const Scope& scope) const {
    const auto of = [](const char* table, const std::string& columns,
                       const std::string& where = "") {
        return SumSql(std::string(table) + " WITH (HOLDLOCK)", columns, where);
    };
    std::vector<std::string> sums = {
        of("MAS_MONTHYEAR", "MONTHYEAR CALCSTARTDATE@ CALCENDDATE@ TDSPORTYN"),
        of("MAS_OPTSET", "BRGHEFROM@"),
        of("MAS_ATTHEAD",
           "ATTHEADID ATTNTIGHTYN ATTNTYPE OT1YN OT2YN NODFORCALC MINHALFDAY* MAXHALFDAY* "
           "CUTOFFHALFDAY* MINFULLDAY* MAXFULLDAY* CUTOFFFULLDAY* ATTUPPERLIMIT* OTHOURMIN "
           "NOATTOTYN HALFDAYOTYN FULLDAYOTYN HALFDAYDEDYN FULLDAYDEDYN NOATTSALAFFYN "
           "HALFATTSALAFFYN FULLATTSALAFFYN"),
        of("ATT_OPTSETTINGS",
           "ATTHEADID LOADDEFYN DEFVAL SPLOTYN WHOT2YN GHOT2YN FULLDAYOT2 HOLPRIORITY ROTWHYN "
           "AUTOALLOTYN COCWYN COMMONYN"),
        of("ATT_DEFINITION", "LEVID LEAVEYN AFFECTSALARYYN ALLOTMENTYN"),
        kShortNames,
        of("ATT_HOLIDAY", "HOLIDAYID HOLIDAYDATE@ ATTHEADID BRANCHID"),
        of("ATT_HOLEX", "HOLIDAYID ATTHEADID BRANCHID"),
        of("LEV_WEEKLYHLD", "ATTHEADID" + weeks()),
        of("LEV_WEEKLYHLDBRANCH", "BRANCHID" + weeks()),
        of("ATT_WKLYROT", "ATTHEADID EMPID WEEKDATE@ FIRSTHALFYN SECONDHALFYN",
           " WHERE EMPID = 0" + (scope.strEmployees.empty()
                                     ? " OR EMPID <> 0"
                                     : " OR (1 = 1" + scope.strEmployees + ")")),
        of("SLC_ATTHEADNOD", "ATTHEADID MONTHYEAR NOD*"),
        of("ATT_EXTRAOT", "ATTHEADID WEEKDATE@")};
    if (scope.blnLeaveRules) {
        sums.push_back(of("LEV_SETTINGS",
                          "LEVID ATTHEADID MONTHYEAR AUTOALLOTYN ALLOTTYPE ALLOTON ALLOTASPER "
                          "ALLOTFOR ALLOTRNDTYPE MINLEVDAYS* EXCLDOJYN EXCLDOLYN COYN LOWERLIMITYN "
                          "COLOWERLIMIT* UPPERLIMITYN COLIMIT* LAPSENEGATIVE LAPSEMONTH "
                          "LAPSELIMIT* RNDTYPE"));
        sums.push_back(of("LEV_ALLOTCONFIG",
                          "EFFFROM LEVID ATTHEADID ALLOTTYPE ALLOTON PERIOD NOL* FID QUERYYN"));
    }
    return joined(sums);
}

std::string BlockStamp::DataSql(const Scope& scope) const {
    const auto of = [&](const char* table, const char* columns, const std::string& further = "") {
        return SumSql(std::string(table) + " WITH (HOLDLOCK)", columns,
                      " WHERE 1 = 1" + scope.strEmployees + further);
    };
    std::vector<std::string> sums = {
        of("LEV_DETAILS", "EMPID EMPDETID LEVID LEAVEDATE@ FIRSTHALFYN SECONDHALFYN LEVMONTHLY*",
           scope.strDays),
        of("LEV_ADJUSTMENT", "EMPID EMPDETID ATTHEADID LEVID MONTHYEAR ALLOT* TAKEN* ASONDATE@"),
        of("MAS_EMPLOYEE", "EMPID DOJ@ DOL@ SALCALCFROM@"),
        of("MAS_EMPLOYEEDET", "EMPID EMPDETID EFFFROMDATE@ EFFTODATE@ ATTHEADID BRANCHID")};
    if (scope.blnHours)
        sums.push_back(SumSql("ATT_OVERTIME AO WITH (HOLDLOCK)", hours(),
                              " WHERE AO.ATTTRANNO IN (SELECT ATTTRANNO FROM ATT_DAYTODAY WITH "
                              "(HOLDLOCK) WHERE 1 = 1" +
                                  scope.strEmployees + ")"));
    if (scope.blnLeaveRules) {
        sums.push_back(of("ATT_ENCASH", "EMPID ALLOTID UPTODATE@ NOOFDAYS*"));
    }
    if (scope.blnOpenings) {
        sums.push_back(of("ATT_OPBAL", "EMPID LEVID OPBAL*"));
        sums.push_back(of("LEV_ALLOTFROM", "EMPID LEVID ALLOTFROM@"));
    }
    if (!scope.strMarked.empty()) sums.push_back(scope.strMarked);
    return joined(sums);
}

bool BlockStamp::WorkOut(const Scope& scope, const std::function<void()>& work,
                         const std::function<std::string()>& clearSql) {
    constexpr int kAttempts = 5;
    const std::string rulesSql = RulesSql(scope), dataSql = DataSql(scope);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        Recordset rs(session_.gConn, "SELECT " + rulesSql + ", " + dataSql);
        const std::string rules = rs.Fields(0).toText(), data = rs.Fields(1).toText();
        if (rules != rules_ || attempt > 0) forgetRules_();
        rules_ = rules;
        work();
        const BatchResult done = session_.gConn.ExecuteAtomic(
            "IF (" + rulesSql + ") = '" + rules + "' AND (" + dataSql + ") = '" + data +
            "' BEGIN " + clearSql() + " SELECT 1 END ELSE SELECT 0");
        if (done.sets.back().at(0, 0).toInt() == 1) return true;
    }
    return false;
}

}  // namespace owb
