// Companies drawn by chance, worked out by the engine on a database and by the reference model, and
// compared in every month row.
#include <gtest/gtest.h>

#include <random>

#include "calendar/reference_model.h"
#include "db/recordset.h"
#include "session/modOWBSetting.h"
#include "support/payroll.h"

namespace owb {
namespace {

using namespace model;
using test::Payroll;

constexpr int32_t kFirst = 2024 * 12 + 1, kMonths = 4;

std::string iso(Day day) {
    return dateText(DateTime{day}, "yyyy-MM-dd");
}
const char* yn(bool b) {
    return b ? "1" : "0";
}

std::string halves(Halves h) {
    return std::string(h.first ? "F" : "") + (h.second ? "S" : "");
}

class Drawn {
  public:
    explicit Drawn(unsigned seed) : random_(seed), payroll_(kFirst, kFirst + kMonths - 1) {
        months();
        heads();
        calendar();
        for (int id = 1; id <= 12; ++id) employee(id);
        payroll_.reconcile();
        for (const Employee& e : company_.employees) enter(e);
        LoadOptSet(payroll_.session);
        payroll_.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 1");
        payroll_.run("UPDATE ATT_DAYTODAY SET EDITMODEYN = 1");
        payroll_.recalculate();
    }

    void compare() {
        size_t rows = 0;
        for (const Employee& e : company_.employees)
            for (const Version& v : e.versions)
                for (const Month& m : company_.months) {
                    Recordset rs(
                        payroll_.session.gConn,
                        "SELECT NODCALC * 2, NOD * 2, NDP * 2, OT1 * 100, OT2 * 100, ADJHRS * "
                        "100, EDITMODEYN FROM LEV_MONTHDET WHERE EMPID = " +
                            std::to_string(e.id) + " AND EMPDETID = " + std::to_string(v.id) +
                            " AND MONTHYEAR = " + std::to_string(m.key));
                    if (rs.IsEOF()) continue;
                    ++rows;
                    auto at = [&](size_t i) { return rs.Fields(i).toInt(); };
                    const Figures engine{static_cast<int>(at(0)),
                                         static_cast<int>(at(1)),
                                         static_cast<int>(at(2)),
                                         at(3),
                                         at(4),
                                         at(5)};
                    const Head& h = company_.heads.at(v.head);
                    EXPECT_EQ(engine.text(), company_.month(e, v, m).text())
                        << "employee " << e.id << " version " << v.id << " month " << m.key - kFirst
                        << " head " << h.id << " type " << h.type << " basis " << h.basis
                        << " rotating " << h.rotating << " general first " << h.generalFirst;
                    EXPECT_EQ(at(6), 0);
                }
        EXPECT_GT(rows, 20U);
        EXPECT_TRUE(payroll_.boxes.shown.empty());
    }

  private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }
    Halves anyHalves() {
        const int kind = below(4);
        return {kind != 1, kind != 2};
    }
    Day first() const { return company_.months.front().from; }
    Day last() const { return company_.months.back().to; }
    Day anyDay() { return first() + below(last() - first() + 1); }

    void months() {
        midMonth_ = chance(40);
        const std::string shift = midMonth_ ? "1" : "0";
        payroll_.run("UPDATE MAS_OPTSETFEATURE SET CALCINMIDYN = " + shift);
        for (int32_t key = kFirst; key < kFirst + kMonths; ++key) {
            DateTime from = DateTime::fromCivil((key - 1) / 12, (key - 1) % 12 + 1, 1);
            DateTime to = from.plusMonths(1).plusDays(-1);
            if (midMonth_) {
                to = from.plusDays(24);
                from = from.plusMonths(-1).plusDays(25);
            }
            company_.months.push_back({key, from.day, to.day});
            payroll_.run("UPDATE MAS_MONTHYEAR SET CALCSTARTDATE = '" + iso(from.day) +
                         "', CALCENDDATE = '" + iso(to.day) +
                         "' WHERE MONTHYEAR = " + std::to_string(key));
        }
        LoadOptSet(payroll_.session);
    }

    std::vector<Weeks> weeks(const std::function<void(const Weeks&, const std::string&)>& store) {
        std::vector<Weeks> all;
        for (const int weekday : {1, 7}) {
            for (int32_t since : {kFirst - 5, kFirst + 2}) {
                if (chance(weekday == 1 ? 15 : 50)) continue;
                Weeks w{since, weekday, {}};
                std::string text;
                for (Halves& h : w.weeks) {
                    if (weekday == 1 || chance(50))
                        h = weekday == 1 ? Halves{true, true} : anyHalves();
                    std::string pair = halves(h);
                    pair.resize(2, '-');
                    text += (text.empty() ? "" : " ") + pair;
                }
                store(w, text);
                all.push_back(w);
            }
        }
        return all;
    }

    void heads() {
        payroll_.leaveKind(5, "CL", false);
        payroll_.leaveKind(6, "UL", true);
        company_.kindAffectsPay = {{5, false}, {6, true}};
        for (int i = 0; i < 6; ++i) {
            Head h;
            h.id = 10 + i;
            h.type = 1 + below(4);
            h.basis = 1 + below(6);
            h.generalFirst = chance(50);
            h.rotating = chance(40);
            h.compensatory = chance(30);
            h.editedDays = 2 * (20 + below(12));
            h.ot1 = chance(60);
            h.ot2 = chance(60);
            h.special = chance(60);
            h.weeklyToSecond = chance(50);
            h.generalToSecond = chance(50);
            h.wholeDayToSecond = chance(50);
            for (Head::Band* b : {&h.none, &h.half, &h.full})
                *b = {chance(50), chance(50), chance(50)};
            h.minimumMinutes = below(3) * 15;
            payroll_.head({h.id, h.type, h.basis, chance(70)});
            auto band = [](const std::string& name, const Head::Band& b, bool hasDeduct) {
                const std::string prefix = name == "NO" ? "NOATT" : name + "DAY";
                return ", " + prefix + "OTYN = " + yn(b.allowed) + ", " + name +
                       "ATTSALAFFYN = " + yn(b.affects) +
                       (hasDeduct ? ", " + name + "DAYDEDYN = " + yn(b.deduct) : "");
            };
            payroll_.setHead(h.id, "OT1YN = " + std::string(yn(h.ot1)) + ", OT2YN = " + yn(h.ot2) +
                                       ", OTHOURMIN = " + std::to_string(h.minimumMinutes) +
                                       band("NO", h.none, false) + band("HALF", h.half, true) +
                                       band("FULL", h.full, true));
            payroll_.setOptions(
                h.id, "HOLPRIORITY = " + std::string(yn(h.generalFirst)) +
                          ", ROTWHYN = " + yn(h.rotating) + ", COCWYN = " + yn(h.compensatory) +
                          ", SPLOTYN = " + yn(h.special) + ", WHOT2YN = " + yn(h.weeklyToSecond) +
                          ", GHOT2YN = " + yn(h.generalToSecond) +
                          ", FULLDAYOT2 = " + yn(h.wholeDayToSecond));
            h.weeks = weeks([&](const Weeks& w, const std::string& text) {
                payroll_.weekly(h.id, w.weekday, text, w.since);
            });
            for (int32_t key = kFirst; key < kFirst + kMonths; ++key)
                payroll_.run("INSERT INTO SLC_ATTHEADNOD (ATTHEADID, MONTHYEAR, NOD) VALUES (" +
                             std::to_string(h.id) + ", " + std::to_string(key) + ", " +
                             std::to_string(h.editedDays / 2) + ")");
            company_.heads[h.id] = h;
        }
    }

    void calendar() {
        if (chance(50)) {
            company_.byBranchFrom = first() + 60;
            payroll_.run("UPDATE MAS_OPTSET SET BRGHEFROM = '" + iso(*company_.byBranchFrom) + "'");
        }
        std::set<Day> used;
        for (int id = 1; id <= 12; ++id) {
            Holiday h{id, anyDay(), 0, 0, {}, {}};
            if (!used.insert(h.day).second) continue;
            if (chance(20))
                h.head = 10 + below(6);
            else if (chance(25))
                h.branch = 1 + below(2);
            payroll_.holiday(id, iso(h.day), h.head, h.branch);
            if (h.head == 0 && h.branch == 0 && chance(40)) {
                const int head = 10 + below(6);
                h.exceptHeads.insert(head);
                payroll_.exceptHead(id, head);
            }
            if (h.head == 0 && h.branch == 0 && chance(30)) {
                h.exceptBranches.insert(1);
                payroll_.run("INSERT INTO ATT_HOLEX (HOLIDAYID, BRANCHID) VALUES (" +
                             std::to_string(id) + ", 1)");
            }
            company_.holidays.push_back(h);
        }
        company_.branchWeeks[2] = weeks([&](const Weeks& w, const std::string& text) {
            payroll_.weeklyOfBranch(2, w.weekday, text, w.since);
        });
        std::set<std::tuple<int, int, Day>> taken;
        for (int i = 0; i < 25; ++i) {
            const int level = below(3);
            Rotating r{level == 1 ? 10 + below(6) : 0, level == 0 ? 1 + below(12) : 0, anyDay(),
                       anyHalves()};
            if (!taken.insert({r.head, r.employee, r.day}).second) continue;
            payroll_.rotating(r.head, r.employee, iso(r.day), halves(r.off));
            company_.rotating.push_back(r);
        }
        for (int i = 0; i < 8; ++i) {
            const std::pair<int, Day> special{10 + below(6), anyDay()};
            if (!company_.specialDays.insert(special).second) continue;
            payroll_.run("INSERT INTO ATT_EXTRAOT (ATTHEADID, WEEKDATE) VALUES (" +
                         std::to_string(special.first) + ", '" + iso(special.second) + "')");
        }
    }

    void employee(int id) {
        Employee e{id, id == 1 || chance(60) ? first() - 400 : anyDay(), {}, {}, {}, {}};
        if (chance(25) && e.joined + 10 < last())
            e.left =
                std::max(first(), e.joined) + 5 + below(last() - std::max(first(), e.joined) - 5);
        e.versions.push_back({1, 10 + below(6), 1 + below(2), e.joined, {}});
        payroll_.employee(id, iso(e.joined), e.versions[0].head, e.left ? iso(*e.left) : "",
                          e.versions[0].branch);
        const Day end = e.left.value_or(last());
        for (Day at = std::max(first(), e.joined) + 3 + below(60); at < end; at += 10 + below(70)) {
            if (!chance(60)) continue;
            e.versions.back().to = at - 1;
            e.versions.push_back(
                {static_cast<int>(e.versions.size()) + 1, 10 + below(6), 1 + below(2), at, {}});
            const Version& v = e.versions.back();
            payroll_.version(id, v.id, iso(v.from), v.head, v.branch);
        }
        for (const Version& v : e.versions)
            for (const Month& m : company_.months)
                if (v.from <= m.to && v.to.value_or(end) >= m.from && end >= m.from)
                    payroll_.salary(id, v.id, m.key, m.key);
        for (const Version& v : e.versions) takeLeave(e, v, std::min(v.to.value_or(end), end));
        company_.employees.push_back(e);
    }

    void takeLeave(Employee& e, const Version& v, Day end) {
        const Head& h = company_.heads.at(v.head);
        for (Day day = std::max(v.from, first()); day <= end; ++day) {
            if (chance(8)) {
                static constexpr int kKinds[] = {1, 2, 3, 5, 6};
                Leave l{v.id, kKinds[below(5)], day, {}, 0};
                if (h.type == 4)
                    l.figure = 1 + below(5);
                else
                    l.taken = anyHalves();
                e.leaves.push_back(l);
                if (l.taken.count() == 1 && chance(30)) {
                    Leave other{
                        v.id, l.kind == 5 ? 6 : 5, day, {!l.taken.first, !l.taken.second}, 0};
                    e.leaves.push_back(other);
                }
            }
            if ((h.type == 2 && chance(10)) || (h.type == 3 && chance(60)))
                e.hours[day] = below(12) * 100 + below(60);
        }
    }

    void enter(const Employee& e) {
        for (const Leave& l : e.leaves) {
            const std::string figure = std::to_string(l.figure / 2) + (l.figure % 2 ? ".5" : "");
            payroll_.leave(e.id, l.version, l.kind, iso(l.day),
                           l.figure ? figure : halves(l.taken));
        }
        for (const auto& [day, hours] : e.hours)
            for (const Version& v : e.versions)
                for (const Month& m : company_.months)
                    if (day >= v.from && (!v.to || day <= *v.to) && day >= m.from && day <= m.to)
                        payroll_.hours(e.id, v.id, m.key, day - m.from + 1,
                                       std::to_string(hours / 100) + "." +
                                           (hours % 100 < 10 ? "0" : "") +
                                           std::to_string(hours % 100));
    }

    std::mt19937 random_;
    Payroll payroll_;
    Company company_;
    bool midMonth_ = false;
};

TEST(RandomCompanies, AgreeWithTheReferenceModel) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Drawn(seed).compare();
        if (HasFailure()) break;
    }
}

}  // namespace
}  // namespace owb
