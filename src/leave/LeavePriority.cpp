#include "leave/LeavePriority.h"

#include <cctype>

#include "base/number_text.h"
#include "base/utf8.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/modLeaveFunctions.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

// EXLEVPRIORITY (",7,9") as a list that begins with 0. Whatever is no number is left out.
std::string exemptLeaves(Session& session) {
    std::string list = "0";
    for (const char c :
         FnVarValueOrThrow(session,
                           "SELECT TOP 1 EXLEVPRIORITY FROM ATT_OPTSETTINGS where ATTHEADID=0", "")
             .toText()) {
        const bool digit = std::isdigit(static_cast<unsigned char>(c)) != 0;
        if (digit)
            list += c;
        else if (list.back() != ',')
            list += ',';
    }
    return list.back() == ',' ? list + "0" : list;
}

// " AND AD.LEVID NOT IN (...)" of the leaves that are not tested.
std::string notExempt(Session& session) {
    Sql sql;
    if (session.gRestrictedLeaveId > 0 && session.gRestrictedHolidayOn)
        sql << " AND AD.LEVID NOT IN (" << session.gRestrictedLeaveId << ")";
    return sql << " AND AD.LEVID NOT IN (" << exemptLeaves(session) << ")";
}

// LEVID and LEVSHORT of the head's paid leaves but one, by the PRIORITY of their newest settings.
std::string othersByPriority(Session& session, int32_t lngAttHeadId, int32_t intLevId,
                             const char* further) {
    return Sql() << "SELECT LS.LEVID, AD.LEVSHORT FROM LEV_SETTINGS LS, ATT_DEFINITION AD WHERE "
                    "AD.LEVID = LS.LEVID AND LS.ATTHEADID = "
                 << lngAttHeadId << " AND AD.LEVID <> 3 AND AD.LEVID <> " << intLevId
                 << " AND AD.LEAVEYN = 1 AND ISNULL(AD.AFFECTSALARYYN, 0) <> 1" << further
                 << notExempt(session)
                 << " AND LS.MONTHYEAR = (SELECT MAX(MONTHYEAR) FROM LEV_SETTINGS WHERE LEVID = "
                    "LS.LEVID AND ATTHEADID = LS.ATTHEADID) ORDER BY LS.PRIORITY, LS.LEVID";
}

}  // namespace

int32_t FnLevIdOfName(Session& session, const std::string& text) {
    return static_cast<int32_t>(
        FnVarValueOrThrow(session,
                          Sql() << "Select LEVID from ATT_DEFINITION Where LEVNAME="
                                << literal(text) << " OR LEVSHORT=" << literal(text),
                          0)
            .toInt());
}

std::string FnStrLopName(Session& session) {
    return FnVarValueOrThrow(session, "SELECT LEVNAME FROM ATT_DEFINITION WHERE LEVID = 1",
                             "Loss Of Pay")
        .toText();
}

std::optional<std::string> FnStrTestedLeave(Session& session, int32_t intLevId) {
    Recordset rs(session.gConn,
                 Sql() << "SELECT AD.LEVNAME FROM ATT_DEFINITION AD WHERE AD.LEVID = " << intLevId
                       << " AND AD.ALLOTMENTYN = 1 AND AD.LEVID <> 3 AND AD.LEAVEYN <> 0"
                       << notExempt(session));
    if (rs.IsEOF()) return std::nullopt;
    return rs.Fields(0).toText();
}

bool FnBlnAvailOpen(Session& session, int64_t lngEmpId, int32_t intLevId, DateTime dteDate) {
    return FnBlnExistsOrThrow(session, Sql() << "SELECT EMPID FROM LEV_AVAILFROM WHERE EMPID="
                                             << lngEmpId << " AND LEVID = " << intLevId
                                             << " AND AVAILFROM <= " << FnStrIsoLiteral(dteDate));
}

std::string FnStrPriorityList(Session& session, int64_t lngEmpId, int32_t lngAttHeadId,
                              int32_t intLevId, DateTime dteDate) {
    std::string lines;
    int n = 0;
    for (Recordset rs(session.gConn, othersByPriority(session, lngAttHeadId, intLevId, ""));
         !rs.IsEOF(); rs.MoveNext()) {
        const auto other = static_cast<int32_t>(rs.Fields(0).toInt());
        const double balance = FnDblRndOffLocal(
            session.gLev.RNDTYPE,
            GetClosingBalance(session, lngEmpId, other, dteDate, {}, lngAttHeadId));
        ++n;
        if (FnBlnAvailOpen(session, lngEmpId, other, dteDate))
            lines += std::to_string(n) + ". " + upperCase(rs.Fields(1).toText()) + "\t:\t" +
                     formatNumber(balance, "0.00") + "\n";
    }
    return lines;
}

int32_t FnIntNextPriorityLeave(Session& session, int64_t lngEmpId, int32_t lngAttHeadId,
                               int32_t intLevId, double dblNeeded, DateTime dteDate) {
    for (Recordset rs(session.gConn,
                      othersByPriority(session, lngAttHeadId, intLevId, " AND LS.PRIORITY > 0"));
         !rs.IsEOF(); rs.MoveNext()) {
        const auto other = static_cast<int32_t>(rs.Fields(0).toInt());
        if (GetClosingBalance(session, lngEmpId, other, dteDate, {}, lngAttHeadId) >= dblNeeded &&
            FnBlnAvailOpen(session, lngEmpId, other, dteDate))
            return other;
    }
    return 1;
}

}  // namespace owb
