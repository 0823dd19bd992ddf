// Marks by entries and encashments.
#include "marks/marks.h"

#include <set>

#include "base/number_text.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "session/Session.h"

namespace owb {

namespace {

// The list with leaves 2 and 3 brought in together, in ascending order.
std::string leavesTogether(const std::string& strLevIds) {
    std::set<int> ids;
    for (size_t at = 0; at < strLevIds.size();) {
        size_t end = strLevIds.find(',', at);
        if (end == std::string::npos) end = strLevIds.size();
        const std::string item = strLevIds.substr(at, end - at);
        if (!item.empty()) ids.insert(static_cast<int>(textToNumber(item)));
        at = end + 1;
    }
    if (ids.count(2) || ids.count(3)) ids.insert({2, 3});
    std::string list;
    for (const int id : ids) list += (list.empty() ? "" : ",") + std::to_string(id);
    return list;
}

// Leaves of a head whose credit follows days paid or present, by their newest settings.
std::string allottedOnPayDays(int32_t intAttHeadId) {
    return Sql() << "SELECT LS.LEVID FROM LEV_SETTINGS LS WHERE LS.ATTHEADID = " << intAttHeadId
                 << " AND LS.AUTOALLOTYN = 1 AND ((LS.ALLOTTYPE = 1 AND LS.ALLOTON IN (1, 2)) OR "
                    "(LS.ALLOTTYPE = 0 AND LS.ALLOTON > 0) OR LS.ALLOTTYPE IN (2, 3, 4)) AND "
                    "LS.MONTHYEAR = (SELECT MAX(MONTHYEAR) FROM LEV_SETTINGS WHERE LEVID = "
                    "LS.LEVID AND ATTHEADID = LS.ATTHEADID AND ALLOTTYPE = LS.ALLOTTYPE)";
}

}  // namespace

std::string MarkAllotmentDirtySql(int32_t intAttHeadId, int64_t lngEmpId) {
    Sql sql;
    sql << " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1";
    if (intAttHeadId != 0) sql << " WHERE  ATTHEADID = " << intAttHeadId;
    if (lngEmpId != 0) sql << (intAttHeadId != 0 ? " AND" : " WHERE") << " EMPID = " << lngEmpId;
    return sql;
}

void MarkAllotmentDirty(Session& session, int32_t intAttHeadId, int64_t lngEmpId) {
    session.gConn.Execute(MarkAllotmentDirtySql(intAttHeadId, lngEmpId));
}

std::string MarkAllotmentDirtyFromSql(DateTime dteFrom, int32_t intAttHeadId,
                                      const std::string& strEmpIds, const std::string& strLevIds) {
    const std::string date = FnStrIsoLiteral(dteFrom);
    const std::string leaves = leavesTogether(strLevIds);
    Sql sql;
    sql << " UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE dbo.FnLngMonthYear(ALLOTFROM, "
           "ALLOTFROM) >= dbo.FnLngMonthYear("
        << date << ", " << date << ")";
    if (!strEmpIds.empty()) sql << " AND EMPID IN (" << strEmpIds << ")";
    if (intAttHeadId != 0) sql << " AND ATTHEADID = " << intAttHeadId;
    if (!leaves.empty()) sql << " AND LEVID IN (" << leaves << ")";
    return sql;
}

void MarkAllotmentDirtyFrom(Session& session, DateTime dteFrom, int32_t intAttHeadId,
                            const std::string& strEmpIds, const std::string& strLevIds) {
    session.gConn.Execute(MarkAllotmentDirtyFromSql(dteFrom, intAttHeadId, strEmpIds, strLevIds));
}

std::string MarkLeaveTakenSql(DateTime dteFrom, int32_t intAttHeadId, int64_t lngEmpId,
                              int32_t intLevId) {
    const std::string employee = std::to_string(lngEmpId);
    if (intLevId != 1)
        return MarkAllotmentDirtyFromSql(dteFrom, intAttHeadId, employee, std::to_string(intLevId));
    return Sql() << MarkAllotmentDirtyFromSql(dteFrom, intAttHeadId, employee, "")
                 << " AND LEVID IN (" << allottedOnPayDays(intAttHeadId) << ")";
}

std::string MarkLeavesHeldSql(DateTime dteFrom, int32_t intAttHeadId, int64_t lngEmpId,
                              const std::string& held) {
    const std::string rows = " FROM LEV_DETAILS LD WHERE " + held;
    return Sql() << MarkAllotmentDirtyFromSql(dteFrom, intAttHeadId, std::to_string(lngEmpId), "")
                 << " AND (LEVID IN (SELECT CASE LD.LEVID WHEN 3 THEN 2 ELSE LD.LEVID END" << rows
                 << ") OR (LEVID IN (" << allottedOnPayDays(intAttHeadId)
                 << ") AND EXISTS (SELECT *" << rows << " AND LD.LEVID = 1)))";
}

std::string MarkChosenAllotmentSql(const std::string& rows) {
    return " UPDATE lev_allotment SET EDITMODEYN=1" + rows;
}

std::string MarkSalaryDirtySql(int32_t lngMonthYear, bool blnOnlyThisMonth, int64_t lngEmpId) {
    Sql sql;
    sql << " UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 1 WHERE MONTHYEAR "
        << (blnOnlyThisMonth ? "= " : ">= ") << lngMonthYear;
    if (lngEmpId != 0) sql << " AND EMPID = " << lngEmpId;
    return sql << " UPDATE RMB_MASTER SET EDITMODEYN =1";
}

void MarkSalaryDirty(Session& session, int32_t lngMonthYear, bool blnOnlyThisMonth,
                     int64_t lngEmpId) {
    session.gConn.Execute(MarkSalaryDirtySql(lngMonthYear, blnOnlyThisMonth, lngEmpId));
}

}  // namespace owb
