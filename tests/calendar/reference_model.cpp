#include "calendar/reference_model.h"

#include <algorithm>
#include <cmath>

namespace owb::model {

namespace {

int dayOfMonth(Day day) {
    return DateTime{day}.civil().day;
}

Halves ofWeek(const std::vector<Weeks>& all, int32_t month, Day day) {
    const Weeks* best = nullptr;
    for (const Weeks& w : all)
        if (w.weekday == DateTime{day}.weekday() && w.since <= month &&
            (best == nullptr || w.since > best->since))
            best = &w;
    return best ? best->weeks[(dayOfMonth(day) - 1) / 7] : Halves{};
}

int64_t hundredths(double hours) {
    return std::llround(hours * 100);
}

}  // namespace

struct Company::Where {
    const Employee& employee;
    const Head& head;
    const Month& month;
};

std::string Figures::text() const {
    auto show = [](int64_t n) { return std::to_string(n) + " "; };
    return show(calc) + show(nod) + show(ndp) + show(ot1) + show(ot2) + show(adjusted);
}

int Company::branchOf(const Employee& employee, Day day) const {
    for (const Version& v : employee.versions)
        if (v.from <= day && (!v.to || *v.to >= day) && employee.joined <= day) return v.branch;
    return employees.front().versions.front().branch;
}

Halves Company::weekly(const Where& w, Day day, Day branchOn) const {
    if (w.head.rotating) {
        for (int level = 0; level < 3; ++level) {
            bool known = false;
            Halves off;
            for (const Rotating& r : rotating) {
                const bool mine = level == 0   ? r.employee == w.employee.id
                                  : level == 1 ? r.employee == 0 && r.head == w.head.id
                                               : r.employee == 0 && r.head == 0;
                if (!mine || r.day < w.month.from || r.day > w.month.to) continue;
                if (r.off.count() > 0) known = true;
                if (r.day == day) off = r.off;
            }
            if (known) return off;
        }
        const auto found = branchWeeks.find(branchOf(w.employee, branchOn));
        if (found != branchWeeks.end() &&
            std::any_of(found->second.begin(), found->second.end(),
                        [&](const Weeks& k) { return k.since <= w.month.key; }))
            return ofWeek(found->second, w.month.key, day);
    }
    return ofWeek(w.head.weeks, w.month.key, day);
}

bool Company::listedGeneral(const Where& w, Day day) const {
    return std::any_of(holidays.begin(), holidays.end(), [&](const Holiday& h) {
        return h.day == day && (h.head == 0 || h.head == w.head.id) &&
               !h.exceptHeads.count(w.head.id);
    });
}

bool Company::general(const Where& w, Day day) const {
    if (!byBranchFrom || *byBranchFrom > day) return listedGeneral(w, day);
    const int branch = branchOf(w.employee, day);
    return std::any_of(holidays.begin(), holidays.end(), [&](const Holiday& h) {
        return h.day == day && (h.branch == 0 || h.branch == branch) &&
               !h.exceptBranches.count(branch);
    });
}

// Half days of holidays in a span: mode 1 of either kind, 2 weekly, 3 general.
int Company::outOfSpan(const Where& w, Day from, Day to, int mode) const {
    int sum = 0;
    for (Day day = from; day <= to; ++day) {
        const bool weeklyListed = mode != 3 && weekly(w, day, from).count() > 0;
        const bool generalListed = mode != 2 && listedGeneral(w, day);
        if (!weeklyListed && !generalListed) continue;
        const int off = weekly(w, day, day).count();
        const bool holiday = general(w, day);
        if (mode == 1) sum += std::max(off, holiday ? 2 : 0);
        if (mode == 2 && !(w.head.generalFirst && holiday)) sum += off;
        if (mode == 3 && holiday) sum += w.head.generalFirst ? 2 : 2 - off;
    }
    return sum;
}

// Half days of leave in a span under the head; all kinds but compensatory, or only those that take
// pay, or one kind.
int Company::leaves(const Where& w, Day from, Day to, bool paidToo, int onlyKind) const {
    if (w.head.type == 4) {
        for (const Version& v : w.employee.versions)
            if (v.from <= to && (!v.to || *v.to >= to) && v.to) to = std::min(*v.to, w.month.to);
    }
    int sum = 0;
    for (const Leave& l : w.employee.leaves) {
        const Version& v = w.employee.versions[static_cast<size_t>(l.version - 1)];
        if (l.day < from || l.day > to || v.head != w.head.id) continue;
        const bool affects = l.kind == 1 || (l.kind >= 5 && kindAffectsPay.at(l.kind));
        const bool counts = onlyKind  ? l.kind == onlyKind
                            : paidToo ? l.kind != 2 && l.kind != 3
                                      : affects;
        if (counts) sum += l.figure ? l.figure : l.taken.count();
    }
    return sum;
}

Figures Company::month(const Employee& employee, const Version& version, const Month& month) const {
    const Where w{employee, heads.at(version.head), month};
    const int basis = w.head.basis;
    Day from = std::max(version.from, month.from),
        to = std::min(version.to.value_or(month.to), month.to);
    const Day versionEnd = to;
    if (employee.joined >= from && employee.joined <= to) from = employee.joined;
    if (employee.left && *employee.left >= from && *employee.left <= to) to = *employee.left;
    const int span = 2 * (to - from + 1);

    Figures f;
    const int outside = basis == 4 ? 1 : basis == 5 ? 3 : basis == 6 ? 2 : 0;
    if (basis == 1 || basis == 3) {
        f.calc = basis == 1 ? 60 : w.head.editedDays;
        f.nod = std::min(span, f.calc);
    } else {
        f.calc = 2 * (month.to - month.from + 1);
        f.nod = span;
        if (outside) {
            f.calc -= outOfSpan(w, month.from, month.to, outside);
            f.nod -= outOfSpan(w, from, to, outside);
        }
    }
    f.ndp = f.nod - leaves(w, from, to, true, 0);
    f.nod -= leaves(w, from, to, false, 0);
    if (basis != 4) f.ndp -= outOfSpan(w, from, to, basis < 4 ? 1 : basis == 5 ? 2 : 3);
    if (w.head.compensatory) f.ndp += leaves(w, from, to, false, 3) - leaves(w, from, to, false, 2);

    // Leave on a holiday went off twice.
    for (const Leave& l : employee.leaves) {
        if (l.version != version.id || l.day < from || l.day > to) continue;
        if (l.kind == 2 || l.kind == 3) continue;
        const Halves off = weekly(w, l.day, l.day);
        const bool isWeekly = off.count() > 0, isGeneral = general(w, l.day);
        const int taken = l.taken.count();
        const int onWeekly =
            (l.taken.first && off.first ? 1 : 0) + (l.taken.second && off.second ? 1 : 0);
        const bool affects = l.kind == 1 || kindAffectsPay.at(l.kind);
        int present = 0, paid = 0;
        switch (basis) {
            case 1:
            case 2:
            case 3:
                present = onWeekly + (isGeneral ? taken : 0);
                break;
            case 4:
                present = paid = (isGeneral ? taken : 0) + onWeekly;
                break;
            case 5:
                present = onWeekly + (isGeneral ? taken : 0);
                paid = isGeneral && !(isWeekly && !w.head.generalFirst) ? taken : 0;
                break;
            default:
                present = (isGeneral ? taken : 0) + onWeekly;
                paid = isGeneral && w.head.generalFirst ? 0 : onWeekly;
        }
        f.ndp += std::min(present, 2);
        if (affects) f.nod += std::min(paid, 2);
    }
    f.nod = std::max(f.nod, 0);
    f.ndp = std::max(f.ndp, 0);
    f.calc = std::max(f.calc, 0);
    if (w.head.type == 2 || w.head.type == 3) overtime(w, version, versionEnd, f);
    return f;
}

// Full day 8 hours, half day 4; bands as they are set up for every head: half day from 2.00 to
// 5.99, full day from 6.00.
void Company::overtime(const Where& w, const Version& version, Day to, Figures& figures) const {
    if (w.employee.left) to = std::min(to, *w.employee.left);
    const Head& h = w.head;
    double ot1 = 0, ot2 = 0, adjusted = 0;
    for (Day day = std::max(version.from, w.month.from); day <= to; ++day) {
        const auto typed = w.employee.hours.find(day);
        const int raw = typed == w.employee.hours.end() ? 0 : typed->second;
        ot1 = raw / 100.0;
        if ((h.ot1 || h.ot2) && raw > 0) {
            if (h.type == 3) {
                Halves leave;
                for (const Leave& l : w.employee.leaves)
                    if (l.day == day) {
                        leave.first |= l.taken.first;
                        leave.second |= l.taken.second;
                    }
                const Head::Band& band = raw >= 600                 ? h.full
                                         : raw >= 200 && raw <= 599 ? h.half
                                                                    : h.none;
                const int clock = raw + 400 * leave.count();
                const double hours = clock / 100 + clock % 100 / 60.0;
                const double over = raw >= 600 ? std::round((hours - 8) * 100) / 100 : hours - 8;
                const bool deduct = &band == &h.none || band.deduct;
                ot1 = ot2 = adjusted = 0;
                if (band.allowed && over >= 0)
                    ot1 = over;
                else if (band.affects)
                    adjusted = over;
                else if (band.allowed && deduct)
                    ot1 = over;
                if (ot1 > 0 && ot1 * 60 <= h.minimumMinutes) ot1 = 0;
            }
            if (h.special && h.ot2) {
                const Halves off = weekly(w, day, day);
                const double hours = raw / 100.0;
                if (specialDays.count({h.id, day})) {
                    ot2 = h.wholeDayToSecond ? hours : ot1;
                } else if (off.count() > 0) {
                    const double counted = off.count() == 2 ? hours : hours - 4;
                    ot1 = h.weeklyToSecond ? 0 : counted;
                    ot2 = h.weeklyToSecond ? counted : 0;
                } else if (general(w, day)) {
                    (h.generalToSecond ? ot2 : ot1) = hours;
                }
            }
            if (h.type == 3) {
                const int64_t clock = std::abs(hundredths(ot2));
                const double decimal =
                    static_cast<double>(clock / 100) + static_cast<double>(clock % 100) / 60.0;
                ot2 = ot2 < 0 ? -decimal : decimal;
            }
        }
        figures.ot1 += hundredths(ot1);
        figures.ot2 += hundredths(ot2);
        figures.adjusted += hundredths(adjusted);
    }
}

}  // namespace owb::model
