#include "leave/reference_ledger.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "calendar/clsNODNDPCalc.h"
#include "db/recordset.h"

namespace owb::model {

namespace {

constexpr Cents kDay = 100;

// A number as the text of a statement carries it, cut to hundredths: halves go away from zero.
Cents hundredths(double value) {
    char text[400];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr;
    std::string digits(text, end);
    const bool negative = digits[0] == '-';
    if (negative) digits.erase(0, 1);
    const size_t point = std::min(digits.find('.'), digits.size());
    std::string fraction = point < digits.size() ? digits.substr(point + 1) : "";
    fraction.resize(std::max<size_t>(fraction.size(), 3), '0');
    Cents cents = std::stoll(digits.substr(0, point)) * 100 + std::stoll(fraction.substr(0, 2));
    if (fraction[2] >= '5') ++cents;
    return negative ? -cents : cents;
}

Cents centsOf(const Field& value) {
    return std::llround(value.toDouble() * 100);
}

std::optional<Day> dayOf(const Field& value) {
    if (value.isNull()) return {};
    return value.toDate().day;
}

int32_t keyOf(Day day) {
    const CivilDate c = DateTime{day}.civil();
    return c.year * 12 + c.month;
}

int monthOf(int32_t key) {
    return (key - 1) % 12 + 1;
}

Day firstOf(int32_t key) {
    return DateTime::dayNumber((key - 1) / 12, monthOf(key), 1);
}

Cents multiple(Cents value, Cents of, bool up) {
    Cents down = value / of * of;
    if (down > value) down -= of;
    return up && down != value ? down + of : down;
}

}  // namespace

Cents rounded(Cents value, int type) {
    switch (type) {
        case 1:
        case 2:
            return multiple(value, kDay / 2, type == 2);
        case 3:
        case 4:
            return multiple(value, kDay, type == 4);
        case 5: {
            const Cents size = std::abs(value), whole = size / kDay * kDay, rest = size - whole;
            const Cents near = whole + (rest < 25 ? 0 : rest < 75 ? 50 : 100);
            return value < 0 ? -near : near;
        }
        case 6: {
            const Cents near = (std::abs(value) + 50) / kDay * kDay;
            return value < 0 ? -near : near;
        }
        default:
            return value;
    }
}

std::string LedgerRow::text() const {
    std::string all = isoText(DateTime{from}) + ".." + isoText(DateTime{to}) + " employee " +
                      std::to_string(employee) + "/" + std::to_string(version) + " head " +
                      std::to_string(head) + " leave " + std::to_string(leave);
    for (const auto& [name, value] : {std::pair{" earned ", earned},
                                      {" credit ", credit},
                                      {" brought ", brought},
                                      {" lapsed ", lapsed}})
        all += name + std::to_string(value);
    return all;
}

ReferenceLedger::ReferenceLedger(Session& session, Entered entered)
    : session_(session), entered_(std::move(entered)) {
    read();
}

void ReferenceLedger::read() {
    const auto each = [&](const std::string& sql, const std::function<void(Recordset&)>& take) {
        Recordset rs(session_.gConn, sql);
        for (; !rs.IsEOF(); rs.MoveNext()) take(rs);
    };
    const auto number = [](Recordset& rs, const char* name) {
        return static_cast<int>(rs.Fields(name).toInt());
    };
    each("SELECT CALCINMIDYN, LVSTARTMNYEAR FROM MAS_OPTSETFEATURE", [&](Recordset& rs) {
        midMonth_ = rs.Fields(0).toBool();
        start_ = number(rs, "LVSTARTMNYEAR");
    });
    each(
        "SELECT MONTHYEAR, CALCSTARTDATE, CALCENDDATE, TDSPORTYN FROM MAS_MONTHYEAR",
        [&](Recordset& rs) {
            const int32_t key = number(rs, "MONTHYEAR");
            months_[key] = {key, *dayOf(rs.Fields(1)), *dayOf(rs.Fields(2)), rs.Fields(3).toBool()};
        });
    each("SELECT EMPID, DOJ, DOL, PROBATIONDATE, CONFIRMATIONDATE FROM MAS_EMPLOYEE",
         [&](Recordset& rs) {
             Employee& e = employees_[number(rs, "EMPID")];
             e.joined = *dayOf(rs.Fields(1));
             e.left = dayOf(rs.Fields(2));
             e.probation = dayOf(rs.Fields(3));
             e.confirmed = dayOf(rs.Fields(4));
         });
    each("SELECT * FROM MAS_EMPLOYEEDET ORDER BY EMPID, EMPDETID", [&](Recordset& rs) {
        employees_[number(rs, "EMPID")].versions.push_back(
            {number(rs, "EMPDETID"), number(rs, "ATTHEADID"), *dayOf(rs.Fields("EFFFROMDATE")),
             dayOf(rs.Fields("EFFTODATE"))});
    });
    each("SELECT EMPID, EMPDETID, MONTHYEAR FROM SLC_SALARYCALC_E", [&](Recordset& rs) {
        employees_[number(rs, "EMPID")].salary.emplace_back(number(rs, "EMPDETID"),
                                                            number(rs, "MONTHYEAR"));
    });
    each("SELECT * FROM LEV_SETTINGS ORDER BY MONTHYEAR", [&](Recordset& rs) {
        const auto n = [&](const char* name) { return number(rs, name); };
        const auto cents = [&](const char* name) { return centsOf(rs.Fields(name)); };
        const auto yes = [&](const char* name) { return rs.Fields(name).toInt() == 1; };
        settings_[{n("LEVID"), n("ATTHEADID")}].push_back({n("MONTHYEAR"),
                                                           n("MINDATETYPE"),
                                                           n("MINMONTH"),
                                                           n("MINDAYS"),
                                                           yes("AUTOALLOTYN"),
                                                           n("ALLOTTYPE"),
                                                           n("ALLOTON"),
                                                           n("ALLOTASPER"),
                                                           n("ALLOTFOR"),
                                                           n("ALLOTRNDTYPE"),
                                                           rs.Fields("MINLEVDAYS").toDouble(),
                                                           yes("EXCLDOJYN"),
                                                           yes("EXCLDOLYN"),
                                                           yes("COYN"),
                                                           yes("LOWERLIMITYN"),
                                                           yes("UPPERLIMITYN"),
                                                           cents("COLOWERLIMIT"),
                                                           cents("COLIMIT"),
                                                           rs.Fields("LAPSENEGATIVE").toInt() != 0,
                                                           n("LAPSEMONTH"),
                                                           cents("LAPSELIMIT"),
                                                           n("RNDTYPE")});
    });
    each(
        "SELECT C.*, F.FQUERY FROM LEV_ALLOTCONFIG C LEFT JOIN MAS_FORMULACUSTOM F ON F.FID = "
        "C.FID ORDER BY EFFFROM",
        [&](Recordset& rs) {
            figures_[{number(rs, "LEVID"), number(rs, "ATTHEADID")}].push_back(
                {number(rs, "EFFFROM"), number(rs, "ALLOTTYPE"), number(rs, "ALLOTON"),
                 rs.Fields("PERIOD").toDouble(), rs.Fields("NOL").toDouble(), number(rs, "QUERYYN"),
                 rs.Fields("FQUERY").toText()});
        });
    each(
        "SELECT EMPID, EMPDETID, LEVID, LEAVEDATE, CASE WHEN ISNULL(LEVMONTHLY, 0) = 0 THEN "
        "(ISNULL(FIRSTHALFYN, 0) + ISNULL(SECONDHALFYN, 0)) * 50 ELSE LEVMONTHLY * 100 END AS N "
        "FROM LEV_DETAILS",
        [&](Recordset& rs) {
            taken_.push_back({number(rs, "EMPID"), number(rs, "EMPDETID"), number(rs, "LEVID"),
                              *dayOf(rs.Fields("LEAVEDATE")), number(rs, "N")});
        });
    each("SELECT * FROM LEV_ADJUSTMENT", [&](Recordset& rs) {
        adjusted_.push_back({number(rs, "EMPID"), number(rs, "EMPDETID"), number(rs, "ATTHEADID"),
                             number(rs, "LEVID"), number(rs, "MONTHYEAR"),
                             *dayOf(rs.Fields("ASONDATE")), centsOf(rs.Fields("ALLOT")),
                             centsOf(rs.Fields("TAKEN"))});
    });
    each(
        "SELECT E.EMPID, L.LEVID, E.UPTODATE, E.NOOFDAYS FROM ATT_ENCASH E, LEV_ALLOTMENT L WHERE "
        "L.ALLOTID = E.ALLOTID",
        [&](Recordset& rs) {
            encashed_.push_back({number(rs, "EMPID"), number(rs, "LEVID"), *dayOf(rs.Fields(2)),
                                 centsOf(rs.Fields(3))});
        });
    each("SELECT EMPID, LEVID, OPBAL FROM ATT_OPBAL", [&](Recordset& rs) {
        opening_[{number(rs, "EMPID"), number(rs, "LEVID")}] = centsOf(rs.Fields(2));
    });
    each("SELECT LEVID FROM ATT_DEFINITION WHERE ALLOTMENTYN = 1 AND LEVID <> 3",
         [&](Recordset& rs) { leaves_.push_back(number(rs, "LEVID")); });
}

// --- which rows there are ---

Day ReferenceLedger::allotFrom(int employee, int leave) const {
    const Employee& e = employees_.at(employee);
    const Version& first = e.versions.front();
    int32_t month = keyOf(first.from);
    for (const auto& [key, m] : months_)
        if (m.from <= first.from && first.from <= m.to) month = key;
    const Setting* s = inForce(leave, first.head, month);
    const int type = s ? s->dateType : 0;
    const std::optional<Day> base = type == 1   ? e.probation
                                    : type == 2 ? e.confirmed
                                                : std::optional<Day>(e.joined);
    if (!base) return DateTime::dayNumber(2099, 12, 31);
    if (!s) return *base;
    return DateTime{*base}.plusMonths(s->addMonths).day + s->addDays;
}

void ReferenceLedger::makeRows() {
    for (const auto& [id, e] : employees_)
        for (const int leave : leaves_)
            for (const auto& [version, key] : e.salary) {
                const Month& m = months_.at(key);
                const auto v =
                    std::find_if(e.versions.begin(), e.versions.end(),
                                 [&](const Version& each) { return each.id == version; });
                const auto settings = settings_.find({leave, v->head});
                if (key < start_ || m.ported || settings == settings_.end() ||
                    settings->second.front().since > key)
                    continue;
                LedgerRow row{id,
                              version,
                              v->head,
                              leave,
                              std::max({m.from, v->from, allotFrom(id, leave)}),
                              m.to,
                              key};
                row.to = std::min({row.to, v->to.value_or(row.to), e.left.value_or(row.to)});
                if (row.from > row.to) continue;
                rows_.push_back(row);
            }
    std::sort(rows_.begin(), rows_.end(), [](const LedgerRow& a, const LedgerRow& b) {
        return std::tie(a.employee, a.leave, a.from) < std::tie(b.employee, b.leave, b.from);
    });
}

std::vector<LedgerRow> ReferenceLedger::work() {
    makeRows();
    for (LedgerRow& row : rows_) {
        const Setting* s = inForce(row.leave, row.head, row.month);
        const auto entered = entered_.find({row.employee, row.leave, row.from});
        if (entered != entered_.end()) row.credit = entered->second;
        if (row.leave == 2)
            row.credit = takenIn(row.employee, 3, row.head, row.from, row.to);
        else if (s->automatic) {
            const double earned = earn(row, *s);
            row.earned = hundredths(earned);
            row.credit = rounded(row.earned, s->rounding);
        }
    }
    for (LedgerRow& row : rows_) chain(row, const_cast<LedgerRow*>(before(row)));
    return rows_;
}

const ReferenceLedger::Setting* ReferenceLedger::inForce(int leave, int head, int32_t month) const {
    const auto all = settings_.find({leave, head});
    const Setting* last = nullptr;
    if (all == settings_.end()) return last;
    for (const Setting& s : all->second)
        if (s.since <= month) last = &s;
    return last;
}

const ReferenceLedger::Figure* ReferenceLedger::figure(const LedgerRow& row,
                                                       const Setting& s) const {
    int32_t key = row.month;
    if (s.type == 2) {
        key = (row.month - 1) / 12;
        if (s.on != 1 && monthOf(row.month) < 4) --key;
    }
    const Figure* last = nullptr;
    const auto all = figures_.find({row.leave, row.head});
    if (all == figures_.end()) return last;
    for (const Figure& f : all->second)
        if (f.type == s.type && f.since <= key && ((s.type != 2 && s.type != 4) || f.on == s.on))
            last = &f;
    return last;
}

const LedgerRow* ReferenceLedger::before(const LedgerRow& row) const {
    for (const LedgerRow& other : rows_)
        if (other.employee == row.employee && other.leave == row.leave && other.to + 1 == row.from)
            return &other;
    return nullptr;
}

// --- periods ---

ReferenceLedger::Span ReferenceLedger::shifted(Span span) const {
    const int32_t key = keyOf(span.from);
    const auto month = months_.find(key);
    if (!midMonth_ || month == months_.end() || keyOf(month->second.from) == key) return span;
    const int first = DateTime{month->second.from}.civil().day;
    const int last = DateTime{month->second.to}.civil().day;
    const CivilDate end = DateTime{span.to}.civil();
    return {firstOf(key - 1) + first - 1, DateTime::dayNumber(end.year, end.month, last)};
}

ReferenceLedger::Span ReferenceLedger::year(int kind, int32_t month) const {
    int y = (month - 1) / 12;
    if (kind == 1) return {firstOf(y * 12 + 1), firstOf(y * 12 + 13) - 1};
    if (monthOf(month) < 4) --y;
    return {firstOf(y * 12 + 4), firstOf(y * 12 + 16) - 1};
}

int32_t ReferenceLedger::periodStart(const Setting& s, int32_t month) const {
    const int length = periodMonths(s.type);
    const int from = s.type == 4 && s.on != 1 ? 4 : 1;  // the month that a period begins with
    int32_t start = month;
    while ((monthOf(start) - from + 12) % length != 0) --start;
    return start;
}

bool ReferenceLedger::known(int32_t start, int months) const {
    for (int i = 0; i < months; ++i)
        if (months_.contains(start + i)) return true;
    return false;
}

ReferenceLedger::Span ReferenceLedger::periodOf(const Setting& s, int32_t month) const {
    if (s.type == 2) return shifted(year(s.on, month));
    const int32_t start = periodStart(s, month);
    return shifted({firstOf(start), firstOf(start + periodMonths(s.type)) - 1});
}

std::optional<ReferenceLedger::Span> ReferenceLedger::periodBefore(const Setting& s,
                                                                   int32_t month) const {
    if (s.type == 2) return shifted(year(s.on, month - 12));
    const int length = periodMonths(s.type);
    const int32_t start = periodStart(s, month) - length;
    if (!known(start, length)) return {};
    return shifted({firstOf(start), firstOf(start + length) - 1});
}

// --- credit ---

ReferenceLedger::Counts ReferenceLedger::count(const LedgerRow& row, Day from, Day to,
                                               int32_t month, int version, int head, int basis) {
    Counts c;
    bool workingDaysOnly = false, prorateAlt = false, prorate = true;
    clsNODNDPCalc(session_).SetNODNDP(c.calendar, c.payable, c.present, row.employee, version,
                                      month, head, DateTime{from}, DateTime{to}, workingDaysOnly,
                                      prorateAlt, prorate, basis);
    return c;
}

double ReferenceLedger::leavesOf(const LedgerRow& row, const Figure& f) {
    if (f.query != 1 || f.text.empty()) return f.leaves;
    std::string sql = f.text;
    for (const auto& [name, value] : {std::pair<std::string, int64_t>{"$EMPID$", row.employee},
                                      {"$EMPDETID$", row.version},
                                      {"$ATTHEADID$", row.head},
                                      {"$LEVID$", row.leave},
                                      {"$MONTHYEAR$", row.month}})
        for (size_t at; (at = sql.find(name)) != std::string::npos;)
            sql.replace(at, name.size(), std::to_string(value));
    Recordset rs(session_.gConn, sql);
    return rs.IsEOF() || rs.Fields(0).isNull() ? 0 : rs.Fields(0).toDouble();
}

double ReferenceLedger::earn(const LedgerRow& row, const Setting& s) {
    const Figure* f = figure(row, s);
    if (f == nullptr) return 0;
    const double leaves = leavesOf(row, *f);
    if (s.type == 1) return monthly(row, s, leaves);
    if (s.type != 0) return yearly(row, s, leaves);
    double days = row.to - row.from + 1;
    if (s.on == 3) return leaves;
    if (s.on > 9) return 0;
    if (s.on > 0) {
        const Counts c =
            count(row, row.from, row.to, row.month, row.version, row.head, s.on >= 4 ? s.on : 0);
        days = s.on == 2 ? c.present : c.payable;
    }
    return leaves * (days / f->period);
}

double ReferenceLedger::monthly(const LedgerRow& row, const Setting& s, double leaves) {
    const bool odd = monthOf(row.month) % 2 == 1;
    if ((s.every == 1 && !odd) || (s.every == 2 && odd)) return 0;
    if (s.asPer == 1) return monthlyBefore(row, s, leaves);
    const Counts c = count(row, row.from, row.to, row.month, row.version, row.head, 0);
    switch (s.on) {
        case 0:
            return std::min(leaves, leaves * ((row.to - row.from + 1) / c.calendar));
        case 1:
            return c.payable >= s.least ? leaves * (c.payable / c.calendar) : 0;
        case 2:
            return c.present >= s.least ? leaves * (c.present / c.calendar) : 0;
        case 3:
            return opensMonth(row, s) ? leaves : 0;
        default:
            return 0;
    }
}

double ReferenceLedger::monthlyBefore(const LedgerRow& row, const Setting& s, double leaves) {
    if (before(row) == nullptr) return 0;
    const int32_t month = row.month - 1;
    const auto m = months_.find(month);
    // A month that the payroll does not have is the calendar month.
    const bool own = midMonth_ && m != months_.end();
    const Day first = own ? m->second.from : firstOf(month),
              last = own ? m->second.to : firstOf(month + 1) - 1;
    Counts sum;
    Span span{0, 0};
    for (const Version& v : owner(row).versions) {
        if (first > last || v.from > last || v.to.value_or(last) < first) continue;
        span = {std::max(v.from, first), std::min(v.to.value_or(last), last)};
        const Counts c = count(row, span.from, span.to, month, v.id, v.head, 0);
        sum = {c.calendar, sum.payable + c.payable, sum.present + c.present};
    }
    if (!opensMonth(row, s)) return 0;
    if (s.on >= 3) return leaves;
    if (s.on == 0) return std::min(leaves, leaves * (span.length() / sum.calendar));
    const double days = s.on == 1 ? sum.payable : sum.present;
    return sum.calendar == 0 || days < s.least ? 0 : leaves * (days / sum.calendar);
}

// The first row since a day under the head and setting, or one after a change of either.
bool ReferenceLedger::opens(const LedgerRow& row, const Setting& s,
                            const std::function<bool(const LedgerRow&)>& since) const {
    const LedgerRow* last = before(row);
    if (last == nullptr || last->head != row.head) return true;
    const Setting* previous = inForce(last->leave, last->head, last->month);
    if (previous == nullptr || previous->since != s.since) return true;
    for (const LedgerRow& other : rows_) {
        if (other.employee != row.employee || other.leave != row.leave || other.head != row.head)
            continue;
        const Setting* its = inForce(other.leave, other.head, other.month);
        if (its->since == s.since && since(other) && other.from < row.from) return false;
    }
    return since(row);
}

bool ReferenceLedger::opensMonth(const LedgerRow& row, const Setting& s) const {
    return opens(row, s, [&](const LedgerRow& other) {
        for (const Version& v : owner(other).versions)
            if (v.id == other.version)
                return other.from >= std::max(v.from, months_.at(row.month).from);
        return false;
    });
}

double ReferenceLedger::yearly(const LedgerRow& row, const Setting& s, double leaves) {
    const Span period = periodOf(s, row.month);
    if (!opens(row, s, [&](const LedgerRow& other) { return other.from >= period.from; })) {
        const bool opening = s.type == 2 ? monthOf(row.month) == (s.on == 1 ? 1 : 4)
                                         : periodStart(s, row.month) == row.month;
        if (!opening || period.from != row.from) return 0;
    }
    if (s.asPer == 1) return yearlyBefore(row, s, leaves);
    return leaves * (service(row, s) / static_cast<double>(period.length()));
}

int ReferenceLedger::service(const LedgerRow& row, const Setting& s) const {
    Span span = periodOf(s, row.month);
    const auto earliest = [&](const std::function<bool(const LedgerRow&)>& fits) {
        std::optional<Day> found;
        for (const LedgerRow& other : rows_)
            if (other.employee == row.employee && other.version == row.version &&
                other.leave == row.leave && fits(other))
                found = std::min(found.value_or(other.from), other.from);
        return found;
    };
    const auto settingOf = [&](const LedgerRow& other) {
        return inForce(other.leave, other.head, other.month)->since;
    };
    Day from =
        earliest([&](const LedgerRow& o) { return o.from >= span.from; }).value_or(span.from);
    from = earliest([&](const LedgerRow& o) {
               return o.from >= from && settingOf(o) == s.since;
           }).value_or(from);
    Day to = span.to;
    if (const auto next = earliest([&](const LedgerRow& o) {
            return o.from > from && o.from - 1 < to && settingOf(o) > row.month;
        }))
        to = *next - 1;
    const Employee& e = owner(row);
    if (!s.wholeLeaving && e.left && *e.left <= to) to = *e.left;
    const Day first = midMonth_ ? months_.at(row.month).from : firstOf(row.month);
    if (s.wholeJoining && e.joined > first && e.joined <= to) from = first;
    std::optional<Day> moves;
    for (const Version& mine : e.versions) {
        if (mine.id != row.version || !mine.to) continue;
        for (const Version& v : e.versions)
            if (v.head != mine.head && v.from >= *mine.to + 1)
                moves = std::min(moves.value_or(v.from), v.from);
    }
    if (moves && *moves - 1 < to) to = *moves - 1;
    return to - from + 1;
}

double ReferenceLedger::yearlyBefore(const LedgerRow& row, const Setting& s, double leaves) {
    const Span period = periodOf(s, row.month);
    const bool opening = s.type == 2 ? monthOf(row.month) == (s.on == 1 ? 1 : 4)
                                     : periodStart(s, row.month) == row.month;
    if (!opening || period.from != row.from) return 0;
    if (s.every == 3) return leaves;
    if (s.every > 3) return 0;
    const Day lost = DateTime::dayNumber(1950, 1, 1);
    Span last = periodBefore(s, row.month).value_or(Span{lost, lost});
    const double length = last.length();
    last.from = std::max(last.from, owner(row).joined);
    if (s.type == 2) last.from = std::max(last.from, allotFrom(row.employee, row.leave));
    double days = std::max(0, last.length());
    if (s.every > 0) {
        const Counts sum = total(row, last);
        days = s.every == 1 ? sum.payable : sum.present;
    }
    return days >= s.least ? leaves * (days / length) : 0;
}

ReferenceLedger::Counts ReferenceLedger::total(const LedgerRow& row, Span span) {
    Counts sum;
    const auto add = [&](int32_t key, Span cut) {
        cut = {std::max(cut.from, span.from), std::min(cut.to, span.to)};
        for (const Version& v : owner(row).versions) {
            const Day from = std::max(v.from, cut.from),
                      to = std::min(v.to.value_or(cut.to), cut.to);
            if (from > to) continue;
            const Counts c = count(row, from, to, key, v.id, v.head, 0);
            sum = {sum.calendar + c.calendar, sum.payable + c.payable, sum.present + c.present};
        }
    };
    // Days before the payroll's first month lie in calendar months.
    const Month& firstMonth = months_.begin()->second;
    for (int32_t key = months_.begin()->first - 14; key <= months_.begin()->first; ++key)
        if (!months_.contains(key))
            add(key, {firstOf(key), std::min(firstOf(key + 1), firstMonth.from) - 1});
    for (const auto& [key, m] : months_) add(key, {m.from, m.to});
    return sum;
}

// --- chain ---

Cents ReferenceLedger::takenIn(int employee, int leave, int head, Day from, Day to) const {
    Cents sum = 0;
    for (const Taken& t : taken_) {
        if (t.employee != employee || t.leave != leave || t.day < from || t.day > to) continue;
        for (const Version& v : employees_.at(employee).versions)
            if (v.id == t.version && v.head == head) sum += t.amount;
    }
    return sum;
}

// The opening balance less what was taken since the ledger's beginning: of leave under the row's
// version, of adjustments under its head.
Cents ReferenceLedger::opening(const LedgerRow& row) const {
    const Day start = months_.at(start_).from;
    const auto held = opening_.find({row.employee, row.leave});
    Cents balance = held == opening_.end() ? 0 : held->second;
    for (const Taken& t : taken_)
        if (t.employee == row.employee && t.version == row.version && t.leave == row.leave &&
            start <= t.day && t.day < row.from)
            balance -= t.amount;
    for (const Adjusted& a : adjusted_)
        if (a.employee == row.employee && a.head == row.head && a.leave == row.leave &&
            start <= a.day && a.day < row.from)
            balance -= a.taken;
    return balance;
}

Cents ReferenceLedger::closing(const LedgerRow& last, int rounding) const {
    Cents balance = last.credit + last.brought -
                    takenIn(last.employee, last.leave, last.head, last.from, last.to);
    for (const Adjusted& a : adjusted_)
        if (a.employee == last.employee && a.version == last.version && a.head == last.head &&
            a.leave == last.leave && a.month == last.month)
            balance += a.added - a.taken;
    for (const Encashed& e : encashed_)
        if (e.employee == last.employee && e.leave == last.leave && last.from <= e.day &&
            e.day <= last.to)
            balance -= e.days;
    return rounded(balance, rounding);
}

void ReferenceLedger::chain(LedgerRow& row, LedgerRow* last) {
    if (last == nullptr) {
        row.brought = opening(row);
        return;
    }
    const Setting* s = inForce(row.leave, last->head, row.month);
    if (s == nullptr) return;
    const Cents close = closing(*last, s->balanceRounding);
    if (!s->carries) {
        const int32_t month = last->month;
        std::optional<Day> end;
        if (s->type < 2)
            end = months_.at(month).to;
        else if (s->type == 3 || s->on == 1 || s->on == 2)
            end = periodOf(*s, month).to;
        const bool over = end == last->to;
        row.brought = over ? 0 : close;
        last->lapsed = over ? close : 0;
        return;
    }
    const int lapses = s->lapseMonth == 12 ? 1 : s->lapseMonth + 1;
    const bool sameMonth = last->month == row.month;
    if (s->lapseMonth != 0 && monthOf(row.month) == lapses && !sameMonth) {
        row.brought = std::min(close, s->lapseLimit);
        last->lapsed = close - row.brought;
        if (s->lapsesNegative && row.brought < 0) {
            last->lapsed = row.brought;
            row.brought = 0;
        }
        return;
    }
    row.brought = close;
    last->lapsed = 0;
    if (s->lower && close < s->lowerLimit) {
        last->lapsed = close;
        row.brought = 0;
    }
    if (s->upper && close >= s->upperLimit) {
        last->lapsed = close - s->upperLimit;
        row.brought = s->upperLimit;
    }
}

}  // namespace owb::model
