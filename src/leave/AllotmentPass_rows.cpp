#include "base/db_error.h"
#include "base/number_text.h"
#include "data/Session.h"
#include "data/modCommon.h"
#include "leave/AllotmentPass.h"
#include "leave/slice_sql.h"

namespace owb {

namespace {

std::string text(int64_t number) {
    return std::to_string(number);
}

}  // namespace

AllotmentPass::AllotmentPass(Session& session, Progress& frm)
    : session_(session),
      frm_(frm),
      calc_(session),
      chain_(session, calc_.rules, calc_.periods),
      tmp_(session, "TMPALLOT"),
      prev_(session, "TMPPREVALLOT") {}

bool AllotmentPass::WriteCredit(const AllotRow& row) {
    try {
        if (const auto credit = calc_.Credit(row))
            session_.gConn.Execute(calc_.FnStrWriteCredit(row, *credit));
        return true;
    } catch (const DaysNotCounted&) {
        // The counter has told it.
    } catch (const DbError& e) {
        const std::string message = text(e.number) + ": " + e.what();
        if (told_.insert(message).second) session_.boxes.critical(message, "");
    }
    failed_.insert(row.lngAllotId);
    return false;
}

void AllotmentPass::ProcessRow(const AllotRow& row) {
    const LeaveSettingsRecord& settings =
        *calc_.rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear);
    const std::string id = text(row.lngAllotId);
    if (row.intLevId == 2)
        session_.gConn.Execute(
            "UPDATE LEV_ALLOTMENT SET ALLOTLEV = " + slice_sql::compensatoryWork("LEV_ALLOTMENT") +
            " WHERE ALLOTID = " + id);
    else if (settings.AUTOALLOTYN && !WriteCredit(row))
        return;

    const LeaveChain::Link link = chain_.Chain(row);
    session_.gConn.Execute(
        "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EMPID = " + text(row.lngEmpId) +
        " AND LEVID = " + text(row.intLevId) + " AND ALLOTFROM >= '" +
        FnStrIsoDate(row.dteTo.plusDays(1)) + "' AND EDITMODEYN <> 1");
    session_.gConn.Execute("UPDATE LEV_ALLOTMENT SET LAPSE = " + numberText(link.dblLapsed) +
                           " WHERE ALLOTID = " + text(row.lngPrevAllotId) +
                           " UPDATE LEV_ALLOTMENT SET COLEV = " + numberText(link.COLEV) +
                           ", LAPSE = 0, EDITMODEYN = 0 WHERE ALLOTID = " + id);
}

// A month's worth of rows at a time, so that memory does not grow with the ledger. A row that is
// marked behind the place reached is taken by another round.
void AllotmentPass::RowByRow(const std::string& strFilter) {
    const std::string marked = "WHERE LA.EDITMODEYN = 1" + strFilter;
    for (bool again = true; again;) {
        again = false;
        for (DateTime at{DateTime::kMinDay};;) {
            const Value next = FnVarReadValue(
                session_, "SELECT MIN(LA.ALLOTFROM) FROM LEV_ALLOTMENT LA " + marked +
                              " AND LA.ALLOTFROM >= '" + FnStrIsoDate(at) + "'");
            if (next.isNull()) break;
            const DateTime from = next.toDate(), to = from.plusDays(30);
            at = to.plusDays(1);
            for (Recordset rs(session_.gConn,
                              FnStrAllotRows("LEV_ALLOTMENT LA",
                                             marked + " AND LA.ALLOTFROM BETWEEN '" +
                                                 FnStrIsoDate(from) + "' AND '" + FnStrIsoDate(to) +
                                                 "' ORDER BY LA.ALLOTFROM, LA.EMPID, LA.LEVID"));
                 !rs.IsEOF(); rs.MoveNext()) {
                if (frm_.cancelled()) return;
                const AllotRow row = FnReadAllotRow(rs);
                if (failed_.count(row.lngAllotId) ||
                    !calc_.rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear))
                    continue;
                frm_.status("Processing Leave Allotment ");
                frm_.step(rs.AbsolutePosition(), rs.RecordCount());
                ProcessRow(row);
                again = true;
            }
        }
    }
}

}  // namespace owb
