#include "calendar/clsNODNDPCalc.h"

#include <algorithm>

#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"
#include "session/modAttSetting.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb {

namespace {

double daysInclusive(DateTime dteFrom, DateTime dteTo) {
    return dteTo.day - dteFrom.day + 1;
}

// Which holidays a head's working days leave out (intMode of FnDblGetHolAndLeave); 0 none.
int holidaysOutOfBase(int intBasis) {
    switch (intBasis) {
        case 4:
            return 1;
        case 5:
            return 3;
        case 6:
            return 2;
        default:
            return 0;
    }
}

// Which holidays still stand in the base and are no presence.
int holidaysInBase(int intBasis) {
    switch (intBasis) {
        case 4:
            return 0;
        case 5:
            return 2;
        case 6:
            return 3;
        default:
            return intBasis < 4 ? 1 : 0;
    }
}

}  // namespace

clsNODNDPCalc::clsNODNDPCalc(Session& session) : session_(session) {
    ReadBranchHolidayFrom();
}

void clsNODNDPCalc::ReadBranchHolidayFrom() {
    strBranchHolidayFrom.clear();
    const Value from = RuleValue(" Select BRGHEFROM  From MAS_OPTSET", {});
    if (!from.isNull()) strBranchHolidayFrom = dateText(from.toDate(), "dd/MMM/yy");
}

clsNODNDPCalc& FnNodNdp(Session& session) {
    if (!session.gNodNdp) session.gNodNdp = std::make_shared<clsNODNDPCalc>(session);
    return *session.gNodNdp;
}

Value clsNODNDPCalc::FirstValue(const std::string& sql, const Value& defaultValue) {
    return FnVarValueOrThrow(session_, sql, defaultValue);
}

Value clsNODNDPCalc::RuleValue(const std::string& sql, const Value& defaultValue) {
    if (intKeeping_ == 0) return FirstValue(sql, defaultValue);
    constexpr size_t kMost = 50000;  // rotating employees have answers of their own
    if (kept_.size() > kMost) kept_.clear();
    const auto found = kept_.find(sql);
    if (found != kept_.end()) return found->second;
    const Value answer = FirstValue(sql, defaultValue);  // kept only when it has been read
    return kept_[sql] = answer;
}

void clsNODNDPCalc::ForgetRules() {
    kept_.clear();
    blnMonthsComplete_ = false;
    heads_.clear();
    groups_.clear();
}

void clsNODNDPCalc::LoadHead(int32_t lngAttHeadId) {
    const auto kept = heads_.find(lngAttHeadId);
    if (kept != heads_.end()) {
        session_.gAtt = kept->second.first;
        session_.gOpt = kept->second.second;
        return;
    }
    LoadAttHead(session_, lngAttHeadId);
    LoadAttOptions(session_, lngAttHeadId);
    if (intKeeping_ > 0) heads_[lngAttHeadId] = {session_.gAtt, session_.gOpt};
}

bool clsNODNDPCalc::SetNODNDP(double& dblNODCalc, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                              int64_t lngEmpDetId, int32_t lngMonthYear, int32_t lngAttHeadId,
                              DateTime dteFrom, DateTime dteTo, bool& blnWorkingDaysOnly,
                              bool& blnProrateAlt, bool& blnProrate, int& intDaysBasis) {
    try {
        CountDays(dblNODCalc, dblNOD, dblNDP, lngEmpId, lngEmpDetId, lngMonthYear, lngAttHeadId,
                  dteFrom, dteTo, blnWorkingDaysOnly, blnProrateAlt, blnProrate, intDaysBasis);
        return true;
    } catch (const std::exception& e) {
        session_.boxes.critical(e.what());
        return false;
    }
}

void clsNODNDPCalc::CountDays(double& dblNODCalc, double& dblNOD, double& dblNDP, int64_t lngEmpId,
                              int64_t lngEmpDetId, int32_t lngMonthYear, int32_t lngAttHeadId,
                              DateTime dteFrom, DateTime dteTo, bool blnWorkingDaysOnly,
                              bool blnProrateAlt, bool blnProrate, int& intDaysBasis) {
    double calc = dblNODCalc, nod = dblNOD, ndp = dblNDP;
    if (!blnMonthsComplete_) Update_MonthYear();
    blnMonthsComplete_ = intKeeping_ > 0;
    Span month{lngEmpId, lngEmpDetId, lngAttHeadId, {}, {}};
    GetMonthPeriod(session_, lngMonthYear, month.dteFrom, month.dteTo);
    Span span{lngEmpId, lngEmpDetId, lngAttHeadId, dteFrom, dteTo};
    if (!blnWorkingDaysOnly) {
        const auto inside = [&](const char* column) -> Sql {
            return Sql() << "CASE WHEN " << column << " >= " << FnStrIsoLiteral(span.dteFrom)
                         << " AND " << column << " <= " << FnStrIsoLiteral(span.dteTo) << " THEN "
                         << column << " END";
        };
        Recordset rs(session_.gConn, Sql() << "SELECT " << inside("SALCALCFROM") << ", "
                                           << inside("DOL")
                                           << " FROM MAS_EMPLOYEE WHERE EMPID=" << lngEmpId);
        if (!rs.IsEOF() && !rs.Fields(0).isNull()) span.dteFrom = rs.Fields(0).toDate();
        if (!rs.IsEOF() && !rs.Fields(1).isNull()) span.dteTo = rs.Fields(1).toDate();
    }
    const double spanDays = daysInclusive(span.dteFrom, span.dteTo);

    LoadHead(lngAttHeadId);
    if (intDaysBasis != 0) intDaysBasis -= 3;
    const int basis = intDaysBasis != 0 ? intDaysBasis : session_.gAtt.NODFORCALC;

    if (MonthDays(basis, month, lngMonthYear, calc)) {
        const bool fixedDays = basis == 1 || basis == 3;
        if (fixedDays && !blnProrate && !blnProrateAlt)
            nod = calc;
        else if (fixedDays)
            nod = std::min(spanDays, calc);
        else if (span.dteFrom == month.dteFrom && span.dteTo == month.dteTo)
            nod = calc;
        else
            nod = spanDays - HolidaysOf(span, holidaysOutOfBase(basis));
    }
    if (blnWorkingDaysOnly) {
        ndp = nod - HolidaysOf(span, holidaysInBase(basis));
    } else {
        const std::map<int, double> taken = TakenByLeave(span);
        if (session_.gAtt.ATTNTYPE != 4 && !blnProrate && !session_.gAtt.TIGHTYN) {
            nod -= LeavesOf(taken, 3);
            ndp = nod;
        } else {
            ndp = nod - LeavesOf(taken, 1);
            nod -= LeavesOf(taken, 2);
        }
        ndp -= HolidaysOf(span, holidaysInBase(basis));
        if (session_.gOpt.COCWYN) {
            ndp -= LeavesOf(taken, 7);
            ndp += LeavesOf(taken, 8);
        }
        AddBackLeaveOnHolidays(span, basis, nod, ndp);
    }
    dblNOD = std::max(nod, 0.0);
    dblNDP = std::max(ndp, 0.0);
    dblNODCalc = std::max(calc, 0.0);
}

// Days of the month by the basis; false, and nothing changed, for a basis that there is not.
bool clsNODNDPCalc::MonthDays(int intBasis, const Span& month, int32_t lngMonthYear,
                              double& dblResult) {
    if (intBasis < 1 || intBasis > 6) return false;
    if (intBasis == 1)
        dblResult = 30;
    else if (intBasis == 3)
        dblResult = FnDblAttHeadNOD(month.lngAttHeadId, lngMonthYear);
    else
        dblResult = daysInclusive(month.dteFrom, month.dteTo) -
                    HolidaysOf(month, holidaysOutOfBase(intBasis));
    return true;
}

void clsNODNDPCalc::FnDblGetNWD(int64_t lngEmpId, int32_t lngMonthYear, int32_t lngAttHeadId,
                                double& dblResult) {
    Span month{lngEmpId, 0, lngAttHeadId, {}, {}};
    GetMonthPeriod(session_, lngMonthYear, month.dteFrom, month.dteTo);
    MonthDays(session_.gAtt.NODFORCALC, month, lngMonthYear, dblResult);
}

void clsNODNDPCalc::FnDblNODLimit(int64_t lngEmpId, int32_t lngMonthYear, int32_t lngAttHeadId,
                                  double& dblResult) {
    LoadAttHead(session_, lngAttHeadId);
    LoadAttOptions(session_, lngAttHeadId);
    FnDblGetNWD(lngEmpId, lngMonthYear, lngAttHeadId, dblResult);
}

double clsNODNDPCalc::FnDblAttHeadNOD(int32_t lngAttHeadId, int32_t lngMonthYear) {
    return RuleValue(Sql() << "SELECT NOD FROM SLC_ATTHEADNOD WHERE ATTHEADID = " << lngAttHeadId
                           << " AND MONTHYEAR = " << lngMonthYear,
                     0)
        .toDouble();
}

void clsNODNDPCalc::FnStrExplodeMonth(int32_t lngMonthYear, std::string& strResult) {
    strResult = FnStrMonthYearText(lngMonthYear);
}

void clsNODNDPCalc::FnBlnEmpExist(int64_t lngEmpId, DateTime dteDate, bool& blnResult) {
    const std::string date = FnStrIsoLiteral(dteDate);
    blnResult =
        FirstValue(Sql() << "SELECT COUNT(EMPID) FROM MAS_EMPLOYEE WHERE EMPID=" << lngEmpId
                         << " AND DOJ<=" << date << " AND (DOL IS NULL OR DOL>=" << date << ")",
                   0)
            .toBool();
}

void clsNODNDPCalc::SetValidPeriod(int32_t lngMonthYear, int64_t lngEmpId, DateTime& dteFrom,
                                   DateTime& dteTo) {
    GetMonthPeriod(session_, lngMonthYear, dteFrom, dteTo);
    const std::string start = FnStrIsoLiteral(dteFrom);
    const std::string end = FnStrIsoLiteral(dteTo);
    const std::string employee = " FROM MAS_EMPLOYEE WHERE EMPID =" + std::to_string(lngEmpId);
    dteFrom = FirstValue(
                  Sql() << "SELECT DOJ" << employee << " AND DOJ>=" << start << " AND DOJ<=" << end,
                  dteFrom)
                  .toDate();
    dteTo = FirstValue(Sql() << "SELECT DOL" << employee << " AND (DOL<=" << end
                             << " AND DOL IS NOT NULL)",
                       dteTo)
                .toDate();
}

void clsNODNDPCalc::FnLngMonthYear(const std::string& strDate, int32_t& lngResult) {
    lngResult = FnLngMonthYearOfDate(strDate);
}

void clsNODNDPCalc::Update_MonthYear() {
    Recordset rs(session_.gConn,
                 "SELECT * FROM MAS_MONTHYEAR WHERE CALCSTARTDATE IS NULL OR CALCENDDATE IS NULL");
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const auto key = static_cast<int32_t>(rs.Fields("MONTHYEAR").toInt());
        DateTime dteFrom, dteTo;
        GetMonthPeriod(session_, key, dteFrom, dteTo);
        session_.gConn.Execute(Sql()
                               << "UPDATE MAS_MONTHYEAR SET CALCSTARTDATE = " << dteFrom
                               << ", CALCENDDATE = " << dteTo << " WHERE MONTHYEAR = " << key);
    }
    session_.gConn.Execute(
        "INSERT INTO SLC_ATTHEADNOD SELECT ATTHEADID, MONTHYEAR, DATEDIFF(DAY, CALCSTARTDATE, "
        "CALCENDDATE) + 1, NULL FROM MAS_MONTHYEAR MM, MAS_ATTHEAD MA WHERE NOT EXISTS (SELECT * "
        "FROM SLC_ATTHEADNOD SA WHERE SA.MONTHYEAR = MM.MONTHYEAR AND SA.ATTHEADID = "
        "MA.ATTHEADID) AND ISNULL(TDSPORTYN, 0) <> 1");
}

namespace {

std::string versionInForce(const char* column, int64_t lngEmpId, DateTime dteDate) {
    const std::string date = FnStrIsoLiteral(dteDate);
    return Sql() << "SELECT " << column
                 << " FROM MAS_EMPLOYEE ME, MAS_EMPLOYEEDET MT WHERE ME.EMPID=" << lngEmpId
                 << " AND ME.EMPID=MT.EMPID AND EFFFROMDATE <= " << date
                 << " AND (EFFTODATE IS NULL OR EFFTODATE >= " << date
                 << ") AND SALCALCFROM <=" << date;
}

}  // namespace

void clsNODNDPCalc::FnIntAttHeadID(int64_t lngEmpId, DateTime dteDate, double& dblResult) {
    dblResult = FirstValue(versionInForce("ATTHEADID", lngEmpId, dteDate), 0).toDouble();
}

void clsNODNDPCalc::FnIntBranchID(int64_t lngEmpId, DateTime dteDate, double& dblResult) {
    dblResult = FirstValue(versionInForce("BRANCHID", lngEmpId, dteDate), 0).toDouble();
    if (dblResult == 0)
        dblResult = RuleValue("SELECT top 1 BRANCHID FROM MAS_EMPLOYEEDET  order by empdetid", 0)
                        .toDouble();
}

}  // namespace owb
