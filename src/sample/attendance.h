// What the sample company's employees did on the days of their months: leave taken, registers with
// overtime and hours, and the salary rows of every employee version and month.
#pragma once

#include <map>

#include "sample/calendar.h"
#include "sample/random.h"
#include "sample/rows.h"

namespace owb::sample {

class SampleAttendance {
  public:
    SampleAttendance(Connection& connection, const SampleOptions& options,
                     const SampleCalendar& calendar);
    // All rows of one employee: master, versions, rates, salary rows, registers and leave.
    void write(const SampleEmployee& employee);
    void finish();

  private:
    // What an employee has left to take, and the leave that is running.
    struct Leaves {
        double casual = 0, sick = 0, earned = 0, compOff = 0;
        int restricted = 0;
        int running = 0, daysLeft = 0;
    };
    struct Day {
        int first = 0, second = 0;  // leave of each half, 0 none
        int hundredths = 0;         // overtime hours, or hours worked as hh.mm, times 100
    };
    struct Slice {
        const SampleEmployee& employee;
        const SampleVersion& version;
        int32_t month;
        DateTime from, to;
    };

    void writeMaster(const SampleEmployee& employee);
    void writeRotation(const SampleEmployee& employee);
    void writeSlice(const Slice& slice, Leaves& leaves, Chance& chance);
    void writeSalary(const Slice& slice);
    void writeRegister(const Slice& slice, const std::vector<Day>& days);
    void writeLeave(const Slice& slice, const std::vector<Day>& days);
    Day dayOf(const Slice& slice, const DateTime& date, Leaves& leaves, Chance& chance) const;
    static void startLeave(Leaves& leaves, Day& day, bool restrictedDay, Chance& chance);

    const SampleOptions& options_;
    const SampleCalendar& calendar_;
    DateTime start_, end_;
    int64_t salaryId_ = 0, registerId_ = 0;
    RowWriter employees_, versions_, balances_, rates_, salaries_, deductions_, registers_,
        overtime_, leave_, rotation_, adjustments_;
};

}  // namespace owb::sample
