// The sample company's calendar: India's gazetted holidays of 2024 to 2026 (of other years those of
// a fixed date), holidays of a head and of branches, a restricted list, weekly offs with half
// Saturdays, and a rotating group.
#pragma once

#include <map>

#include "db/connection.h"
#include "sample/people.h"

namespace owb::sample {

struct OffHalves {
    bool first = false, second = false;
    bool full() const { return first && second; }
    bool any() const { return first || second; }
};

struct SampleHoliday {
    int year, month, day;
    const char* name;
    bool national = false;
};

class SampleCalendar {
  public:
    explicit SampleCalendar(const SampleOptions& options);

    OffHalves weeklyOff(int employee, int head, const DateTime& day) const;
    bool holiday(int head, int branch, const DateTime& day) const;
    bool restricted(const DateTime& day) const;  // on the whole company's list

    // Holidays, weekly offs, special overtime days and the rotation of the head; then, employee by
    // employee, the rotation of those who have their own.
    void writeRules(Connection& connection) const;
    static bool ownRotation(const SampleEmployee& employee);

  private:
    void writeHolidays(Connection& connection) const;
    void writeWeeklyOffs(Connection& connection) const;

    SampleOptions options_;
    std::vector<SampleHoliday> gazetted_, restricted_;
};

}  // namespace owb::sample
