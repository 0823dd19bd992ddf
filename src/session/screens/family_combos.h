// Combos that many screens have: payroll months, whom a rule is for, employees.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "screen/lists.h"

namespace owb {

class SessionScreen;

// Months of the payroll, the latest first; keys are month keys. F2 and double click open the picker
// of months.
class MonthCombo : public Combo {
  public:
    MonthCombo(SessionScreen& screen, std::string name, std::string caption = "");
    // From a month key on, 0 all. Throws DbError.
    void load(int32_t lngFrom = 0);
    int32_t month() const { return static_cast<int32_t>(key()); }  // 0: none
    // Selects the month; one that the list does not offer is shown all the same.
    void setMonth(int32_t lngMonthYear);
    // What a user does with the buttons beside it: the month before or after the chosen one. False
    // at the end of the list.
    bool previous() { return step(1); }
    bool next() { return step(-1); }

  private:
    bool step(int places);

    SessionScreen& screen_;
};

// "ALL", key 0, and below it the attendance heads, or the branches, with their numbers as keys.
class ScopeCombo : public Combo {
  public:
    enum class Of { Heads, Branches };
    ScopeCombo(SessionScreen& screen, std::string name, std::string caption = "");
    // Selects `key`, or "ALL" where there is no such entry. Throws DbError.
    void load(Of of, int64_t key = 0);

  private:
    SessionScreen& screen_;
};

// One employee by his number and by his name, in two combos that follow each other.
class EmployeeCombos {
  public:
    EmployeeCombos(SessionScreen& screen, const std::string& idName, const std::string& nameName);
    // Rows of a query with EMPID, REFNO and EMPNAME; numbers, or reference numbers where the
    // company uses them. Throws DbError.
    void load(const std::string& sql);
    int64_t employee() const { return byId.key(); }  // 0: none
    bool select(int64_t lngEmpId);

    Combo byId, byName;
    std::function<void()> onChange;  // after the user has chosen another

  private:
    void follow(Combo& other, const Combo& chosen);

    SessionScreen& screen_;
};

}  // namespace owb
