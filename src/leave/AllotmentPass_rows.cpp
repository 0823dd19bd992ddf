// Rows taken one at a time, in order of date.
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
    ++done_;
    try {
        if (const auto credit = calc_.Credit(row)) calc_.WriteCredit(row, *credit);
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
    std::string batch =
        "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EMPID = " + text(row.lngEmpId) +
        " AND LEVID = " + text(row.intLevId) + " AND ALLOTFROM >= '" +
        FnStrIsoDate(row.dteTo.plusDays(1)) + "' AND EDITMODEYN <> 1";
    if (row.lngPrevAllotId != 0)
        batch += " UPDATE LEV_ALLOTMENT SET LAPSE = " + numberText(link.dblLapsed) +
                 " WHERE ALLOTID = " + text(row.lngPrevAllotId);
    session_.gConn.Execute(batch + " UPDATE LEV_ALLOTMENT SET COLEV = " + numberText(link.COLEV) +
                           ", LAPSE = 0, EDITMODEYN = 0 WHERE ALLOTID = " + id);
}

// The list of what is to do holds numbers alone and rows are read in blocks, so that memory does
// not grow with what a row needs. A row that is marked on the way and was not is taken by another
// round.
void AllotmentPass::RowByRow(const std::string& strFilter) {
    constexpr size_t kRowsAtOnce = 200;
    for (bool again = true; again && !frm_.cancelled();) {
        again = false;
        Recordset ids(session_.gConn,
                      "SELECT LA.ALLOTID FROM LEV_ALLOTMENT LA WHERE LA.EDITMODEYN "
                      "= 1" +
                          strFilter + " ORDER BY LA.ALLOTFROM, LA.EMPID, LA.LEVID");
        while (!ids.IsEOF()) {
            std::string block = text(ids.Fields(0).toInt());
            for (ids.MoveNext(); !ids.IsEOF() && ids.AbsolutePosition() % kRowsAtOnce != 0;
                 ids.MoveNext())
                block += "," + text(ids.Fields(0).toInt());
            for (Recordset rs(session_.gConn,
                              FnStrAllotRows("LEV_ALLOTMENT LA",
                                             "WHERE LA.ALLOTID IN (" + block +
                                                 ") ORDER BY LA.ALLOTFROM, LA.EMPID, LA.LEVID"));
                 !rs.IsEOF(); rs.MoveNext()) {
                if (frm_.cancelled()) return;
                const AllotRow row = FnReadAllotRow(rs);
                if (failed_.count(row.lngAllotId) ||
                    !calc_.rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear))
                    continue;
                frm_.status("Processing Leave Allotment ");
                frm_.step(ids.AbsolutePosition() - 1, ids.RecordCount());
                ProcessRow(row);
                again = true;
            }
        }
    }
}

// Few rows are sooner done one by one than by statements over whole months.
bool AllotmentPass::FewMarked() {
    constexpr int64_t kFew = 500;
    return FnVarReadValue(session_,
                          "SELECT COUNT(*) FROM (SELECT TOP " + text(kFew) +
                              " ALLOTID FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1) T",
                          0)
               .toInt() < kFew;
}

}  // namespace owb
