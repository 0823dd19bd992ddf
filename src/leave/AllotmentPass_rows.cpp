// Rows taken one at a time, in order of date: blocks of row numbers, each read, worked out and
// cleared of its marks together.
#include <algorithm>

#include "base/number_text.h"
#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/AllotmentPass.h"
#include "leave/slice_sql.h"
#include "session/Session.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr size_t kRowsAtOnce = 200;

// The numbers separated by commas, the last one repeated up to the size of a full block: texts that
// differ in numbers alone share a plan.
std::string blockList(const std::vector<int64_t>& numbers) {
    Sql list;
    list << numbers.front();
    for (size_t i = 1; i < std::max(kRowsAtOnce + 1, numbers.size()); ++i)
        list << "," << numbers[std::min(i, numbers.size() - 1)];
    return list;
}

}  // namespace

AllotmentPass::AllotmentPass(Session& session, Progress& frm)
    : session_(session),
      frm_(frm),
      calc_(session),
      chain_(session, calc_.rules, calc_.periods),
      tmp_(session, "TMPALLOT"),
      prev_(session, "TMPPREVALLOT"),
      stamp_(session, [this] { ForgetRules(); }),
      failures_(session) {
    FnNodNdp(session).Update_MonthYear();
}

void AllotmentPass::ForgetRules() {
    FnNodNdp(session_).ForgetRules();
    calc_.ForgetRules();
}

void AllotmentPass::WriteCredit(const AllotRow& row) {
    ++done_;
    if (const auto credit = calc_.Credit(row)) calc_.WriteCredit(row, *credit);
}

// The figures of a row and the marks on later rows; its own mark stays.
void AllotmentPass::ProcessRow(const AllotRow& row) {
    const LeaveSettingsRecord& settings =
        *calc_.rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear);
    if (row.intLevId == 2)
        session_.gConn.Execute(Sql() << "UPDATE LEV_ALLOTMENT SET ALLOTLEV = "
                                     << slice_sql::compensatoryWork("LEV_ALLOTMENT")
                                     << " WHERE ALLOTID = " << row.lngAllotId);
    else if (settings.AUTOALLOTYN)
        WriteCredit(row);

    const LeaveChain::Link link = chain_.Chain(row);
    Sql batch;
    batch << "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EMPID = " << row.lngEmpId
          << " AND LEVID = " << row.intLevId
          << " AND ALLOTFROM >= " << FnStrIsoLiteral(row.dteTo.plusDays(1))
          << " AND EDITMODEYN <> 1";
    if (row.lngPrevAllotId != 0)
        batch << " UPDATE LEV_ALLOTMENT SET LAPSE = " << numberText(link.dblLapsed)
              << " WHERE ALLOTID = " << row.lngPrevAllotId;
    batch << " UPDATE LEV_ALLOTMENT SET COLEV = " << numberText(link.COLEV)
          << ", LAPSE = 0 WHERE ALLOTID = " << row.lngAllotId;
    session_.gConn.ExecuteAtomic(batch);
}

// The mark is asked through a function, so that the rows are found by their numbers and not among
// all marked ones.
bool AllotmentPass::ProcessBlock(const std::vector<int64_t>& ids) {
    const std::string list = blockList(ids);
    const std::string ofBlock = " WHERE ALLOTID IN (" + list + ")";
    std::vector<int64_t> employees;
    DateTime from{DateTime::kMaxDay}, to{DateTime::kMinDay};
    for (Recordset rs(session_.gConn,
                      "SELECT EMPID, MIN(ALLOTFROM), MAX(ALLOTTO) FROM LEV_ALLOTMENT" + ofBlock +
                          " GROUP BY EMPID");
         !rs.IsEOF(); rs.MoveNext()) {
        employees.push_back(rs.Fields(0).toInt());
        from = std::min(from, rs.Fields(1).toDate());
        to = std::max(to, rs.Fields(2).toDate());
    }
    if (employees.empty()) return true;  // somebody has taken them out
    const BlockStamp::Scope scope{
        " AND EMPID IN (" + blockList(employees) + ")",
        " AND LEAVEDATE BETWEEN " + FnStrIsoLiteral(from) + " AND " + FnStrIsoLiteral(to),
        BlockStamp::SumSql("LEV_ALLOTMENT WITH (HOLDLOCK)", "ALLOTID EMPDETID ALLOTFROM@ ALLOTTO@",
                           ofBlock + " AND ISNULL(EDITMODEYN, 0) = 1"),
        false,
        true,
        true};
    std::vector<int64_t> done;
    const auto work = [&] {
        done = {0};
        calc_.ForgetDays();
        for (Recordset rs(
                 session_.gConn,
                 FnStrAllotRows("LEV_ALLOTMENT LA",
                                "WHERE LA.ALLOTID IN (" + list +
                                    ") AND ISNULL(LA.EDITMODEYN, 0) = 1 ORDER BY LA.ALLOTFROM, "
                                    "LA.EMPID, LA.LEVID, LA.EMPDETID"));
             !rs.IsEOF() && !frm_.cancelled(); rs.MoveNext()) {
            const AllotRow row = FnReadAllotRow(rs);
            if (failures_.Has(row.lngAllotId) ||
                !calc_.rules.inForce(row.intLevId, row.intAttHeadId, row.lngMonthYear))
                continue;
            frm_.status("Processing Leave Allotment ");
            if (failures_.Attempt(row.lngEmpId, row.lngAllotId, [&] { ProcessRow(row); })) {
                ++worked_;
                done.push_back(row.lngAllotId);
            }
        }
    };
    return stamp_.WorkOut(scope, work, [&] {
        return "UPDATE LEV_ALLOTMENT SET EDITMODEYN = 0 WHERE ALLOTID IN (" + blockList(done) + ")";
    });
}

// The list of what is to do holds numbers alone and rows are read in blocks, so that memory does
// not grow with what a row needs. A row that is marked on the way and was not is taken by another
// round; a round that does nothing is the last.
bool AllotmentPass::RowByRow(const std::string& strFilter) {
    const std::string marked = " FROM LEV_ALLOTMENT LA WHERE LA.EDITMODEYN = 1";
    bool settled = true;
    for (bool again = true; again && !frm_.cancelled();) {
        const size_t before = worked_;
        std::vector<int64_t> ids;
        for (Recordset rs(session_.gConn, "SELECT LA.ALLOTID" + marked + strFilter +
                                              " ORDER BY LA.ALLOTFROM, LA.EMPID, LA.LEVID");
             !rs.IsEOF(); rs.MoveNext())
            ids.push_back(rs.Fields(0).toInt());
        for (size_t at = 0; at < ids.size() && !frm_.cancelled(); at += kRowsAtOnce) {
            frm_.step(at, ids.size());
            const auto first = ids.begin() + static_cast<ptrdiff_t>(at);
            settled &= ProcessBlock(
                {first, first + static_cast<ptrdiff_t>(std::min(kRowsAtOnce, ids.size() - at))});
        }
        again = settled && worked_ > before;
    }
    return settled;
}

// Few rows are sooner done one by one than by statements over whole months.
bool AllotmentPass::FewMarked() {
    constexpr int64_t kFew = 500;
    return FnVarValueOrThrow(session_,
                             Sql() << "SELECT COUNT(*) FROM (SELECT TOP " << kFew
                                   << " ALLOTID FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1) T",
                             0)
               .toInt() < kFew;
}

}  // namespace owb
