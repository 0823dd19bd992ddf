#include "sample/attendance.h"

#include <algorithm>

#include "sample/rules.h"

namespace owb::sample {

namespace {

// "C01, C02, ... C31" for a column's stem.
std::string dayColumns(const std::string& stem) {
    std::string out;
    for (int n = 1; n <= 31; ++n)
        out += (n > 1 ? ", " : "") + stem + (n < 10 ? "0" : "") + std::to_string(n);
    return out;
}

// 830 -> "8.3", as the registers show a figure.
std::string figureText(int hundredths) {
    std::string text = std::to_string(hundredths / 100);
    if (hundredths % 100) {
        text += hundredths % 100 < 10 ? ".0" : ".";
        text += std::to_string(hundredths % 10 ? hundredths % 100 : hundredths % 100 / 10);
    }
    return text;
}

std::string statusText(int first, int second, const std::string& present) {
    const std::string a = first ? leaveShort(first) : present;
    const std::string b = second ? leaveShort(second) : present;
    if (a == b) return a;
    if (a.empty() || b.empty()) return "½" + a + b;
    return "½" + a + "+½" + b;
}

bool keepsRegister(int head) {
    return head == kPlant || head == kWorkshop || head == kStores || head == kSecurity;
}

}  // namespace

SampleAttendance::SampleAttendance(Connection& connection, const SampleOptions& options,
                                   const SampleCalendar& calendar)
    : options_(options),
      calendar_(calendar),
      start_(firstDayOf(options.fromMonth)),
      end_(lastDayOf(options.lastMonth())),
      employees_(
          connection, "MAS_EMPLOYEE",
          "EMPID, EMPNAME, REFNO, DOJ, DOL, DOB, SALCALCFROM, RETIREMENTDATE, "
          "RESIGNATIONDATE, CONFIRMATIONDATE, PROBATIONDATE, SEX, LOCKYN, PFYN, ESIYN, TDSYN"),
      versions_(connection, "MAS_EMPLOYEEDET",
                "EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, ATTHEADID, BRANCHID, STRUCTID, "
                "DESIGNATION, OCCUPATION, DEPARTMENT, DIVISION, GRADE"),
      balances_(connection, "ATT_OPBAL", "EMPID, LEVID, OPBAL"),
      rates_(connection, "SLC_SALARYRATE_E",
             "SALRATEID, EMPID, EMPDETID, MONTHYEAR, BASIC, ECOMP01, TOTALENTERED"),
      salaries_(connection, "SLC_SALARYCALC_E",
                "SALID, EMPID, EMPDETID, MONTHYEAR, ETOTAL, BASIC, ECOMP01, EDITMODEYN"),
      deductions_(connection, "SLC_SALARYCALC_D", "SALID, EMPID, EMPDETID, MONTHYEAR, DCOMP01"),
      registers_(
          connection, "ATT_DAYTODAY",
          "ATTTRANNO, EMPID, EMPDETID, ATTHEADID, MONTHYEAR, EDITMODEYN, " + dayColumns("DAY")),
      overtime_(connection, "ATT_OVERTIME", "ATTTRANNO, " + dayColumns("OTDAY")),
      leave_(connection, "LEV_DETAILS",
             "EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN, LEVMONTHLY, REASON"),
      rotation_(connection, "ATT_WKLYROT", "ATTHEADID, EMPID, WEEKDATE, FIRSTHALFYN, SECONDHALFYN"),
      adjustments_(
          connection, "LEV_ADJUSTMENT",
          "EMPID, EMPDETID, ATTHEADID, LEVID, MONTHYEAR, ALLOT, TAKEN, ASONDATE, REMARKS") {}

void SampleAttendance::finish() {
    for (RowWriter* table : {&employees_, &versions_, &balances_, &rates_, &salaries_, &deductions_,
                             &registers_, &overtime_, &leave_, &rotation_, &adjustments_})
        table->flush();
}

void SampleAttendance::write(const SampleEmployee& employee) {
    writeMaster(employee);
    if (SampleCalendar::ownRotation(employee)) writeRotation(employee);
    Chance chance(options_.seed, static_cast<uint64_t>(employee.id) + 1000000);
    Leaves leaves;
    leaves.sick = 7;
    leaves.restricted = 2;
    if (employee.joined < start_) {
        leaves.earned = chance.between(0, 30);
        balances_.add(employee.id, int{kEarned}, static_cast<int>(leaves.earned));
    }
    for (const SampleVersion& version : employee.versions) {
        const DateTime from = std::max(version.from, start_);
        const DateTime to = std::min(version.to.value_or(end_), employee.lastDay(end_));
        for (int n = 0; n < options_.months; ++n) {
            const int32_t month = options_.fromMonth + n;
            const DateTime first = std::max(from, firstDayOf(month));
            const DateTime last = std::min(to, lastDayOf(month));
            if (first <= last) writeSlice({employee, version, month, first, last}, leaves, chance);
        }
    }
}

void SampleAttendance::writeMaster(const SampleEmployee& e) {
    std::string refNo = std::to_string(e.id);
    refNo = "SE" + std::string(refNo.size() < 5 ? 5 - refNo.size() : 0, '0') + refNo;
    std::optional<DateTime> resigned;
    if (e.left) resigned = e.left->plusDays(-30);
    const DateTime retirement = e.born.plusMonths(58 * 12), confirmed = e.joined.plusMonths(6);
    // Who left in a month that is paid is settled, and held against changes.
    const bool held = e.left && *e.left < firstDayOf(options_.firstOpenMonth());
    const bool insured = e.basic <= 21000;
    employees_.add(e.id, e.name, refNo, e.joined, e.left, e.born, e.joined, retirement, resigned,
                   confirmed, confirmed, e.female ? "Female" : "Male", held, true, insured, true);
    const int hra = e.basic * 2 / 5;
    for (const SampleVersion& v : e.versions) {
        // Each head has a department and a designation of the same number.
        versions_.add(e.id, v.detId, v.from, v.to, v.head, v.branch, 1, v.head, 1, v.head, 1, 1);
        const CivilDate c = std::max(v.from, start_).civil();
        rates_.add(e.id * 10 + v.detId, e.id, v.detId, c.year * 12 + c.month, e.basic, hra,
                   e.basic + hra);
    }
}

void SampleAttendance::writeRotation(const SampleEmployee& e) {
    for (DateTime day = std::max(start_, e.joined); day <= e.lastDay(end_); day = day.plusDays(1)) {
        const OffHalves off = calendar_.weeklyOff(e.id, kSecurity, day);
        if (off.any()) rotation_.add(0, e.id, day, off.first, off.second);
    }
}

void SampleAttendance::writeSlice(const Slice& slice, Leaves& leaves, Chance& chance) {
    leaves.casual += 1;
    if (slice.month % 12 == 4) {
        leaves.casual = 1;
        leaves.sick = 7;
    }
    if (slice.month % 12 == 1) leaves.restricted = 2;

    std::vector<Day> days;
    for (DateTime date = slice.from; date <= slice.to; date = date.plusDays(1))
        days.push_back(dayOf(slice, date, leaves, chance));
    writeSalary(slice);
    if (keepsRegister(slice.version.head)) writeRegister(slice, days);
    writeLeave(slice, days);

    // A leave day granted by hand, in the third month.
    if (slice.employee.id % 25 == 11 && slice.month == options_.fromMonth + 2)
        adjustments_.add(slice.employee.id, slice.version.detId, slice.version.head, int{kEarned},
                         slice.month, 1, 0, slice.to, "Long service");
}

void SampleAttendance::startLeave(Leaves& leaves, Day& day, bool restrictedDay, Chance& chance) {
    auto whole = [&](int leave, int days) {
        leaves.running = leave;
        leaves.daysLeft = days - 1;
        day.first = day.second = leave;
    };
    if (restrictedDay && leaves.restricted > 0 && chance.perMille(250)) {
        --leaves.restricted;
        whole(kRestricted, 1);
        return;
    }
    const int roll = chance.between(1, 1000);
    if (roll <= 12) {
        const int length = chance.between(1, 3);
        whole(leaves.sick >= length ? kSick : kLossOfPay, length);
        if (day.first == kSick) leaves.sick -= length;
    } else if (roll <= 26 && leaves.casual >= 1) {
        whole(kCasual, 1);
        leaves.casual -= 1;
    } else if (roll <= 34 && leaves.casual >= 0.5) {
        (chance.perMille(500) ? day.first : day.second) = kCasual;
        leaves.casual -= 0.5;
    } else if (roll <= 38 && leaves.earned >= 3) {
        const int length = std::min(chance.between(3, 8), static_cast<int>(leaves.earned));
        whole(kEarned, length);
        leaves.earned -= length;
    } else if (roll <= 41 && leaves.compOff >= 1) {
        whole(kCompOff, 1);
        leaves.compOff -= 1;
    } else if (roll <= 43) {
        whole(kLossOfPay, chance.between(1, 2));
    } else if (roll <= 45 && leaves.casual >= 0.5 && leaves.sick >= 0.5) {
        day.first = kCasual;
        day.second = kSick;
        leaves.casual -= 0.5;
        leaves.sick -= 0.5;
    }
}

SampleAttendance::Day SampleAttendance::dayOf(const Slice& slice, const DateTime& date,
                                              Leaves& leaves, Chance& chance) const {
    const int head = slice.version.head;
    const OffHalves off = calendar_.weeklyOff(slice.employee.id, head, date);
    const bool holiday = calendar_.holiday(head, slice.version.branch, date);
    const bool working = !holiday && !off.full();
    Day day;
    if (leaves.daysLeft > 0) {
        // Where the plant and the stores count earned leave, the off days in it count too.
        const bool counted = (head == kPlant || head == kStores) && leaves.running == kEarned;
        if (working || counted) {
            day.first = off.first && !counted ? 0 : leaves.running;
            day.second = off.second && !counted ? 0 : leaves.running;
        }
        if (working) --leaves.daysLeft;
    } else if (!working) {
        if ((head == kPlant || head == kWorkshop) && chance.perMille(25)) {
            day.first = day.second = kCompWork;
            leaves.compOff += 1;
        }
    } else {
        startLeave(leaves, day, calendar_.restricted(date), chance);
    }

    const bool onLeave = day.first && day.second && day.first != kCompWork;
    if (head == kWorkshop) {
        constexpr int minutes[] = {0, 10, 15, 30, 45};
        auto hours = [&](int low, int high) {
            return chance.between(low, high) * 100 + minutes[chance.between(0, 4)];
        };
        if (onLeave) return day;
        if (day.first == kCompWork)
            day.hundredths = 800;
        else if (working)
            day.hundredths = day.first || day.second ? hours(4, 4)
                             : chance.perMille(40)   ? hours(6, 7)
                                                     : hours(8, 9);
    } else if (head == kPlant || head == kStores) {
        if (onLeave) return day;
        if (working && chance.perMille(50))
            day.hundredths = chance.between(2, 8) * 50;
        else if (!working && chance.perMille(10))
            day.hundredths = chance.between(4, 8) * 100;
    }
    return day;
}

void SampleAttendance::writeSalary(const Slice& slice) {
    const SampleEmployee& e = slice.employee;
    const int hra = e.basic * 2 / 5, fund = std::min(e.basic, 15000) * 12 / 100;
    ++salaryId_;
    salaries_.add(salaryId_, e.id, slice.version.detId, slice.month, e.basic + hra, e.basic, hra,
                  1);
    deductions_.add(salaryId_, e.id, slice.version.detId, slice.month, fund);
}

void SampleAttendance::writeRegister(const Slice& slice, const std::vector<Day>& days) {
    const std::string present = slice.version.head == kWorkshop ? "" : "P";
    const int before = slice.from.day - firstDayOf(slice.month).day;
    ++registerId_;
    registers_.beginRow();
    for (const int64_t key : {registerId_, int64_t{slice.employee.id}, int64_t{slice.version.detId},
                              int64_t{slice.version.head}, int64_t{slice.month}, int64_t{1}})
        registers_.cell(key);
    overtime_.beginRow();
    overtime_.cell(registerId_);
    for (int n = 0; n < 31; ++n) {
        const int at = n - before;
        std::string text, figure = "0";
        if (at >= 0 && at < static_cast<int>(days.size())) {
            const Day& day = days[static_cast<size_t>(at)];
            text = statusText(day.first, day.second, present);
            if (day.hundredths) {
                figure = figureText(day.hundredths);
                text = figure + (text.empty() ? "" : " + " + text);
            }
        }
        registers_.cell(text);
        overtime_.cell(figure);
    }
    registers_.endRow();
    overtime_.endRow();
}

void SampleAttendance::writeLeave(const Slice& slice, const std::vector<Day>& days) {
    std::map<int, int> halves;  // of the month, by leave, for heads that keep monthly figures
    auto add = [&](int leave, const DateTime& date, bool first, bool second,
                   const std::string& monthly) {
        leave_.add(slice.employee.id, slice.version.detId, leave, date, first, second, monthly, "");
    };
    for (size_t n = 0; n < days.size(); ++n) {
        const Day& day = days[n];
        const DateTime date = slice.from.plusDays(static_cast<int>(n));
        if (slice.version.head == kSales) {
            if (day.first) ++halves[day.first];
            if (day.second) ++halves[day.second];
        } else if (day.first && day.first == day.second) {
            add(day.first, date, true, true, "0");
        } else {
            if (day.first) add(day.first, date, true, false, "0");
            if (day.second) add(day.second, date, false, true, "0");
        }
    }
    for (const auto& [leave, count] : halves)
        add(leave, slice.from, false, false, std::to_string(count / 2) + (count % 2 ? ".5" : ""));
}

}  // namespace owb::sample
