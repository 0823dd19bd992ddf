// Day registers: first the default of days on which nothing is entered, then the cells of marked
// rows from hours and leave, their overtime, and the marks of their months.
#include <vector>

#include "attendance/clsOTDetCalc.h"
#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/numbered_column.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/BlockStamp.h"
#include "leave/EmployeeBlocks.h"
#include "leave/RecalculationLock.h"
#include "leave/RowFailures.h"
#include "leave/modLeaveFunctions.h"
#include "leave/work_table.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

// Rows of the registers, with their head and options, on whose day nothing is entered: the cell is
// empty, no hours are kept and no leave is taken. A cell alone proves nothing, since a writer of
// hours blanks it and leaves its text to the next pass.
std::string emptyDays(const Session& session, int day, const std::string& further) {
    const std::string cell = numberedColumn("DAY", day);
    const std::string date = Sql() << "CAST ([dbo].FnDteGetFirstDate(AD.MONTHYEAR) AS DateTime) + "
                                   << day - 1;
    return Sql()
           << " FROM ATT_DAYTODAY AD INNER JOIN ATT_OPTSETTINGS AO ON AD.ATTHEADID = AO.ATTHEADID "
              "INNER JOIN MAS_ATTHEAD MA ON MA.ATTHEADID = AD.ATTHEADID INNER JOIN ATT_OVERTIME OT "
              "ON OT.ATTTRANNO = AD.ATTTRANNO WHERE AO.LOADDEFYN = 1 AND ("
           << cell << " = '0' OR " << cell << " IS NULL OR " << cell << " = '' OR (" << cell
           << " = 'H' AND AD.EDITMODEYN = 1)) AND ISNULL(OT." << numberedColumn("OTDAY", day)
           << ",0) = 0 AND AD.MONTHYEAR BETWEEN " << session.gFeature.LVSTARTMNYEAR
           << " AND (SELECT MAX(MONTHYEAR) FROM SLC_SALARYCALC_E) AND "
              "[dbo].FnDteFromDate(AD.EMPID, AD.EMPDETID, AD.MONTHYEAR) <= "
           << date << " AND [dbo].FnDteToDate(AD.EMPID, AD.EMPDETID, AD.MONTHYEAR) >= " << date
           << " AND NOT EXISTS (SELECT * FROM LEV_DETAILS LD WITH (HOLDLOCK) WHERE LD.EMPID = "
              "AD.EMPID AND LD.LEAVEDATE = "
           << date
           << " AND LD.LEVID <> 0 AND (LD.FIRSTHALFYN = 1 OR LD.SECONDHALFYN = 1 OR LD.LEVMONTHLY "
              "<> 0))"
           << further;
}

// The default of one day for the rows of one head and month.
std::string writeDefault(const WorkTable& table, Recordset& group, int day,
                         const std::string& lossOfPay) {
    const std::string date = FnStrIsoLiteral(group.Fields("CURRENTDATE").toDate());
    const std::string rows = Sql() << " FROM " << table.name
                                   << " WHERE ATTHEADID = " << group.Fields("ATTHEADID").toInt()
                                   << " AND CURRENTDATE=" << date;
    const std::string employees = " EMPID IN (SELECT EMPID" + rows + ")";
    const std::string registers = " WHERE ATTTRANNO IN (SELECT ATTTRANNO " + rows + ")";
    const bool absent = group.Fields("DEFAULTVAL").toInt() == 1;
    const bool hourly = group.Fields("ATTNTYPE").toInt() == 3;

    std::string value = "0", status = absent ? lossOfPay : "P";
    if (!absent && hourly) {
        value = numberText(
            clsOTDetCalc::FnDblToHoursMinutes(group.Fields("FULLDAYCUTTOFF").toDouble()));
        status = value;
    }
    Sql batch;
    batch << " DELETE FROM LEV_DETAILS WHERE  LEAVEDATE = " << date << " AND" << employees;
    if (absent)
        batch << " INSERT INTO LEV_DETAILS "
                 "(empid,EMPDETID,LEVID,LEAVEDATE,FIRSTHALFYN,SECONDHALFYN,LEVMONTHLY,REASON) "
                 "SELECT EMPID,EMPDETID,1,CURRENTDATE,1,1,NULL,Null"
              << rows << " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE (" << date
              << " BETWEEN allotfrom AND ALLOTTO OR allotfrom >= " << date << ") AND" << employees;
    return batch << " UPDATE ATT_OVERTIME SET " << numberedColumn("OTDAY", day) << " = " << value
                 << registers << " UPDATE ATT_DAYTODAY SET " << numberedColumn("DAY", day) << " = "
                 << literal(status) << ", EDITMODEYN = 1" << registers;
}

// One day of all rows in the work table: the hours, then " + ", then the leave status. "H" stays
// where the cell holds it and nothing is entered; days outside the version's span are empty. The
// status function is asked only where there is leave at all; without any it gives the default.
std::string rewriteDay(const WorkTable& table, int day) {
    const std::string cell = numberedColumn("DAY", day), kept = numberedColumn("OTDAY", day),
                      hours = "ISNULL(" + kept + ",0)";
    const std::string date = Sql() << "FIRSTDATE + " << day - 1;
    const std::string within =
        date + " BETWEEN  ISNULL(FROMDATE, FIRSTDATE)   AND  ISNULL(TODATE,LASTDATE)  ";
    const std::string byDefault = "CASE WHEN ATTNTYPE = 2 THEN 'P' ELSE '' END";
    const std::string status = Sql() << "CASE WHEN EXISTS (SELECT * FROM LEV_DETAILS LD WHERE "
                                        "LD.EMPID = TL.EMPID AND LD.LEAVEDATE = TL."
                                     << date << ") THEN REPLACE([dbo].FnStrLeaveStatus(EMPID, "
                                     << date << ", " << byDefault << "), '(1/2)', '½') ELSE "
                                     << byDefault << " END";
    return Sql()
           << "UPDATE ATT_DAYTODAY SET " << cell << "=CASE WHEN " << within << " THEN (CASE WHEN "
           << hours << " <> 0 THEN CAST(CAST(" << kept
           << " AS FLOAT) AS VARCHAR(20)) + CASE WHEN LEVSTATUS <> '' THEN ' + ' ELSE '' END WHEN "
           << cell
           << " = 'H' AND LEVSTATUS = '' THEN 'H' ELSE '' END) + LEVSTATUS ELSE '' END FROM "
              "ATT_DAYTODAY AD, (SELECT ATTTRANNO, FIRSTDATE, LASTDATE, FROMDATE, TODATE, "
           << kept << ", " << status << " AS LEVSTATUS FROM " << table.name
           << " TL) AO WHERE AO.ATTTRANNO = AD.ATTTRANNO UPDATE ATT_OVERTIME SET " << kept
           << "= 0 WHERE ATTTRANNO IN (SELECT ATTTRANNO FROM " << table.name << " WHERE NOT ("
           << within << "))";
}

}  // namespace

// The work table lists the empty days; what somebody has entered on one of them meanwhile takes the
// day off the list again, in the transaction that fills the others.
void LoadDefaultAttendance(Session& session, const std::string& strRegisters) {
    if (!FnVarValueOrThrow(session,
                           "SELECT COUNT(ATTHEADID) FROM  ATT_OPTSETTINGS where LOADDEFYN=1", 0)
             .toBool())
        return;
    Sql findDays;
    findDays << "DECLARE @TMP AS VARCHAR(MAX) SET @TMP = ''";
    for (int day = 1; day <= 31; ++day)
        findDays << " IF EXISTS(SELECT AD.ATTTRANNO" << emptyDays(session, day, strRegisters)
                 << ") SET @TMP = @TMP + '{" << day << "}'";
    findDays << " SELECT @TMP";
    const std::string days = FnVarValueOrThrow(session, findDays, "").toText();
    const std::string lossOfPay =
        FnVarValueOrThrow(session, "SELECT LEVSHORT FROM ATT_DEFINITION WHERE LEVID = 1", "LOP")
            .toText();

    const WorkTable table(session, "TMPLEV");
    for (int day = 1; day <= 31; ++day) {
        if (days.find("{" + std::to_string(day) + "}") == std::string::npos) continue;
        const std::string empty = emptyDays(session, day, strRegisters);
        session.gConn.Execute(table.drop);
        session.gConn.Execute(
            Sql() << "SELECT AD.ATTTRANNO, AD.EMPID, AD.EMPDETID, AD.ATTHEADID, AD.MONTHYEAR, "
                     "ISNULL(MA.CUTOFFFULLDAY,0) AS FULLDAYCUTTOFF, MA.ATTNTYPE, "
                     "ISNULL(AO.DEFVAL,0) AS DEFAULTVAL, [dbo].FnDteGetFirstDate(AD.MONTHYEAR) + "
                  << day - 1 << " AS CURRENTDATE  INTO " << table.name << empty);
        Recordset groups(session.gConn,
                         "SELECT DISTINCT ATTHEADID, DEFAULTVAL, ATTNTYPE, FULLDAYCUTTOFF, "
                         "CURRENTDATE FROM " +
                             table.name);
        const std::string recheck = "DELETE FROM " + table.name +
                                    " WHERE ATTTRANNO NOT IN (SELECT AD.ATTTRANNO" + empty + ")";
        for (; !groups.IsEOF(); groups.MoveNext())
            session.gConn.ExecuteAtomic(recheck + writeDefault(table, groups, day, lossOfPay));
        session.gConn.Execute(table.drop);
    }
}

namespace {

// Cells, overtime and month marks of the marked register rows in a list; the rows' own marks stay.
// Cells follow from hours and leave, except "H", which the rule gives back wherever it finds it, so
// that a day done twice reads the same.
class DayRegisters {
  public:
    DayRegisters(Session& session, Progress& frm, RowFailures& failures)
        : session_(session), frm_(frm), failures_(failures), table_(session, "TMPLDAY") {}

    // `marked` is a condition on the register row AD. False when the user cancelled.
    bool WorkOut(const std::string& marked) {
        failed_ = "0";
        ListRows(marked);
        Recordset rows(session_.gConn, "SELECT ATTTRANNO, EMPID FROM " + table_.name +
                                           " ORDER BY EMPID, ATTTRANNO");
        for (int day = 1; day <= 31 && !rows.IsEOF(); ++day) {
            if (frm_.cancelled()) return false;
            frm_.status("Initialising please wait....(DAY " + std::to_string(day) + "/31)  ");
            session_.gConn.ExecuteAtomic(rewriteDay(table_, day));
        }
        for (; !rows.IsEOF(); rows.MoveNext()) {
            if (frm_.cancelled()) return false;
            const int64_t employee = rows.Fields("EMPID").toInt();
            const int64_t attTranNo = rows.Fields("ATTTRANNO").toInt();
            frm_.status("Updating Leave and Over Time Details --" + std::to_string(employee) +
                        "----- ");
            frm_.step(rows.AbsolutePosition(), rows.RecordCount());
            if (failures_.Has(attTranNo) ||
                !failures_.Attempt(employee, attTranNo, [&] { WorkOutOvertime(attTranNo); }))
                failed_ += "," + std::to_string(attTranNo);
        }
        return true;
    }
    // Clears the marks of the list, but for those who failed.
    std::string ClearSql() const {
        return "UPDATE ATT_DAYTODAY SET EDITMODEYN=0 where ATTTRANNO IN (SELECT ATTTRANNO FROM " +
               table_.name + ") AND ATTTRANNO NOT IN (" + failed_ + ")";
    }
    void DropList() { session_.gConn.Execute(table_.drop); }

  private:
    void ListRows(const std::string& marked) {
        session_.gConn.Execute(table_.drop);
        session_.gConn.Execute(
            " SELECT [dbo].FnDteGetFirstDate(AD.MONTHYEAR) AS FIRSTDATE, "
            "[dbo].FnDteGetLastDate(AD.MONTHYEAR) AS LASTDATE, [dbo].FnDteFromDate(EMPID, "
            "EMPDETID, MONTHYEAR) AS FROMDATE, [dbo].FnDteToDate(EMPID, EMPDETID, MONTHYEAR) AS "
            "TODATE, AD.EMPID, AD.EMPDETID, AD.ATTHEADID, AD.MONTHYEAR, MA.OT1YN, MA.OT2YN, "
            "MA.ATTNTYPE, AO.*, AT.FULLDAYOT2, AT.SPLOTYN, AT.WHOT2YN, AT.GHOT2YN, "
            "ISNULL(MA.CUTOFFHALFDAY,0) As HALFDAYCUTOFF ,AD.EDITMODEYN INTO " +
            table_.name +
            " FROM ATT_OVERTIME AO, ATT_DAYTODAY AD, MAS_ATTHEAD MA, ATT_OPTSETTINGS AT WHERE "
            "AO.ATTTRANNO = AD.ATTTRANNO AND MA.ATTHEADID = AD.ATTHEADID AND AT.ATTHEADID = "
            "AD.ATTHEADID AND " +
            marked);
        session_.gConn.Execute(table_.key("ATTTRANNO"));
    }
    // The row as it stands now, not as the list has it; its month is marked.
    void WorkOutOvertime(int64_t attTranNo) {
        // Another session may have done it meanwhile.
        if (Recordset(session_.gConn,
                      Sql() << "select EMPID FROM ATT_DAYTODAY  where EDITMODEYN=1 and ATTTRANNO= "
                            << attTranNo)
                .IsEOF())
            return;
        Recordset days(session_.gConn, clsOTDetCalc::FnStrRegisterRow(attTranNo));
        std::string batch;
        FnOtDetCalc(session_).UpdateOTDailyHourlyNew(days, batch, false);
    }

    Session& session_;
    Progress& frm_;
    RowFailures& failures_;
    const WorkTable table_;
    std::string failed_;  // rows of the list
};

}  // namespace

bool UpdateDayDetails(Session& session, Progress& frm, bool blnAll, int64_t lngFilter) {
    const RecalculationLock lock(session, frm);
    if (!lock.Held()) return false;
    // A day is emptied by whoever marks its row.
    const std::string ofEmployee = " AND AD.EMPID = " + std::to_string(lngFilter);
    LoadDefaultAttendance(session, blnAll ? " AND AD.EDITMODEYN = 1" : ofEmployee);
    std::string marked = Sql() << "AD.MONTHYEAR >= " << session.gFeature.LVSTARTMNYEAR
                               << " AND AD.EDITMODEYN = 1" << FnStrOfEmpFilter(session, "AD.EMPID");
    if (!blnAll) marked += ofEmployee;

    frm.status("Initialising please wait....");
    const clsNODNDPCalc::KeepRules keep(FnNodNdp(session));
    BlockStamp stamp(session, [&] { FnNodNdp(session).ForgetRules(); });
    RowFailures failures(session);
    DayRegisters registers(session, frm, failures);
    constexpr size_t kEmployeesAtOnce = 500;
    bool settled = true;
    for (const EmployeeBlock& block : EmployeeBlocks(
             session, "AD.EMPID", " FROM ATT_DAYTODAY AD WHERE " + marked, kEmployeesAtOnce)) {
        if (frm.cancelled()) break;
        const std::string ofBlock = marked + block.Of("AD.EMPID");
        const BlockStamp::Scope scope{
            block.Of("EMPID"), "",
            BlockStamp::SumSql("ATT_DAYTODAY AD WITH (HOLDLOCK)", "ATTTRANNO", " WHERE " + ofBlock),
            true};
        bool finished = true;
        settled &= stamp.WorkOut(
            scope, [&] { finished = registers.WorkOut(ofBlock); },
            [&] { return finished ? registers.ClearSql() : ""; });
    }
    registers.DropList();
    return failures.Tell() && settled && !frm.cancelled();
}

}  // namespace owb
