// How every screen writes leave: one object for one command of the user (a cell, a day, a range of
// dates). ApplyLeaveHalf decides half by half whether the leave asked for may stand, becomes loss
// of pay or moves to the next leave by priority, and asks the user; nothing is written yet. Save
// then writes all of it at once:
//
//     LeaveEntry entry(session, head, head);
//     for (each date) {
//         int32_t levId = chosen;
//         entry.ApplyLeaveHalf(levId, {employee, date, 0, 0.5, reason});
//         entry.ApplyLeaveHalf(levId, {employee, date, 1, 0.5, reason});
//     }
//     if (entry.Save(conditions, progress)) ...
//
// A balance is asked with the command's earlier halves in the tables: they are written in a
// transaction that is undone again, which is never open while a question stands.
//
// Save's order, and why a second run is good after a crash at any place:
//  1. One transaction: the screen's conditions; then for each half in turn the ledger marks of what
//     the half holds, the half emptied, the row written, its month marked and the ledger from the
//     date on for the leave written. Broken off, nothing of the command is there, so that figures
//     which are added to others are never added twice; halves are set, not added.
//  2. The audit lines of the conditions' batch.
//  3. Compensatory off or work was written: their ledger rows of the employees are worked out at
//     once. Broken off, they are marked and the next recalculation takes them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/date_time.h"
#include "session/Session.h"
#include "session/modSave.h"

namespace owb {

// What is asked of ApplyLeaveHalf, besides the leave.
struct LeaveHalf {
    int64_t lngEmpId = 0;
    DateTime dteDate;      // kind 2: any day of the version's part of the month
    int intKind = 0;       // 0 first half of the day, 1 second half, 2 a figure for the month
    double dblDays = 0.5;  // 0 empties the half; kind 2: days of the figure
    std::string strReason;
    bool blnRepeat = false;         // adds to the figure that is there, and tests with it
    bool blnAsk = true;             // false: short leave goes by priority or to loss of pay
    bool blnThisLeaveOnly = false;  // the half is emptied of the written leave alone
    bool blnNoMonthMark = false;    // the caller marks the month
};

class LeaveEntry {
  public:
    // Loads gAtt of the head, and gOpt of the head whose options hold for the command (the leave
    // register: 0): a recalculation leaves those of another head. Throws DbError.
    LeaveEntry(Session& session, int32_t lngAttHeadId, int32_t intOptionHead);

    // Plans one half or figure of a leave; LEVID 0 empties the half. intLevId comes back as the
    // leave that was planned, which for a figure is that of its last unit. The excess question is
    // asked once for a command; after Cancel nothing more is planned. An error is shown in a
    // critical box, and nothing of the command is written.
    void ApplyLeaveHalf(int32_t& intLevId, const LeaveHalf& half);
    // Statements that run at this place, before the halves that follow, and count in their
    // balances: what is deleted first. Each begins with a blank.
    void Add(const std::string& statements) { steps_.push_back({statements, {}, 0, false}); }

    bool Cancelled() const { return intAnswer_ == kCancel; }
    // Nothing is planned.
    bool IsEmpty() const { return steps_.empty(); }
    // Writes what is planned behind what the batch holds. False when nothing was written: nothing
    // was planned, or an error was shown. Throws SaveRefused. The answer to the question is kept.
    bool Save(SaveBatch batch, Progress& frm);

  private:
    enum Answer { kNotAsked = -1, kListEmpty = 0, kCancel = 2, kYes = 6, kNo = 7 };
    struct Step {
        std::string statements;  // "": a write
        LeaveHalf half;          // dblDays: as written
        int32_t intLevId = 0;
        bool blnAccumulate = false;
    };

    void Trap(const std::function<void()>& work);
    void Apply(int32_t& intLevId, LeaveHalf half);
    bool ApplyUnit(int32_t& intLevId, const LeaveHalf& half, double unit);
    double Balance(int32_t intLevId, const LeaveHalf& half);
    void AskExcess(int32_t& intLevId, const LeaveHalf& half, const std::string& name,
                   double dblBalance);
    Answer FnIntAskByPriority(int32_t intLevId, const LeaveHalf& half, const std::string& name,
                              double dblBalance);
    Answer Ask(const std::string& text, const std::string& title, BoxAnswer defaultAnswer);
    void WriteLeaveHalf(int32_t intLevId, const LeaveHalf& half, double days, bool blnAccumulate);
    void AsThoughWritten(const std::function<void()>& look);
    std::string Statements() const;
    // " AND LA.LEVID IN (2, 3) AND LA.EMPID IN (...)" while 2 or 3 is planned, else "".
    std::string CompensatoryRows() const;

    Session& session_;
    int32_t lngAttHeadId_;
    AttOptionsRecord options_;
    std::string strLop_;
    Answer intAnswer_ = kNotAsked;
    bool blnByPriority_ = false;
    bool failed_ = false;
    std::vector<Step> steps_;
};

}  // namespace owb
