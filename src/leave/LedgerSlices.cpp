// The rows of LEV_ALLOTMENT in step with the masters: one slice for each salary row and allot-from
// date. A row whose slice changes in its dates, version or head is changed in place, so that its
// number, the credit entered in it and its encashments stay. Of a month that is divided the row
// stays with the part that holds its first day. Rows of months whose tax has been ported stay as
// they are.
//
// For each employee and leave one transaction marks, changes and takes out rows; missing rows then
// come in one more. Encashments follow the slice that holds their day when all rows are there.
#include <algorithm>
#include <limits>
#include <map>
#include <vector>

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/ConfiguredState.h"
#include "leave/EmployeeBlocks.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"

namespace owb {

namespace {

// Slices as the masters want them, as a table W: one for each salary row and allot-from date, from
// the head's first settings of the leave on; up to the first month.
constexpr const char* kWanted =
    " FROM (SELECT SE.EMPID, MD.ATTHEADID, SE.EMPDETID, LA.LEVID, "
    "SE.MONTHYEAR, CASE WHEN LA.ALLOTFROM >= MM.CALCSTARTDATE THEN (CASE WHEN LA.ALLOTFROM >= "
    "MD.EFFFROMDATE THEN LA.ALLOTFROM ELSE MD.EFFFROMDATE END) ELSE (CASE WHEN MM.CALCSTARTDATE "
    ">= MD.EFFFROMDATE THEN MM.CALCSTARTDATE ELSE MD.EFFFROMDATE END) END AS ALLOTFROM, CASE WHEN "
    "ME.DOL <= E.LASTDATE THEN ME.DOL ELSE E.LASTDATE END AS ALLOTTO FROM SLC_SALARYCALC_E SE "
    "INNER JOIN MAS_EMPLOYEEDET MD ON MD.EMPID = SE.EMPID AND MD.EMPDETID = SE.EMPDETID INNER JOIN "
    "MAS_EMPLOYEE ME ON ME.EMPID = SE.EMPID INNER JOIN MAS_MONTHYEAR MM ON MM.MONTHYEAR = "
    "SE.MONTHYEAR INNER JOIN LEV_ALLOTFROM LA ON LA.EMPID = SE.EMPID INNER JOIN (SELECT "
    "LEVID,ATTHEADID,MIN(MONTHYEAR) AS MONTHYEAR FROM LEV_SETTINGS GROUP BY LEVID,ATTHEADID) TEMP "
    "ON TEMP.LEVID = LA.LEVID AND TEMP.ATTHEADID = MD.ATTHEADID AND SE.MONTHYEAR >= TEMP.MONTHYEAR "
    "CROSS APPLY (SELECT CASE WHEN MD.EFFTODATE < MM.CALCENDDATE THEN MD.EFFTODATE ELSE "
    "MM.CALCENDDATE END AS LASTDATE) E WHERE ISNULL(MM.TDSPORTYN, 0) <> 1 AND SE.MONTHYEAR >= ";

// Whether a wanted row is the ledger's.
std::string sameRow(const std::string& wanted) {
    std::string same;
    for (const char* column : {"EMPID", "LEVID", "ALLOTFROM", "ALLOTTO", "EMPDETID", "ATTHEADID"})
        same +=
            (same.empty() ? "" : " AND ") + wanted + "." + column + " = LEV_ALLOTMENT." + column;
    return same;
}

// Marks the rows of employees and leaves from a year before the first row in a list: the longest
// period whose credit may rest on it.
std::string markPeriods(const std::string& rows) {
    return " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM LEV_ALLOTMENT LA, (SELECT EMPID, LEVID, "
           "DATEADD(YEAR, -1, MIN(ALLOTFROM)) AS SINCE FROM " +
           rows +
           " GROUP BY EMPID, LEVID) C WHERE LA.EMPID = C.EMPID AND LA.LEVID = C.LEVID AND "
           "LA.ALLOTFROM >= C.SINCE AND LA.EDITMODEYN <> 1";
}

// Raises the last number that was ever given to a ledger row; numbers are not given again.
constexpr const char* kKeepLastAllotId =
    " IF NOT EXISTS (SELECT * FROM LEV_CONFIGURED WHERE WHAT = 'ALLOTID') INSERT INTO "
    "LEV_CONFIGURED (WHAT, SEEN) VALUES ('ALLOTID', '0') UPDATE LEV_CONFIGURED SET SEEN = (SELECT "
    "MAX(N) FROM (SELECT MAX(ALLOTID) AS N FROM LEV_ALLOTMENT WITH (TABLOCKX, HOLDLOCK) UNION ALL "
    "SELECT MAX(ALLOTID) FROM ATT_ENCASH UNION ALL SELECT CAST(SEEN AS int) FROM LEV_CONFIGURED "
    "WHERE WHAT = 'ALLOTID') T) WHERE WHAT = 'ALLOTID'";

// Payroll months whose tax has been ported, as a condition that leaves their rows out.
std::string notPorted(Session& session) {
    std::string condition;
    DateTime last;
    for (Recordset rs(session.gConn,
                      "SELECT CALCSTARTDATE, CALCENDDATE FROM MAS_MONTHYEAR WHERE TDSPORTYN = 1 "
                      "ORDER BY CALCSTARTDATE");
         !rs.IsEOF(); rs.MoveNext()) {
        const DateTime from = rs.Fields(0).toDate();
        if (condition.empty() || last.plusDays(1) != from)
            condition += (condition.empty() ? "" : literal(last)) +
                         " AND LEV_ALLOTMENT.ALLOTFROM NOT BETWEEN " + literal(from) + " AND ";
        last = rs.Fields(1).toDate();
    }
    return condition.empty() ? "" : condition + literal(last);
}

// One run over all employees.
class LedgerSlices {
  public:
    LedgerSlices(Session& session, const std::function<void(const char*)>& status)
        : session_(session), status_(status), notPorted_(notPorted(session)) {}

    void Reconcile() {
        for (const EmployeeBlock& block : Blocks()) ReconcileBlock(block);
        MoveEncashments();
    }

  private:
    struct Slice {
        int64_t lngAllotId = 0;  // 0: wanted, not there yet
        int64_t lngEmpDetId = 0, intAttHeadId = 0;
        DateTime dteFrom, dteTo;
        bool Holds(DateTime day) const { return dteFrom <= day && day <= dteTo; }
        bool Meets(const Slice& other) const {
            return dteFrom <= other.dteTo && other.dteFrom <= dteTo;
        }
    };
    // Of one employee, leave and month.
    struct Month {
        std::vector<Slice> stray;    // rows that are not wanted as they are
        std::vector<Slice> missing;  // wanted, no row is like them
        std::vector<Slice> kept;     // rows that are wanted
    };
    using Months = std::map<int32_t, Month>;
    using Chains = std::map<std::pair<int64_t, int64_t>, Months>;  // by employee and leave

    std::vector<EmployeeBlock> Blocks();
    void ReconcileBlock(const EmployeeBlock& block);
    bool InStep(const EmployeeBlock& block, const std::string& wanted);
    Chains StrayChains(const EmployeeBlock& block);
    void ChangeChain(int64_t lngEmpId, int64_t intLevId, Months& months);
    std::string ChangeMonth(Month& month);
    void InsertMissing();
    void MoveEncashments();

    Session& session_;
    const std::function<void(const char*)>& status_;
    const std::string notPorted_;
};

constexpr const char* kDropWanted =
    "IF OBJECT_ID('tempdb..#TEMPTABLE1') IS NOT NULL DROP TABLE #TEMPTABLE1 IF "
    "OBJECT_ID('tempdb..#TEMPTABLE2') IS NOT NULL DROP TABLE #TEMPTABLE2";

// All numbers that an employee may have, so that rows of employees who are no more are found, too.
std::vector<EmployeeBlock> LedgerSlices::Blocks() {
    constexpr size_t kEmployeesAtOnce = 2000;
    const EmployeeBlocks employees(session_, "EMPID", " FROM MAS_EMPLOYEE", kEmployeesAtOnce);
    std::vector<EmployeeBlock> blocks(employees.begin(), employees.end());
    if (blocks.empty()) blocks.push_back({});
    for (size_t i = 1; i < blocks.size(); ++i) blocks[i - 1].lngLast = blocks[i].lngFirst - 1;
    blocks.front().lngFirst = std::numeric_limits<int32_t>::min();
    blocks.back().lngLast = std::numeric_limits<int32_t>::max();
    return blocks;
}

void LedgerSlices::ReconcileBlock(const EmployeeBlock& block) {
    status_("Deleteing unwanted records...");
    const std::string wanted = Sql() << kWanted << session_.gFeature.LVSTARTMNYEAR
                                     << block.Of("SE.EMPID") << " ) W";
    if (InStep(block, wanted)) return status_("Inserting missing records...");
    session_.gConn.Execute(kDropWanted);
    session_.gConn.Execute(
        "SELECT DISTINCT W.EMPID, W.ATTHEADID, W.EMPDETID, W.LEVID, W.MONTHYEAR, W.ALLOTFROM, "
        "W.ALLOTTO INTO #TEMPTABLE1" +
        wanted + " WHERE W.ALLOTFROM <= W.ALLOTTO");
    session_.gConn.Execute("CREATE INDEX IX_TEMPTABLE1 ON #TEMPTABLE1 (EMPID, LEVID, ALLOTFROM)");
    Chains chains = StrayChains(block);
    for (auto& [key, months] : chains) ChangeChain(key.first, key.second, months);
    status_("Inserting missing records...");
    InsertMissing();
    session_.gConn.Execute(kDropWanted);
}

// Whether every wanted row stands and no other: what almost every start finds.
bool LedgerSlices::InStep(const EmployeeBlock& block, const std::string& wanted) {
    Recordset rs(session_.gConn,
                 "SELECT COUNT(*), COUNT(LEV_ALLOTMENT.ALLOTID), (SELECT COUNT(*) FROM "
                 "LEV_ALLOTMENT WHERE 1 = 1" +
                     block.Of("EMPID") + notPorted_ + ")" + wanted +
                     " LEFT JOIN LEV_ALLOTMENT ON " + sameRow("W") +
                     " WHERE W.ALLOTFROM <= W.ALLOTTO");
    const int64_t standing = rs.Fields(1).toInt();
    return rs.Fields(0).toInt() == standing && rs.Fields(2).toInt() == standing;
}

// The months of every chain in which some row is not wanted as it is.
LedgerSlices::Chains LedgerSlices::StrayChains(const EmployeeBlock& block) {
    Chains chains;
    const std::string stray =
        "LEV_ALLOTMENT WHERE NOT EXISTS (SELECT * FROM #TEMPTABLE1 T1 WHERE " + sameRow("T1") +
        ")" + block.Of("LEV_ALLOTMENT.EMPID") + notPorted_;
    const auto slice = [](Recordset& rs) {
        return Slice{rs.Fields("ALLOTID").toInt(), rs.Fields("EMPDETID").toInt(),
                     rs.Fields("ATTHEADID").toInt(), rs.Fields("ALLOTFROM").toDate(),
                     rs.Fields("ALLOTTO").toDate()};
    };
    const auto monthOf = [&](Recordset& rs) -> Month& {
        return chains[{rs.Fields("EMPID").toInt(), rs.Fields("LEVID").toInt()}]
                     [static_cast<int32_t>(rs.Fields("MONTHYEAR").toInt())];
    };
    for (Recordset rs(session_.gConn,
                      "SELECT *, [dbo].FnLngMonthYear(ALLOTFROM, ALLOTFROM) AS MONTHYEAR FROM " +
                          stray + " ORDER BY EMPID, LEVID, ALLOTFROM, EMPDETID");
         !rs.IsEOF(); rs.MoveNext())
        monthOf(rs).stray.push_back(slice(rs));
    if (chains.empty()) return chains;
    for (Recordset rs(
             session_.gConn,
             "SELECT W.*, LEV_ALLOTMENT.ALLOTID FROM #TEMPTABLE1 W LEFT JOIN LEV_ALLOTMENT "
             "ON " +
                 sameRow("W") + " WHERE W.EMPID IN (SELECT EMPID FROM " + stray +
                 ") ORDER BY W.EMPID, W.LEVID, W.ALLOTFROM, W.EMPDETID");
         !rs.IsEOF(); rs.MoveNext()) {
        if (!chains.count({rs.Fields("EMPID").toInt(), rs.Fields("LEVID").toInt()})) continue;
        Month& month = monthOf(rs);
        (rs.Fields("ALLOTID").isNull() ? month.missing : month.kept).push_back(slice(rs));
    }
    return chains;
}

// Each stray row becomes a missing one of its month, first that which holds its first day; what
// finds none goes, and its credit and encashments go to a row of the month that stays.
std::string LedgerSlices::ChangeMonth(Month& month) {
    Sql batch;
    std::vector<Slice> gone;
    for (const Slice& row : month.stray) {
        const auto find = [&](const auto& fits) {
            return std::find_if(month.missing.begin(), month.missing.end(), fits);
        };
        auto wanted = find([&](const Slice& w) { return w.Holds(row.dteFrom); });
        if (wanted == month.missing.end())
            wanted = find([&](const Slice& w) { return w.Meets(row); });
        if (wanted == month.missing.end()) wanted = month.missing.begin();
        if (wanted == month.missing.end()) {
            gone.push_back(row);
            continue;
        }
        // Versions are other programs' rows: their dates may carry a time of day, the ledger's
        // none.
        batch << " UPDATE LEV_ALLOTMENT SET EMPDETID = " << wanted->lngEmpDetId
              << ", ATTHEADID = " << wanted->intAttHeadId
              << ", ALLOTFROM = " << FnStrIsoLiteral(wanted->dteFrom)
              << ", ALLOTTO = " << FnStrIsoLiteral(wanted->dteTo)
              << ", EDITMODEYN = 1 WHERE ALLOTID = " << row.lngAllotId;
        wanted->lngAllotId = row.lngAllotId;
        month.kept.push_back(*wanted);
        month.missing.erase(wanted);
    }
    for (const Slice& row : gone) {
        const std::string ofRow = Sql() << " WHERE ALLOTID = " << row.lngAllotId;
        if (!month.kept.empty()) {
            auto heir = std::find_if(month.kept.begin(), month.kept.end(),
                                     [&](const Slice& k) { return k.Holds(row.dteFrom); });
            if (heir == month.kept.end()) heir = std::prev(month.kept.end());
            batch << " UPDATE LEV_ALLOTMENT SET ALLOTLEV = ISNULL(ALLOTLEV, 0) + ISNULL((SELECT "
                     "ALLOTLEV FROM LEV_ALLOTMENT"
                  << ofRow << "), 0) WHERE ALLOTID = " << heir->lngAllotId
                  << " UPDATE ATT_ENCASH SET ALLOTID = " << heir->lngAllotId << ofRow;
        }
        batch << " DELETE FROM LEV_ALLOTMENT" << ofRow;
    }
    return batch;
}

void LedgerSlices::ChangeChain(int64_t lngEmpId, int64_t intLevId, Months& months) {
    std::string changes, rows;
    for (auto& [key, month] : months) {
        for (const Slice& row : month.stray)
            rows += (rows.empty() ? "" : ",") + std::to_string(row.lngAllotId);
        if (!month.stray.empty()) changes += ChangeMonth(month);
    }
    session_.gConn.ExecuteAtomic(markPeriods(Sql() << "LEV_ALLOTMENT WHERE EMPID = " << lngEmpId
                                                   << " AND LEVID = " << intLevId
                                                   << " AND ALLOTID IN (" << rows << ")") +
                                 changes);
}

// A row that only goes on where the one before it ends changes nothing that stands already: the
// pass itself marks what follows. Any other may be the first of a period, or cut one short: by the
// end of service, by another version or setting. A slice that has come meanwhile is not made twice.
void LedgerSlices::InsertMissing() {
    session_.gConn.Execute(
        std::string("SELECT T1.* INTO #TEMPTABLE2 FROM #TEMPTABLE1 T1 WHERE NOT EXISTS (SELECT * "
                    "FROM LEV_ALLOTMENT WHERE ") +
        sameRow("T1") + ")");
    if (Recordset(session_.gConn, "SELECT TOP 1 EMPID FROM #TEMPTABLE2").IsEOF()) return;
    session_.gConn.ExecuteAtomic(
        std::string(kKeepLastAllotId) +
        markPeriods(
            "#TEMPTABLE2 T2 WHERE NOT EXISTS (SELECT * FROM #TEMPTABLE1 T1 WHERE T1.EMPID = "
            "T2.EMPID AND T1.LEVID = T2.LEVID AND T1.ALLOTTO = T2.ALLOTFROM - 1 AND T1.EMPDETID = "
            "T2.EMPDETID AND T1.MONTHYEAR = T2.MONTHYEAR - 1) OR EXISTS (SELECT * FROM "
            "LEV_SETTINGS LS WHERE LS.LEVID = T2.LEVID AND LS.ATTHEADID = T2.ATTHEADID AND "
            "LS.MONTHYEAR = T2.MONTHYEAR) OR EXISTS (SELECT * FROM MAS_EMPLOYEE ME WHERE ME.EMPID "
            "= T2.EMPID AND ME.DOL = T2.ALLOTTO)") +
        " INSERT INTO LEV_ALLOTMENT(ALLOTID, EMPID, ATTHEADID, EMPDETID, LEVID, ALLOTFROM, "
        "ALLOTTO, ACTALLOTLEV, ALLOTLEV, COLEV, LAPSE, EDITMODEYN) (SELECT (ROW_NUMBER() OVER "
        "(ORDER BY EMPID, LEVID, ALLOTFROM, EMPDETID) + (SELECT CAST(SEEN AS int) FROM "
        "LEV_CONFIGURED WHERE WHAT = 'ALLOTID')) AS ALLOTID, EMPID, ATTHEADID, EMPDETID, LEVID, "
        "ALLOTFROM, ALLOTTO, 0, 0, 0, 0, 1 FROM #TEMPTABLE2 T2 WHERE NOT EXISTS (SELECT * FROM "
        "LEV_ALLOTMENT WHERE " +
        sameRow("T2") + "))" + kKeepLastAllotId);
}

// The closing of a slice counts the encashments whose day it holds; by its number an encashment
// belongs to the same one.
void LedgerSlices::MoveEncashments() {
    const std::string moved =
        " FROM ATT_ENCASH AE, LEV_ALLOTMENT LA, LEV_ALLOTMENT HOLDS WHERE AE.ALLOTID = LA.ALLOTID "
        "AND LA.EMPID = AE.EMPID AND HOLDS.EMPID = LA.EMPID AND HOLDS.LEVID = LA.LEVID AND "
        "AE.UPTODATE BETWEEN HOLDS.ALLOTFROM AND HOLDS.ALLOTTO AND AE.UPTODATE NOT BETWEEN "
        "LA.ALLOTFROM AND LA.ALLOTTO";
    if (Recordset(session_.gConn, "SELECT TOP 1 AE.EMPID" + moved).IsEOF()) return;
    session_.gConn.ExecuteAtomic("UPDATE ATT_ENCASH SET ALLOTID = HOLDS.ALLOTID" + moved);
}

}  // namespace

void KeepLastAllotId(Session& session) {
    session.gConn.ExecuteAtomic(kKeepLastAllotId);
}

void ReconcileLedgerRows(Session& session, const std::function<void(const char*)>& status) {
    InstallPassTables(session);
    LedgerSlices(session, status).Reconcile();
}

}  // namespace owb
