// The leave ledger worked out a second time: the tables that it rests on are read once, and every
// row follows from plain structures in memory, in the order of its dates. Leave is counted in
// hundredths of a day. Only the counts of Pay Days and Present Days come from the engine; they have
// a reference of their own.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "session/Session.h"

namespace owb::model {

using Day = int32_t;    // DateTime::day
using Cents = int64_t;  // hundredths of a day of leave

struct LedgerRow {
    int employee = 0, version = 0, head = 0, leave = 0;
    Day from = 0, to = 0;
    int32_t month = 0;
    Cents earned = 0, credit = 0, brought = 0, lapsed = 0;  // ACTALLOTLEV ALLOTLEV COLEV LAPSE
    std::string text() const;
};

class ReferenceLedger {
  public:
    // `entered` are the credits of rows that are not allotted automatically, by employee, leave and
    // first day; rows that are not in it have none.
    using Entered = std::map<std::tuple<int, int, Day>, Cents>;
    ReferenceLedger(Session& session, Entered entered);

    // All rows, by employee, leave and first day.
    std::vector<LedgerRow> work();
    // The day from which an employee's leave is allotted.
    Day allotFrom(int employee, int leave) const;

  private:
    struct Month {
        int32_t key;
        Day from, to;
        bool ported;
    };
    struct Version {
        int id, head;
        Day from;
        std::optional<Day> to;
    };
    struct Employee {
        Day joined = 0;
        std::optional<Day> left, probation, confirmed;
        std::vector<Version> versions;
        std::vector<std::pair<int, int32_t>> salary;  // version, month
    };
    struct Setting {
        int32_t since;
        int dateType, addMonths, addDays;
        bool automatic;
        int type, on, asPer, every, rounding;
        double least;
        bool wholeJoining, wholeLeaving, carries;
        bool lower, upper;
        Cents lowerLimit, upperLimit;
        bool lapsesNegative;
        int lapseMonth;
        Cents lapseLimit;
        int balanceRounding;
    };
    struct Figure {
        int32_t since;
        int type, on;
        double period, leaves;
        int query;
        std::string text;
    };
    struct Taken {
        int employee, version, leave;
        Day day;
        Cents amount;
    };
    struct Adjusted {
        int employee, version, head, leave;
        int32_t month;
        Day day;
        Cents added, taken;
    };
    struct Encashed {
        int employee, leave;
        Day day;
        Cents days;
    };
    struct Span {
        Day from, to;
        int length() const { return to - from + 1; }
    };
    struct Counts {
        double calendar = 0, payable = 0, present = 0;
    };

    void read();
    void makeRows();
    const Setting* inForce(int leave, int head, int32_t month) const;
    const Figure* figure(const LedgerRow& row, const Setting& s) const;
    const LedgerRow* before(const LedgerRow& row) const;
    const Employee& owner(const LedgerRow& row) const { return employees_.at(row.employee); }

    Span year(int kind, int32_t month) const;
    Span periodOf(const Setting& s, int32_t month) const;
    std::optional<Span> periodBefore(const Setting& s, int32_t month) const;
    Span shifted(Span span) const;
    int periodMonths(int type) const { return type == 3 ? 3 : 6; }
    int32_t periodStart(const Setting& s, int32_t month) const;
    bool known(int32_t start, int months) const;

    Counts count(const LedgerRow& row, Day from, Day to, int32_t month, int version, int head,
                 int basis);
    double leavesOf(const LedgerRow& row, const Figure& f);
    double earn(const LedgerRow& row, const Setting& s);
    double monthly(const LedgerRow& row, const Setting& s, double leaves);
    double monthlyBefore(const LedgerRow& row, const Setting& s, double leaves);
    double yearly(const LedgerRow& row, const Setting& s, double leaves);
    double yearlyBefore(const LedgerRow& row, const Setting& s, double leaves);
    bool opens(const LedgerRow& row, const Setting& s,
               const std::function<bool(const LedgerRow&)>& since) const;
    bool opensMonth(const LedgerRow& row, const Setting& s) const;
    int service(const LedgerRow& row, const Setting& s) const;
    Counts total(const LedgerRow& row, Span span);

    Cents takenIn(int employee, int leave, int head, Day from, Day to) const;
    Cents opening(const LedgerRow& row) const;
    Cents closing(const LedgerRow& last, int rounding) const;
    void chain(LedgerRow& row, LedgerRow* last);

    Session& session_;
    Entered entered_;
    bool midMonth_ = false;
    int32_t start_ = 0;
    std::map<int32_t, Month> months_;
    std::map<int, Employee> employees_;
    std::map<std::pair<int, int>, std::vector<Setting>> settings_;  // leave, head
    std::map<std::pair<int, int>, std::vector<Figure>> figures_;
    std::vector<Taken> taken_;
    std::vector<Adjusted> adjusted_;
    std::vector<Encashed> encashed_;
    std::map<std::pair<int, int>, Cents> opening_;
    std::vector<int> leaves_;
    std::vector<LedgerRow> rows_;
};

// By the codes of RNDTYPE.
Cents rounded(Cents value, int type);

}  // namespace owb::model
