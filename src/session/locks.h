// Locks of months and employees, and the words in which they refuse. What cannot be asked throws
// DbError: a lock that is not known is a lock.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

struct Session;

constexpr int32_t kForEver = 99999;  // month key beyond all

// A lock as one T-SQL condition, which is asked before a question to the user and once more within
// the batch that writes (SaveBatch::refuseUnless).
struct Lock {
    std::string held;  // true while it is locked
    std::string text;  // what the user is told then
    std::string title = "Permission Denied";

    bool holds(Session& session) const;
    std::string open() const { return "NOT (" + held + ")"; }
};

// A month of the range is locked (LOCKEDYN), or (`testEmployee`) the employee in a month of it;
// employee 0 stands for any.
Lock MonthsLock(int32_t lngFrom, int32_t lngTo, bool testEmployee, int64_t lngEmpId,
                const std::string& text);
// The same for settings of an attendance head (0: of all) from a month on: LOCKEDYN or ATTLOCKYN of
// a month, or (`testEmployees`) an employee of the head who is locked in one.
Lock ConfigurationLock(int32_t lngFrom, int32_t intAttHeadId, bool testEmployees,
                       const std::string& text);

// "One or more Employee Record(s)/Month(s) has been locked. Still if ..."
std::string FnStrRecordsLocked(const Session& session);
// "One or more Employee (s) record/Month(s) has been locked with effective from Jan/2014."
std::string FnStrLockedFrom(const Session& session, int32_t lngMonthYear);
// What an attendance head's hours, and one of its settings, cannot be changed for.
std::string FnStrHoursLocked(const Session& session, bool employees);
std::string FnStrSettingLocked(const std::string& setting);

// Is the month locked (LOCKEDYN)?
bool FnBlnMonthLocked(Session& session, int32_t lngMonthYear);
// MonthsLock, asked at once.
bool FnBlnMonthRangeLocked(Session& session, int32_t lngFrom, int32_t lngTo, bool testEmployee,
                           int64_t lngEmpId);

}  // namespace owb
