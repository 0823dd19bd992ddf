// The bulk pass: a statement for each step of a month, over all of its marked rows. The month's
// rows are copied into a work table, get their openings there and are written back together with
// the marks that they clear. An employee with two rows of one leave in the month is taken row by
// row afterwards.
#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/AllotmentPass.h"
#include "leave/slice_sql.h"
#include "schema/modSQLFunction.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

// Settings of the row's month under the predecessor's head.
std::string settingsOf(int32_t lngMonthYear) {
    return Sql() << ", UDF_LSET(" << lngMonthYear
                 << ") LSET WHERE LSET.LEVID = TMPALLOT.LEVID AND LSET.ATTHEADID = "
                    "TMPALLOT.PREVATTHEADID AND PREVALLOTID <> 0";
}

}  // namespace

bool AllotmentPass::ProcessAllotments() {
    CreateLeaveSummaryView(session_);
    CreatePeriodViews(session_);
    total_ = static_cast<size_t>(
        FnVarValueOrThrow(
            session_,
            "DECLARE @TMP AS INTEGER SELECT @TMP = COUNT(*) FROM LEV_ALLOTMENT LEV,LEV_SETTINGS LS "
            "WHERE LEV.LEVID = LS.LEVID AND LEV.ATTHEADID = LS.ATTHEADID AND EDITMODEYN = 1 AND "
            "LS.LEVID <> 2 AND AUTOALLOTYN = 1 AND LS.MONTHYEAR = (SELECT MAX(MONTHYEAR) FROM "
            "LEV_SETTINGS WHERE LEVID = LS.LEVID AND ATTHEADID = LS.ATTHEADID AND MONTHYEAR <= "
            "[DBO].FNLNGMONTHYEAR(LEV.ALLOTFROM, LEV.ALLOTTO)) SELECT @TMP",
            0)
            .toInt());
    bool any = false, settled = true;
    for (int32_t month = NextMonth(0); month != 0 && !frm_.cancelled(); month = NextMonth(month)) {
        any = true;
        settled &= ProcessAllotmentMonth(month);
    }
    if (any && !frm_.cancelled()) frm_.status("Processing Leave Allotment 100.00% Completed.");
    session_.gConn.Execute(tmp_.drop);
    session_.gConn.Execute(prev_.drop);
    return settled;
}

// Employees with two rows of one leave in the month, a change of version: one opens from the other.
std::string AllotmentPass::DividedEmployees(const std::string& strInMonth) {
    return FnVarValueOrThrow(
               session_,
               "DECLARE @TMP AS NVARCHAR(MAX) SET @TMP = '0' SELECT @TMP = @TMP + ',' + CAST(EMPID "
               "AS NVARCHAR(MAX)) FROM (SELECT DISTINCT EMPID FROM LEV_ALLOTMENT LA WHERE " +
                   strInMonth + " GROUP BY EMPID,LEVID Having Count(EMPID) > 1 ) TMP SELECT @TMP",
               "0")
        .toText();
}

// The first month after another that holds marked rows; 0 none. Asked after each month, since its
// rows mark later ones.
int32_t AllotmentPass::NextMonth(int32_t lngAfter) {
    return static_cast<int32_t>(
        FnVarValueOrThrow(
            session_,
            Sql() << "SELECT TOP 1 MONTHYEAR FROM MAS_MONTHYEAR MM WHERE MONTHYEAR > " << lngAfter
                  << " AND EXISTS (SELECT * FROM LEV_ALLOTMENT ALLOT,ATT_DEFINITION LEV WHERE "
                     "LEV.LEVID = ALLOT.LEVID AND LEV.ALLOTMENTYN = 1 AND ALLOT.ALLOTFROM BETWEEN "
                     "CALCSTARTDATE AND CALCENDDATE AND ALLOT.EDITMODEYN = 1) ORDER BY MONTHYEAR",
            0)
            .toInt());
}

bool AllotmentPass::ProcessAllotmentMonth(int32_t lngMonthYear) {
    DateTime from, to;
    calc_.periods.GetMonthBounds(lngMonthYear, from, to);
    const std::string inMonth = Sql() << "LA.ALLOTFROM BETWEEN " << from << " AND " << to;
    const BlockStamp::Scope scope{
        "", Sql() << " AND LEAVEDATE BETWEEN " << from << " AND " << to,
        BlockStamp::SumSql("LEV_ALLOTMENT LA WITH (HOLDLOCK)", "ALLOTID",
                           " WHERE ISNULL(LA.EDITMODEYN, 0) = 1 AND " + inMonth),
        false, true};
    const size_t before = done_;
    const auto work = [&] {
        done_ = before;
        calc_.ForgetDays();
        strDuplicates_ = DividedEmployees(inMonth);
        BuildWorkTable(lngMonthYear, inMonth);
        CompensatoryOff();
        AutoAllotments();
        if (frm_.cancelled()) return;
        Openings();
        Closings(lngMonthYear);
        CarryOver(lngMonthYear);
        WithinPeriod(lngMonthYear);
    };
    const bool settled =
        stamp_.WorkOut(scope, work, [&] { return frm_.cancelled() ? "" : WriteBackSql(); });
    if (strDuplicates_ == "0" || frm_.cancelled()) return settled;
    return RowByRow(" AND " + inMonth + " AND LA.EMPID IN (" + strDuplicates_ + ")") && settled;
}

void AllotmentPass::BuildWorkTable(int32_t lngMonthYear, const std::string& strInMonth) {
    session_.gConn.Execute(tmp_.drop);
    session_.gConn.Execute(
        Sql()
        << "SELECT ISNULL(LA.ALLOTID,0) AS ALLOTID, LA.EMPID, LA.ATTHEADID,LA.EMPDETID, LA.LEVID, "
           "LA.ALLOTFROM, LA.ALLOTTO, LS.AUTOALLOTYN, LA.ALLOTLEV, LA.ACTALLOTLEV, CAST(0 AS "
           "NUMERIC(15,2)) AS COLEV, CAST(0 AS NUMERIC(15,2)) AS LAPSE, CAST(0 AS NUMERIC(15,2)) "
           "AS TAKENADJ, CAST(0 AS NUMERIC(15,2)) AS AVAILED, CAST(0 AS NUMERIC(15,2)) AS OPBAL, "
           "CAST(0 AS NUMERIC(15,2)) AS CLSBAL, ISNULL(PV.ALLOTID,0) AS PREVALLOTID, "
           "ISNULL(PV.ATTHEADID,0) AS PREVATTHEADID INTO "
        << tmp_.name << " FROM LEV_ALLOTMENT LA INNER JOIN UDF_LSET(" << lngMonthYear
        << ") LS ON LA.ATTHEADID = LS.ATTHEADID  AND LA.LEVID = LS.LEVID" << slice_sql::kRowBefore
        << " WHERE LA.EMPID NOT IN (" << strDuplicates_ << ") AND " << strInMonth
        << " AND [DBO].FNLNGMONTHYEAR( LA.ALLOTFROM, LA.ALLOTTO)  = " << lngMonthYear
        << " AND LA.EDITMODEYN = 1");
    session_.gConn.Execute(tmp_.key("ALLOTID"));
}

void AllotmentPass::CompensatoryOff() {
    session_.gConn.Execute(Sql() << "UPDATE LEV_ALLOTMENT SET ALLOTLEV = "
                                 << slice_sql::compensatoryWork("LEV_ALLOTMENT")
                                 << " WHERE ALLOTID IN (SELECT ALLOTID FROM " << tmp_.name
                                 << " WHERE LEVID = 2)");
}

// A row that fails leaves the month.
void AllotmentPass::AutoAllotments() {
    Recordset rs(session_.gConn, FnStrAllotRows(tmp_.name + " LA",
                                                "WHERE LA.LEVID <> 2 AND LA.AUTOALLOTYN = 1 ORDER "
                                                "BY LA.EMPID, LA.LEVID"));
    for (; !rs.IsEOF() && !frm_.cancelled(); rs.MoveNext()) {
        showPercent();
        const AllotRow row = FnReadAllotRow(rs);
        if (failures_.Has(row.lngAllotId) ||
            !failures_.Attempt(row.lngEmpId, row.lngAllotId, [&] { WriteCredit(row); }))
            session_.gConn.Execute(Sql() << "DELETE FROM " << tmp_.name
                                         << " WHERE ALLOTID = " << row.lngAllotId);
    }
}

void AllotmentPass::showPercent() {
    const double percent =
        total_ == 0
            ? 100
            : std::min(100.0, static_cast<double>(done_) * 100.0 / static_cast<double>(total_));
    const std::string shown = formatNumber(percent, "#0.00");
    if (shown == percent_) return;
    percent_ = shown;
    frm_.status("Processing Leave Allotment " + shown + "% Completed.");
    frm_.step(done_, total_);
}

void AllotmentPass::Openings() {
    const std::string from = "'" + dateText(calc_.periods.LeaveStart(), "yyyy/MM/dd") + "'",
                      &tmp = tmp_.name;
    session_.gConn.Execute(
        Sql() << "UPDATE " << tmp << " SET TAKENADJ = " << slice_sql::openingTaken(tmp, from)
              << ", AVAILED = " << slice_sql::openingAvailed(tmp, from) << ", OPBAL = "
              << slice_sql::openingBalance(tmp) << " WHERE PREVALLOTID = 0 UPDATE " << tmp
              << " SET COLEV = OPBAL - (AVAILED + TAKENADJ),LAPSE = 0  WHERE PREVALLOTID = 0");
}

void AllotmentPass::Closings(int32_t lngMonthYear) {
    const std::string &tmp = tmp_.name, &prev = prev_.name;
    session_.gConn.Execute(prev_.drop);
    session_.gConn.Execute(
        Sql() << "SELECT *,[DBO].FNLNGMONTHYEAR(ALLOTFROM, ALLOTTO) AS MONTHYEAR INTO " << prev
              << " FROM LEV_ALLOTMENT  WHERE ALLOTID IN(SELECT PREVALLOTID FROM " << tmp << ")");
    session_.gConn.Execute(prev_.key("ALLOTID"));
    // A predecessor that lies before the allot-from date closes at nothing.
    session_.gConn.Execute(
        Sql() << "UPDATE " << tmp << " SET OPBAL = -1000 FROM " << tmp << " TMPALLOT, " << prev
              << " TMPPREV,ATT_DEFINITION AD,LEV_ALLOTFROM LA Where TMPALLOT.PREVALLOTID = "
                 "TMPPREV.ALLOTID And LA.LEVID = AD.LEVID And TMPPREV.EMPID = LA.EMPID AND "
                 "TMPALLOT.LEVID = LA.LEVID AND AD.ALLOTMENTYN = 1 AND LA.ALLOTFROM > "
                 "TMPPREV.ALLOTTO AND PREVALLOTID <> 0");
    session_.gConn.Execute(
        Sql() << "UPDATE " << tmp
              << " SET CLSBAL = [dbo].FnDblRndOff(ISNULL(TMPPREV.ALLOTLEV, 0) + "
                 "ISNULL(TMPPREV.COLEV, 0) + "
              << slice_sql::adjusted("TMPPREV", "TMPPREV.MONTHYEAR") << " - ("
              << slice_sql::encashed("TMPPREV") << " + " << slice_sql::availed("TMPPREV")
              << "), LSET.RNDTYPE) FROM " << tmp << " TMPALLOT, " << prev << " TMPPREV"
              << settingsOf(lngMonthYear)
              << " AND TMPALLOT.PREVALLOTID = TMPPREV.ALLOTID AND TMPALLOT.OPBAL <> -1000");
}

void AllotmentPass::CarryOver(int32_t lngMonthYear) {
    const std::string& tmp = tmp_.name;
    const std::string due = Sql() << "ISNULL(LAPSEMONTH,0) <> 0 AND " << (lngMonthYear - 1) % 12 + 1
                                  << " = CASE WHEN LAPSEMONTH = 12 THEN 1 ELSE LAPSEMONTH + 1 END";
    const std::string kept =
        "CASE WHEN CLSBAL >= ISNULL(LAPSELIMIT,0) THEN ISNULL(LAPSELIMIT,0) ELSE CLSBAL END";
    const std::string negative = "ISNULL(LAPSENEGATIVE,0) <> 0 AND " + kept + " < 0";
    const std::string above = "UPPERLIMITYN = 1 AND CLSBAL >= ISNULL(COLIMIT,0)";
    const std::string below = "LOWERLIMITYN = 1 AND CLSBAL < ISNULL(COLOWERLIMIT,0)";
    session_.gConn.Execute(Sql() << "UPDATE " << tmp << " SET COLEV = CASE WHEN " << due
                                 << " THEN (CASE WHEN " << negative << " THEN 0 ELSE " << kept
                                 << " END) WHEN " << above << " THEN ISNULL(COLIMIT,0) WHEN "
                                 << below << " THEN 0 ELSE CLSBAL END, LAPSE = CASE WHEN " << due
                                 << " THEN (CASE WHEN " << negative << " THEN " << kept
                                 << " ELSE CLSBAL - (" << kept << ") END) WHEN " << above
                                 << " THEN CLSBAL - ISNULL(COLIMIT,0) WHEN " << below
                                 << " THEN CLSBAL ELSE 0 END FROM " << tmp << " TMPALLOT"
                                 << settingsOf(lngMonthYear) << " AND COYN = 1");
}

// A predecessor of this pass stands in the month before (who has two rows in a month is left out)
// and ends the day before the row.
void AllotmentPass::WithinPeriod(int32_t lngMonthYear) {
    Sql ended;
    ended << "(1 = 0";
    for (const auto& [types, allotType, allotOn] :
         {std::tuple<const char*, int, int>{"ALLOTTYPE IN (0,1)", 0, 0},
          {"ALLOTTYPE = 2 AND ALLOTON = 1", 2, 1},
          {"ALLOTTYPE = 2 AND ALLOTON = 2", 2, 2},
          {"ALLOTTYPE = 3", 3, 0},
          {"ALLOTTYPE = 4 AND ALLOTON = 1", 4, 1},
          {"ALLOTTYPE = 4 AND ALLOTON = 2", 4, 2}}) {
        DateTime end;
        FnBlnPeriodEnd(calc_.periods, allotType, allotOn, lngMonthYear - 1, end);
        ended << " OR (" << types << " AND ALLOTFROM = " << end.plusDays(1) << ")";
    }
    ended << ")";
    session_.gConn.Execute(Sql() << "UPDATE " << tmp_.name << " SET COLEV = CASE WHEN " << ended
                                 << " THEN 0 ELSE CLSBAL END, LAPSE = CASE WHEN " << ended
                                 << " THEN CLSBAL ELSE 0 END FROM " << tmp_.name << " TMPALLOT"
                                 << settingsOf(lngMonthYear) << " AND ISNULL(COYN,0) <> 1");
}

// A row that has changed since it was read, or whose row before or opening balance has, keeps its
// mark.
std::string AllotmentPass::WriteBackSql() const {
    const std::string& tmp = tmp_.name;
    const std::string same =
        "((TMPALLOT.PREVALLOTID = 0 AND TMPALLOT.OPBAL = " + slice_sql::openingBalance("TMPALLOT") +
        ") OR EXISTS (SELECT * FROM LEV_ALLOTMENT PV, " + prev_.name +
        " TMPPREV WHERE PV.ALLOTID = TMPALLOT.PREVALLOTID AND TMPPREV.ALLOTID = PV.ALLOTID AND "
        "ISNULL(PV.COLEV, 0) = ISNULL(TMPPREV.COLEV, 0) AND ISNULL(PV.ALLOTLEV, 0) = "
        "ISNULL(TMPPREV.ALLOTLEV, 0)))";
    return Sql() << "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 FROM " << tmp
                 << " TMPALLOT,LEV_ALLOTMENT LEVALLOT Where TMPALLOT.EMPID = LEVALLOT.EMPID And "
                    "TMPALLOT.LEVID = LEVALLOT.LEVID And LEVALLOT.ALLOTFROM >= "
                    "DATEADD(DD,1,TMPALLOT.ALLOTTO) AND LEVALLOT.EDITMODEYN <> 1 UPDATE "
                    "LEV_ALLOTMENT SET LAPSE = TMPALLOT.LAPSE FROM "
                 << tmp
                 << " TMPALLOT,LEV_ALLOTMENT LEV WHERE LEV.ALLOTID = TMPALLOT.PREVALLOTID AND "
                    "ISNULL(LEV.LAPSE, -1000) <> TMPALLOT.LAPSE UPDATE LEV_ALLOTMENT SET COLEV = "
                    "TMPALLOT.COLEV, LAPSE = 0, EDITMODEYN = 0  FROM "
                 << tmp
                 << " TMPALLOT,LEV_ALLOTMENT LEV WHERE LEV.ALLOTID = TMPALLOT.ALLOTID AND "
                    "LEV.ALLOTFROM = TMPALLOT.ALLOTFROM AND LEV.ALLOTTO = TMPALLOT.ALLOTTO AND "
                    "LEV.EMPDETID = TMPALLOT.EMPDETID AND LEV.ATTHEADID = TMPALLOT.ATTHEADID AND "
                 << same;
}

}  // namespace owb
