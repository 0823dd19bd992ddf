// The rows that a command writes, and their marks.
#include <cmath>
#include <memory>

#include "base/db_error.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "db/sql_text.h"
#include "family/modCommon.h"
#include "leave/LeaveEntry.h"
#include "leave/RecalculationLock.h"
#include "leave/modLeaveFunctions.h"
#include "marks/marks.h"

namespace owb {

namespace {

// The whole write of a half or figure with its marks.
std::string writeSql(int32_t lngAttHeadId, int32_t intLevId, const LeaveHalf& half,
                     bool blnAccumulate) {
    const std::string date = FnStrIsoLiteral(half.dteDate);
    const std::string det = Sql() << "[dbo].FnIntMaxEmpDetID(" << half.lngEmpId << ", " << date
                                  << ", " << date << ")";
    const std::string column = half.intKind == 0 ? "FIRSTHALFYN" : "SECONDHALFYN";
    Sql sql;
    if (half.intKind != 2) {
        Sql day;
        day << "EMPID = " << half.lngEmpId << " AND LEAVEDATE = " << date;
        if (half.blnThisLeaveOnly) day << " AND LEVID = " << intLevId;
        sql << MarkLeavesHeldSql(half.dteDate, lngAttHeadId, half.lngEmpId,
                                 day.text() + " AND " + column + " = 1")
            << " UPDATE LEV_DETAILS SET " << column << " = 0 WHERE " << day;
    }

    RowText key, row, fresh;
    key.set("EMPID", half.lngEmpId)
        .setSql("EMPDETID", det)
        .set("LEVID", intLevId)
        .setSql("LEAVEDATE", date);
    const std::string reason = literal(trim(half.strReason));
    if (half.intKind == 2) {
        const std::string days = numberText(roundHalfEven(half.dblDays, 2));
        row.setSql("LEVMONTHLY", blnAccumulate ? "ISNULL(LEVMONTHLY, 0) + " + days : days);
        fresh.set("FIRSTHALFYN", 0).set("SECONDHALFYN", 0).setSql("LEVMONTHLY", days);
    } else {
        const auto flag = static_cast<int64_t>(std::lround(half.dblDays * 2));
        row.set(column, flag);
        fresh.set("FIRSTHALFYN", half.intKind == 0 ? flag : 0)
            .set("SECONDHALFYN", half.intKind == 1 ? flag : 0);
    }
    row.setSql("REASON", reason);
    fresh.setSql("REASON", reason);
    sql << row.update("LEV_DETAILS", key.condition()) << " IF @@ROWCOUNT = 0"
        << RowText(key).join(fresh).insertInto("LEV_DETAILS");

    if (!half.blnNoMonthMark)
        sql << " UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EMPID = " << half.lngEmpId
            << " AND EMPDETID = " << det << " AND MONTHYEAR = [dbo].FnLngMonthYear(" << date << ", "
            << date << ")";
    if (intLevId != 0)
        sql << MarkLeaveTakenSql(half.dteDate, lngAttHeadId, half.lngEmpId, intLevId);
    return sql;
}

// A transaction of the session that leaves nothing behind.
class Undone {
  public:
    explicit Undone(Connection& connection) : connection_(connection) { connection_.BeginTrans(); }
    ~Undone() {
        try {
            connection_.RollbackTrans();
        } catch (const DbError&) {  // an error within has ended it
        }
    }
    Undone(const Undone&) = delete;

  private:
    Connection& connection_;
};

}  // namespace

// Units of one figure are one write.
void LeaveEntry::WriteLeaveHalf(int32_t intLevId, const LeaveHalf& half, double days,
                                bool blnAccumulate) {
    if (half.intKind == 2)
        for (Step& step : steps_)
            if (step.statements.empty() && step.half.intKind == 2 && step.intLevId == intLevId &&
                step.half.lngEmpId == half.lngEmpId && step.half.dteDate == half.dteDate) {
                step.half.dblDays = (blnAccumulate ? step.half.dblDays : 0) + days;
                step.half.strReason = half.strReason;
                step.blnAccumulate &= blnAccumulate;
                return;
            }
    Step step{"", half, intLevId, blnAccumulate};
    step.half.dblDays = days;
    steps_.push_back(step);
}

std::string LeaveEntry::Statements() const {
    std::string all;
    for (const Step& step : steps_)
        all += !step.statements.empty()
                   ? step.statements
                   : writeSql(lngAttHeadId_, step.intLevId, step.half, step.blnAccumulate);
    return all;
}

std::string LeaveEntry::CompensatoryRows() const {
    std::string employees;
    for (const Step& step : steps_)
        if (step.statements.empty() && (step.intLevId == 2 || step.intLevId == 3))
            employees += (employees.empty() ? "" : ",") + std::to_string(step.half.lngEmpId);
    return employees.empty() ? "" : " AND LA.LEVID IN (2, 3) AND LA.EMPID IN (" + employees + ") ";
}

// What is taken of compensatory off counts in later months only when their rows are worked out. The
// lock is taken first: its holder may be waiting for this transaction.
void LeaveEntry::AsThoughWritten(const std::function<void()>& look) {
    if (steps_.empty()) return look();
    const std::string compensatory = CompensatoryRows();
    NoProgress progress;
    std::unique_ptr<RecalculationLock> lock;
    if (!compensatory.empty()) lock = std::make_unique<RecalculationLock>(session_, progress);
    const Undone transaction(session_.gConn);
    session_.gConn.Execute(Statements());
    if (!compensatory.empty()) ProcessAllotmentsOld(session_, progress, compensatory);
    look();
}

bool LeaveEntry::Save(SaveBatch batch, Progress& frm) {
    if (failed_ || steps_.empty()) return false;
    const std::string compensatory = CompensatoryRows();
    Trap([&] { batch.add(Statements()).run(session_); });
    steps_.clear();
    if (failed_) return false;
    if (!compensatory.empty()) ProcessAllotmentsOld(session_, frm, compensatory);
    return true;
}

}  // namespace owb
