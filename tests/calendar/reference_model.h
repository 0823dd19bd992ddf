// The day counts and the overtime worked out a second time, from plain structures in memory and day
// by day, as somebody would who had the rules and no database. Half days are whole numbers here
// (2 is a day), hours are minutes or hundredths.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/date_time.h"

namespace owb::model {

using Day = int32_t;  // DateTime::day

struct Halves {
    bool first = false, second = false;
    int count() const { return (first ? 1 : 0) + (second ? 1 : 0); }
};

struct Weeks {
    int32_t since;  // month key
    int weekday;    // 1 Sunday
    Halves weeks[5];
};

struct Head {
    int id = 0, type = 1, basis = 2;
    bool generalFirst = false, rotating = false, compensatory = false;
    int editedDays = 0;  // basis 3, half days of every month
    bool ot1 = false, ot2 = false, special = false, weeklyToSecond = false, generalToSecond = false,
         wholeDayToSecond = false;
    struct Band {
        bool allowed = false, affects = false, deduct = false;
    } none, half, full;
    int minimumMinutes = 0;
    std::vector<Weeks> weeks;
};

struct Holiday {
    int id;
    Day day;
    int head, branch;  // 0 all
    std::set<int> exceptHeads, exceptBranches;
};

struct Rotating {
    int head, employee;
    Day day;
    Halves off;
};

struct Leave {
    int version, kind;
    Day day;
    Halves taken;
    int figure = 0;  // half days of a month; replaces the halves
};

struct Version {
    int id, head, branch;
    Day from;
    std::optional<Day> to;
};

struct Employee {
    int id;
    Day joined;
    std::optional<Day> left;
    std::vector<Version> versions;
    std::vector<Leave> leaves;
    std::map<Day, int> hours;  // hundredths as typed: 930 is 9.30
};

struct Month {
    int32_t key;
    Day from, to;
};

struct Figures {
    int calc = 0, nod = 0, ndp = 0;          // half days
    int64_t ot1 = 0, ot2 = 0, adjusted = 0;  // hundredths of hours
    bool operator==(const Figures&) const = default;
    std::string text() const;
};

struct Company {
    std::vector<Month> months;
    std::map<int, Head> heads;
    std::map<int, bool> kindAffectsPay;  // kinds of leave from 5 on
    std::vector<Holiday> holidays;
    std::vector<Rotating> rotating;
    std::map<int, std::vector<Weeks>> branchWeeks;
    std::set<std::pair<int, Day>> specialDays;  // head, day
    std::optional<Day> byBranchFrom;
    std::vector<Employee> employees;

    Figures month(const Employee& employee, const Version& version, const Month& month) const;

  private:
    struct Where;  // an employee under a head in a month
    Halves weekly(const Where& w, Day day, Day branchOn) const;
    bool general(const Where& w, Day day) const;
    bool listedGeneral(const Where& w, Day day) const;
    int outOfSpan(const Where& w, Day from, Day to, int mode) const;
    int leaves(const Where& w, Day from, Day to, bool paidToo, int onlyKind) const;
    void overtime(const Where& w, const Version& version, Day to, Figures& figures) const;
    int branchOf(const Employee& employee, Day day) const;
};

}  // namespace owb::model
