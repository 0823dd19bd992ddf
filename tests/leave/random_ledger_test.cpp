// Companies drawn by chance: the passes' ledger against the reference, row by row.
#include <gtest/gtest.h>

#include <random>

#include "db/recordset.h"
#include "leave/modLeaveFunctions.h"
#include "leave/reference_ledger.h"
#include "leave/screens/frmConfiguring.h"
#include "leave/screens/modLeaveProcess.h"
#include "session/modOWBSetting.h"
#include "support/payroll.h"
#include "support/screens.h"

namespace owb {
namespace {

using namespace model;

constexpr int32_t kFirst = 2023 * 12 + 2, kLast = kFirst + 27;
constexpr int kHeads[] = {10, 11, 12}, kLeaves[] = {2, 5, 6, 7, 8, 9, 10};

std::string iso(Day day) {
    return dateText(DateTime{day}, "yyyy-MM-dd");
}
std::string text(int64_t n) {
    return std::to_string(n);
}
// Hundredths as a number.
std::string amount(Cents cents) {
    return (cents < 0 ? "-" : "") + text(std::abs(cents) / 100) + "." +
           text(std::abs(cents) / 10 % 10) + text(std::abs(cents) % 10);
}

class DrawnLedger {
  public:
    explicit DrawnLedger(unsigned seed) : random_(seed), payroll_(kFirst, kLast) {
        months();
        for (const int leave : kLeaves)
            if (leave > 4) payroll_.leaveKind(leave, "L" + text(leave), chance(20));
        payroll_.run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 1 WHERE LEVID IN (2, 3)");
        payroll_.run(
            "INSERT INTO MAS_FORMULACUSTOM (FID, FQUERY) VALUES (1, 'SELECT $EMPID$ * 1.5 + "
            "$LEVID$'), (2, 'SELECT 9 WHERE 1 = 0'), (3, '')");
        for (const int head : kHeads) {
            payroll_.head({head, 1, 1 + below(6)});
            payroll_.weekly(head, 1, "FS FS FS FS FS");
            for (int32_t key = kFirst; key <= kLast; ++key)
                payroll_.run("INSERT INTO SLC_ATTHEADNOD (ATTHEADID, MONTHYEAR, NOD) VALUES (" +
                             text(head) + ", " + text(key) + ", 26)");
            for (const int leave : kLeaves) rules(leave, head);
        }
        for (int id = 1; id <= 6; ++id) employee(id);
        pass();
        enter();
        pass();
    }

    void compare(unsigned seed) {
        ReferenceLedger reference(payroll_.session, entered_);
        const std::vector<LedgerRow> expected = reference.work();
        std::vector<LedgerRow> found;
        Recordset rs(payroll_.session.gConn,
                     "SELECT EMPID, EMPDETID, ATTHEADID, LEVID, ALLOTFROM, ALLOTTO, "
                     "[dbo].FnLngMonthYear(ALLOTFROM, ALLOTTO), ACTALLOTLEV * 100, ALLOTLEV * "
                     "100, COLEV * 100, LAPSE * 100, EDITMODEYN FROM LEV_ALLOTMENT ORDER BY "
                     "EMPID, LEVID, ALLOTFROM");
        for (; !rs.IsEOF(); rs.MoveNext()) {
            const auto n = [&](size_t c) { return static_cast<int>(rs.Fields(c).toInt()); };
            found.push_back({n(0), n(1), n(2), n(3), rs.Fields(4).toDate().day,
                             rs.Fields(5).toDate().day, n(6), n(7), n(8), n(9), n(10)});
            EXPECT_EQ(n(11), 0) << found.back().text();
        }
        ASSERT_EQ(found.size(), expected.size());
        EXPECT_GT(found.size(), 200U);
        int wrong = 0;
        for (size_t i = 0; i < found.size() && wrong < 5; ++i)
            if (found[i].text() != expected[i].text()) {
                ++wrong;
                ADD_FAILURE() << "seed " << seed << "\n engine   " << found[i].text()
                              << "\n expected " << expected[i].text() << "\n "
                              << settingOf(found[i]);
            }
        for (const Box& box : payroll_.boxes.shown) ADD_FAILURE() << box.text;
    }

  private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }
    template <typename T, size_t N>
    T any(const T (&of)[N]) {
        return of[below(static_cast<int>(N))];
    }
    std::string yn(int percent) { return chance(percent) ? "1" : "0"; }

    void months() {
        midMonth_ = chance(40);
        payroll_.run("UPDATE MAS_OPTSETFEATURE SET CALCINMIDYN = " +
                     std::string(midMonth_ ? "1" : "0"));
        for (int32_t key = kFirst; key <= kLast; ++key) {
            DateTime from = DateTime::fromCivil((key - 1) / 12, (key - 1) % 12 + 1, 1);
            DateTime to = from.plusMonths(1).plusDays(-1);
            if (midMonth_) {
                to = from.plusDays(24);
                from = from.plusMonths(-1).plusDays(25);
            }
            months_.push_back({from.day, to.day});
            payroll_.run("UPDATE MAS_MONTHYEAR SET CALCSTARTDATE = '" + iso(from.day) +
                         "', CALCENDDATE = '" + iso(to.day) + "' WHERE MONTHYEAR = " + text(key));
        }
        LoadOptSet(payroll_.session);
    }

    // One or two versions of a leave's settings under a head, and their figures.
    void rules(int leave, int head) {
        for (int32_t since : {kFirst, kFirst + 5 + below(18)}) {
            if (since != kFirst && chance(60)) continue;
            const int type = below(5);
            const bool spans = type >= 2;
            static constexpr int kBasis[] = {0, 0, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9};
            const int on = type == 2 || type == 4 ? 1 + below(2) : type == 3 ? 0 : any(kBasis);
            const bool lower = chance(25), upper = chance(35);
            payroll_.run(
                "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, PRIORITY, MINDATETYPE, "
                "MINMONTH, MINDAYS, MINAVAILDATETYPE, MINAVAILMONTH, MINAVAILDAYS, AUTOALLOTYN, "
                "ALLOTTYPE, ALLOTON, ALLOTASPER, ALLOTFOR, ALLOTRNDTYPE, MINLEVDAYS, EXCLDOJYN, "
                "EXCLDOLYN, COYN, COTYPE, LOWERLIMITYN, COLOWERLIMIT, UPPERLIMITYN, COLIMIT, "
                "LAPSENEGATIVE, LAPSEMONTH, LAPSELIMIT, RNDTYPE) VALUES (" +
                text(leave) + ", " + text(head) + ", " + text(since) + ", " + text(leave) + ", " +
                text(below(3)) + ", " + text(below(3)) + ", " + text(below(4) * 5) + ", 0, 0, 0, " +
                yn(85) + ", " + text(type) + ", " + text(on) + ", " + text(below(2)) + ", " +
                text(spans ? below(4) : below(3)) + ", " + text(below(10)) + ", " +
                text(chance(30) ? below(20) : 0) + ", " + yn(30) + ", " + yn(30) + ", " + yn(60) +
                ", 1, " + text(lower) + ", " + amount(below(5) * 50) + ", " + text(upper) + ", " +
                amount(300 + below(10) * 50) + ", " + yn(30) + ", " +
                text(chance(50) ? 1 + below(12) : 0) + ", " + amount(below(8) * 50) + ", " +
                text(below(7)) + ")");
            const int32_t key = type == 2 ? kFirst / 12 - 1 : since;
            payroll_.run("DELETE FROM LEV_ALLOTCONFIG WHERE LEVID = " + text(leave) +
                         " AND ATTHEADID = " + text(head) + " AND ALLOTTYPE = " + text(type));
            if (chance(92))
                payroll_.run(
                    "INSERT INTO LEV_ALLOTCONFIG (EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, ALLOTON, "
                    "PERIOD, NOL, FID, QUERYYN) VALUES (" +
                    text(key) + ", " + text(leave) + ", " + text(head) + ", " + text(type) + ", " +
                    text(type == 2 || type == 4 ? on : 0) + ", " + text(15 + below(20)) + ", " +
                    amount(spans ? 300 + below(18) * 50 : 50 + below(6) * 25) + ", " +
                    text(1 + below(3)) + ", " + text(chance(20)) + ")");
        }
    }

    void employee(int id) {
        const Day begin = months_.front().first, end = months_.back().second;
        const Day joined = chance(50) ? begin - 30 - below(500) : begin + below(end - begin - 200);
        std::optional<Day> left;
        if (chance(30))
            left = std::max(begin, joined) + 40 + below(end - std::max(begin, joined) - 60);
        payroll_.employee(id, iso(joined), any(kHeads), left ? iso(*left) : "");
        payroll_.run("UPDATE MAS_EMPLOYEE SET PROBATIONDATE = '" + iso(joined + 90) + "'" +
                     (chance(80) ? ", CONFIRMATIONDATE = '" + iso(joined + 120) + "'" : "") +
                     " WHERE EMPID = " + text(id));
        std::vector<std::pair<Day, Day>> spans{{joined, left.value_or(end)}};
        for (Day at = std::max(begin, joined) + 20 + below(300); at < spans.back().second;
             at += 20 + below(300)) {
            spans.back().second = at - 1;
            spans.emplace_back(at, left.value_or(end));
            payroll_.version(id, static_cast<int>(spans.size()), iso(at), any(kHeads));
        }
        for (size_t v = 0; v < spans.size(); ++v)
            for (int32_t key = kFirst; key <= kLast; ++key) {
                const auto& [from, to] = months_[static_cast<size_t>(key - kFirst)];
                if (spans[v].first > to || spans[v].second < from || chance(3)) continue;
                payroll_.salary(id, static_cast<int>(v) + 1, key, key);
                for (Day day = std::max(from, spans[v].first); day <= std::min(to, spans[v].second);
                     ++day) {
                    if (!chance(4)) continue;
                    static constexpr int kKinds[] = {1, 2, 3, 5, 6, 7, 8, 9, 10};
                    static const char* const kHalves[] = {"FS", "FS", "F", "S"};
                    days_.push_back({id, static_cast<int>(v) + 1, any(kKinds), day, any(kHalves)});
                }
            }
        for (const int leave : kLeaves)
            if (chance(50))
                payroll_.run("INSERT INTO ATT_OPBAL (EMPID, LEVID, OPBAL) VALUES (" + text(id) +
                             ", " + text(leave) + ", " + amount(below(12) * 50 - 50) + ")");
    }

    // What users enter once the rows are there: leave, adjustments, encashments, credits by hand.
    void enter() {
        struct Row {
            int id, employee, version, head, leave;
            int32_t month;
            Day from, to;
            bool automatic;
        };
        std::vector<Row> rows;
        Recordset rs(payroll_.session.gConn,
                     "SELECT LA.ALLOTID, LA.EMPID, LA.EMPDETID, LA.ATTHEADID, LA.LEVID, "
                     "[dbo].FnLngMonthYear(ALLOTFROM, ALLOTTO), ALLOTFROM, ALLOTTO, (SELECT TOP 1 "
                     "AUTOALLOTYN FROM LEV_SETTINGS LS WHERE LS.LEVID = LA.LEVID AND LS.ATTHEADID "
                     "= LA.ATTHEADID AND LS.MONTHYEAR <= [dbo].FnLngMonthYear(ALLOTFROM, ALLOTTO) "
                     "ORDER BY MONTHYEAR DESC) FROM LEV_ALLOTMENT LA ORDER BY ALLOTID");
        for (; !rs.IsEOF(); rs.MoveNext()) {
            const auto n = [&](size_t c) { return static_cast<int>(rs.Fields(c).toInt()); };
            rows.push_back({n(0), n(1), n(2), n(3), n(4), n(5), rs.Fields(6).toDate().day,
                            rs.Fields(7).toDate().day, n(8) == 1});
        }
        for (const Row& row : rows) {
            if (row.leave != 2 && !row.automatic && chance(20)) {
                const Cents credit = 50 + below(6) * 50;
                entered_[{row.employee, row.leave, row.from}] = credit;
                payroll_.run("UPDATE LEV_ALLOTMENT SET ALLOTLEV = " + amount(credit) +
                             " WHERE ALLOTID = " + text(row.id));
            }
            if (chance(4))
                payroll_.run(
                    "INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, MONTHYEAR, "
                    "ALLOT, TAKEN, ASONDATE) VALUES (" +
                    text(row.employee) + ", " + text(row.version) + ", " + text(row.head) + ", " +
                    text(row.leave) + ", " + text(row.month) + ", " + amount(below(4) * 50) + ", " +
                    amount(below(3) * 50) + ", '" + iso(row.to) + "')");
            if (chance(2))
                payroll_.run(
                    "INSERT INTO ATT_ENCASH (EMPID, ALLOTID, UPTODATE, MONTHYEAR, "
                    "NOOFDAYS) VALUES (" +
                    text(row.employee) + ", " + text(row.id) + ", '" +
                    iso(row.from + below(row.to - row.from + 1)) + "', " + text(row.month) + ", " +
                    amount(50 + below(4) * 50) + ")");
        }
        // Leave of a day before the first row of the leave would be a question of its own.
        for (const auto& [employee, version, leave, day, halves] : days_) {
            const bool chained = std::any_of(
                rows.begin(), rows.end(), [&, e = employee, l = leave, d = day](const Row& row) {
                    return row.employee == e && row.leave == (l == 3 ? 2 : l) && row.from <= d &&
                           d <= row.to;
                });
            if (chained || leave == 1) payroll_.leave(employee, version, leave, iso(day), halves);
        }
        payroll_.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 1");
        payroll_.run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1");
    }

    void pass() {
        test::TestFrontEnd frontEnd(payroll_.boxes);
        payroll_.session.gMenuId = 1600;
        frmConfiguring(payroll_.session, frontEnd).showModal();
        modLeaveProcess(payroll_.session, frontEnd).showModal();
    }

    std::string settingOf(const LedgerRow& row) {
        std::string all;
        for (const char* sql :
             {"SELECT MONTHYEAR, AUTOALLOTYN, ALLOTTYPE, ALLOTON, ALLOTASPER, ALLOTFOR, "
              "ALLOTRNDTYPE, MINLEVDAYS, EXCLDOJYN, EXCLDOLYN, COYN, LOWERLIMITYN, COLOWERLIMIT, "
              "UPPERLIMITYN, COLIMIT, LAPSENEGATIVE, LAPSEMONTH, LAPSELIMIT, RNDTYPE FROM "
              "LEV_SETTINGS",
              "SELECT EFFFROM, ALLOTTYPE, ALLOTON, PERIOD, NOL, QUERYYN, FID FROM "
              "LEV_ALLOTCONFIG"})
            all += payroll_.rows(std::string(sql) + " WHERE LEVID = " + text(row.leave) +
                                 " AND ATTHEADID = " + text(row.head)) +
                   "\n ";
        return all +
               payroll_.rows("SELECT * FROM MAS_EMPLOYEEDET WHERE EMPID = " + text(row.employee)) +
               payroll_.rows("SELECT EMPID, DOJ, DOL FROM MAS_EMPLOYEE WHERE EMPID = " +
                             text(row.employee));
    }

    struct Taken {
        int employee, version, leave;
        Day day;
        std::string halves;
    };
    std::mt19937 random_;
    test::Payroll payroll_;
    bool midMonth_ = false;
    std::vector<std::pair<Day, Day>> months_;
    std::vector<Taken> days_;
    ReferenceLedger::Entered entered_;
};

TEST(RandomLedger, IsTheReferences) {
    const char* chosen = std::getenv("OWB_SEED");
    const unsigned first = chosen ? static_cast<unsigned>(std::atoi(chosen)) : 1;
    for (unsigned seed = first; seed < first + (chosen ? 1 : 3); ++seed) {
        DrawnLedger drawn(seed);
        drawn.compare(seed);
    }
}

}  // namespace
}  // namespace owb
