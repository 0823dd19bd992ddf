// Companies drawn by chance must end in one ledger, whichever way it is reached: in bulk or row by
// row, at once or change by change, undisturbed or broken off and taken up again.
//
// Where a change reaches further than the marks of the operation that makes it, this test marks
// what it reaches, as a recalculation by hand would:
//  - a day of leave changes the Pay and Present Days on which other leaves may be credited;
//  entering
//    it marks its own leave (of loss of pay, those on days), this test all leaves of the employee;
//  - a setting that begins in mid-year ends the span that the year's first row counts; saving it
//    marks from its month on, this test every row of the leave;
//  - an end of service entered ahead cuts the period's credit; it is marked when the month of the
//    end gets its rows, so all months are made before the comparison.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "leave/ledger_company.h"
#include "marks/marks.h"
#include "session/modOWBSetting.h"
#include "support/disturbed.h"
#include "support/driver_layer.h"

namespace owb {
namespace {

using test::LedgerCompany;
using test::Way;

constexpr int32_t kFirst = 2023 * 12 + 9, kLast = kFirst + 16, kMade = kFirst + 12;
constexpr int kEmployees = 4, kLeaves = 6;  // leave 2 and leaves from 5

class DrawnCompany : public LedgerCompany {
  public:
    explicit DrawnCompany(unsigned seed) : LedgerCompany(kFirst, kLast), random_(seed) {
        months();
        for (int h : {10, 11}) head({h, 1, 1 + below(6)});
        weekly(10, 1, "FS FS FS FS FS");
        rule(2, 10, kFirst, "COYN = 1");
        rule(2, 11, kFirst, "COYN = 1");
        for (int leave = 5; leave < 5 + kLeaves - 1; ++leave) rules(leave);
        for (int id = 1; id <= kEmployees; ++id) hire(id);
        ledgerRows();
        for (int n = 0; n < 40; ++n) takeLeave();
        for (int n = 0; n < 6; ++n) adjust();
        run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1");
        run("UPDATE LEV_ALLOTMENT SET ALLOTLEV = ALLOTID % 3 WHERE LEVID IN (SELECT LEVID FROM "
            "LEV_SETTINGS WHERE AUTOALLOTYN = 0 AND LEVID > 2)");
    }

    Way anyWay() { return chance(50) ? Way::Bulk : Way::RowByRow; }
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }

    // One thing that happens, with the marks that go with it.
    std::string change() {
        switch (below(7)) {
            case 0:
                takeLeave();
                return "leave";
            case 1:
                adjust();
                return "adjustment";
            case 2:
                openingBalance();
                return "opening balance";
            case 3:
                newSetting();
                return "setting";
            case 4:
                nextMonth();
                return "next month";
            case 5:
                move();
                return "change of head";
            default:
                depart();
                return "end of service";
        }
    }
    void allMonths() {
        for (int id = 1; id <= kEmployees; ++id)
            for (int32_t month = lastMonth(id) + 1; month <= kLast; ++month)
                salary(id, versions_[id], month, month);
        ledgerRows();
    }
    void reconnect() {
        const std::string file = session.gConn.ConnectionString();
        session.gConn.Close();
        session.gNodNdp.reset();
        session.gConn.Open(file);
    }

  private:
    std::string yn(int percent) { return chance(percent) ? "1" : "0"; }
    int anyEmployee() { return 1 + below(kEmployees); }
    std::string iso(const DateTime& date) { return isoText(date); }
    DateTime day(int32_t month, int plus) {
        return parseDate(value("SELECT CALCSTARTDATE FROM MAS_MONTHYEAR WHERE MONTHYEAR = " +
                               text(month)))
            .value()
            .plusDays(plus);
    }

    void months() {
        if (chance(50)) return;
        run("UPDATE MAS_OPTSETFEATURE SET CALCINMIDYN = 1");
        run("UPDATE MAS_MONTHYEAR SET CALCENDDATE = CALCSTARTDATE + 24, CALCSTARTDATE = "
            "DATEADD(MONTH, -1, CALCSTARTDATE + 25)");
        LoadOptSet(session);
    }
    std::string anySetting(int type) {
        return "AUTOALLOTYN = " + text(automatic_) + ", ALLOTTYPE = " + text(type) +
               ", ALLOTON = " + text(type == 2 || type == 4 ? 1 + below(2) : below(5)) +
               ", ALLOTASPER = " + yn(40) + ", ALLOTFOR = " + text(below(3)) +
               ", ALLOTRNDTYPE = " + text(below(7)) + ", MINLEVDAYS = " + text(below(3) * 5) +
               ", EXCLDOJYN = " + yn(30) + ", EXCLDOLYN = " + yn(30) + ", COYN = " + yn(60) +
               ", LAPSEMONTH = " + text(chance(60) ? 1 + below(12) : 0) +
               ", LAPSELIMIT = " + text(below(4)) + ", LAPSENEGATIVE = " + yn(40) +
               ", UPPERLIMITYN = " + yn(30) + ", COLIMIT = " + text(3 + below(5)) +
               ", LOWERLIMITYN = " + yn(20) + ", COLOWERLIMIT = " + text(below(2)) +
               ", RNDTYPE = " + text(below(7)) + ", MINDAYS = " + text(below(2) * 20);
    }
    void rules(int leave) {
        automatic_ = chance(80);
        const int type = below(5);
        for (int head : {10, 11}) {
            rule(leave, head, kFirst, anySetting(type));
            figure(leave, head, type == 2 ? 2000 : kFirst, text(1 + below(12)), "25");
        }
    }
    void hire(int id) {
        const int at = below(6);
        employee(id, iso(day(kFirst + at, chance(50) ? 0 : below(20))), 10 + below(2));
        salary(id, 1, kFirst + at, kMade);
        versions_[id] = 1;
        run("INSERT INTO ATT_OPBAL (EMPID, LEVID, OPBAL) SELECT " + text(id) +
            ", LEVID, LEVID - 4 FROM ATT_DEFINITION WHERE ALLOTMENTYN = 1 AND LEVID <> 3");
    }
    void takeLeave() {
        const int id = anyEmployee(), kind = below(8);
        const DateTime on = day(kFirst + below(13), below(28));
        const std::string det =
            value("SELECT MAX(EMPDETID) FROM LEV_ALLOTMENT WHERE EMPID = " + text(id) + " AND '" +
                  iso(on) + "' BETWEEN ALLOTFROM AND ALLOTTO");
        if (det.empty()) return;
        leave(id, std::stoi(det), kind < 4 ? kind : kind + 1, iso(on),
              chance(20)   ? "1.5"
              : chance(50) ? "FS"
                           : "F");
        run("DELETE FROM LEV_DETAILS WHERE LEVID = 0");
        MarkAllotmentDirtyFrom(session, on, 0, text(id), "");
    }
    void adjust() {
        const std::string row =
            value("SELECT TOP 1 ALLOTID FROM LEV_ALLOTMENT ORDER BY (ALLOTID * " +
                  text(1 + below(97)) + ") % 101");
        run("INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, ATTHEADID, LEVID, MONTHYEAR, ALLOT, "
            "TAKEN, ASONDATE) SELECT EMPID, EMPDETID, ATTHEADID, LEVID, "
            "[dbo].FnLngMonthYear(ALLOTFROM, ALLOTTO), " +
            text(below(3)) + ", " + text(below(2)) +
            ", ALLOTTO FROM LEV_ALLOTMENT WHERE ALLOTID = " + row);
        run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EXISTS (SELECT * FROM LEV_ALLOTMENT R "
            "WHERE R.ALLOTID = " +
            row + " AND LEV_ALLOTMENT.EMPID = R.EMPID AND LEV_ALLOTMENT.ALLOTFROM >= R.ALLOTFROM)");
    }
    void openingBalance() {
        const std::string key = " WHERE EMPID = " + text(anyEmployee()) +
                                " AND LEVID = " + text(5 + below(kLeaves - 1));
        run("UPDATE ATT_OPBAL SET OPBAL = " + text(below(9) - 2) + key);
        run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1" + key);
    }
    void newSetting() {
        const int leave = 5 + below(kLeaves - 1), head = 10 + below(2);
        const int32_t since = kFirst + 1 + below(12);
        const std::string at = " WHERE LEVID = " + text(leave) + " AND ATTHEADID = " + text(head);
        run("DELETE FROM LEV_SETTINGS" + at + " AND MONTHYEAR = " + text(since));
        automatic_ = value("SELECT AUTOALLOTYN FROM LEV_SETTINGS" + at) == "1";
        rule(leave, head, since,
             anySetting(std::stoi(value("SELECT ALLOTTYPE FROM LEV_SETTINGS" + at))));
        run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE LEVID = " + text(leave));
    }
    int32_t lastMonth(int id) {
        return std::stoi(
            value("SELECT MAX(MONTHYEAR) FROM SLC_SALARYCALC_E WHERE EMPID = " + text(id)));
    }
    void nextMonth() {
        const int id = anyEmployee();
        const int32_t next = lastMonth(id) + 1;
        if (next > kLast) return;
        salary(id, versions_[id], next, next);
        ledgerRows();
    }
    // Moves to the other head in the middle of one of the last months.
    void move() {
        const int id = anyEmployee(), old = versions_[id];
        const DateTime on = day(kMade - below(5), 3 + below(20));
        const std::string mine = " WHERE EMPID = " + text(id), since = "'" + iso(on) + "'";
        if (value("SELECT COUNT(*) FROM MAS_EMPLOYEEDET" + mine + " AND EMPDETID = " + text(old) +
                  " AND EFFFROMDATE < DATEADD(DAY, -40, " + since +
                  ") AND EMPID IN (SELECT EMPID "
                  "FROM MAS_EMPLOYEE WHERE DOL IS NULL)") == "0")
            return;
        const std::string head = value("SELECT 21 - ATTHEADID FROM MAS_EMPLOYEEDET" + mine +
                                       " AND EMPDETID = " + text(old));
        version(id, old + 1, iso(on), std::stoi(head));
        versions_[id] = old + 1;
        run("UPDATE SLC_SALARYCALC_E SET EMPDETID = EMPDETID + 1" + mine +
            " AND MONTHYEAR > "
            "[dbo].FnLngMonthYear(" +
            since + ", " + since + ")");
        const int32_t month =
            std::stoi(value("SELECT [dbo].FnLngMonthYear(" + since + ", " + since + ")"));
        salary(id, old + 1, month, month);
        run("UPDATE LEV_DETAILS SET EMPDETID = " + text(old + 1) + mine +
            " AND LEAVEDATE >= " + since);
        run("UPDATE LEV_ADJUSTMENT SET EMPDETID = " + text(old + 1) + ", ATTHEADID = " + head +
            mine + " AND ASONDATE >= " + since);
        ledgerRows();
    }
    void depart() {
        run("UPDATE MAS_EMPLOYEE SET DOL = '" + iso(day(kMade + 1 + below(3), below(28))) +
            "' WHERE EMPID = " + text(anyEmployee()));
        ledgerRows();
    }

    std::mt19937 random_;
    std::map<int, int> versions_;
    int automatic_ = 0;
};

unsigned seeds(unsigned usual) {
    const char* set = std::getenv("OWB_SEEDS");
    return set ? static_cast<unsigned>(std::atoi(set)) : usual;
}

TEST(WaysAgree, InBulkOrRowByRow) {
    for (unsigned seed = 1; seed <= seeds(4); ++seed) {
        DrawnCompany p(seed);
        p.process(Way::Bulk);
        const std::string expected = p.ledger();
        for (const Way way : {Way::RowByRow, Way::Bulk}) {
            p.spoil();
            p.process(way);
            EXPECT_EQ(p.ledger(), expected) << "seed " << seed;
        }
        EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), "0");
    }
}

TEST(WaysAgree, ChangeByChangeOrAtOnce) {
    for (unsigned seed = 101; seed <= 100 + seeds(6); ++seed) {
        DrawnCompany p(seed);
        p.process(p.anyWay());
        std::string changes;
        for (int n = 0; n < 10; ++n) {
            changes += p.change() + ", ";
            if (p.chance(70)) p.process(p.anyWay());
        }
        p.allMonths();
        p.process(p.anyWay());
        const std::string found = p.ledger();
        p.spoil();
        p.process(Way::Bulk);
        EXPECT_EQ(found, p.ledger()) << "seed " << seed << ": " << changes;
        EXPECT_TRUE(p.boxes.shown.empty());
    }
}

TEST(WaysAgree, BrokenOffAnywhere) {
    for (unsigned seed = 201; seed <= 200 + seeds(2); ++seed)
        for (const Way way : {Way::Bulk, Way::RowByRow}) {
            DrawnCompany p(seed);
            size_t batches = 0;
            test::breakOff(p.session.gConn, 0, batches);
            p.process(way);
            const size_t all = batches;
            const std::string expected = p.ledger();
            for (int n = 0; n < 8; ++n) {
                p.reconnect();
                p.spoil();
                const size_t at = 1 + static_cast<size_t>(p.below(static_cast<int>(all)));
                test::breakOff(p.session.gConn, at, batches);
                EXPECT_THROW(p.process(way), test::Killed);
                p.reconnect();
                p.process(p.anyWay());
                EXPECT_EQ(p.ledger(), expected) << "seed " << seed << ", batch " << at;
            }
        }
}

TEST(WaysAgree, CancellingKeepsTheMarks) {
    class Cancelling final : public Progress {
      public:
        explicit Cancelling(int after) : left_(after) {}
        void status(const std::string&) override { --left_; }
        void step(size_t, size_t) override {}
        bool cancelled() const override { return left_ <= 0; }

      private:
        int left_;
    };
    DrawnCompany p(301);
    p.process(Way::Bulk);
    const std::string expected = p.ledger();
    for (const int after : {1, 20, 90}) {
        p.spoil();
        Cancelling frm(after);
        ProcessAllotments(p.session, frm);
        ProcessAllotmentsOld(p.session, frm, " ");
        EXPECT_NE(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), "0");
        p.process(p.anyWay());
        EXPECT_EQ(p.ledger(), expected);
    }
}

// Tells whether a batch named the work table of the bulk pass.
class Watched final : public test::DriverLayer {
  public:
    Watched(std::unique_ptr<Driver> inner, bool& bulk)
        : DriverLayer(std::move(inner)), bulk_(bulk) {}
    BatchResult run(std::string_view batch) override {
        if (batch.find("INTO [TMPALLOT") != std::string_view::npos) bulk_ = true;
        return inner_->run(batch);
    }
    BatchResult runCollecting(std::string_view batch) override { return run(batch); }

  private:
    bool& bulk_;
};

TEST(WaysAgree, TheMarkerFileAFilterAndFewRowsGoRowByRow) {
    LedgerCompany p(kFirst, kLast);
    p.head({10, 1});
    p.employee(1, "2020-01-01", 10);
    p.salary(1, 1, kFirst, kLast);
    for (int leave = 5; leave < 37; ++leave) p.rule(leave, 10, kFirst, "COYN = 1");
    p.ledgerRows();
    bool bulk = false;
    p.session.gConn.Wrap([&](std::unique_ptr<Driver> inner) {
        return std::make_unique<Watched>(std::move(inner), bulk);
    });
    const std::string marker = p.session.programFolder + "OldLevAllotment.dat";
    NoProgress progress;
    struct Case {
        const char *what, *rows, *filter;
        bool marker, bulk;
    };
    for (const Case& c : {Case{"many rows", "", "", false, true},
                          {"the marker file", "", "", true, false},
                          {"a filter", "", " AND LA.EMPID = 1 ", false, false},
                          {"few rows", " WHERE LEVID < 15", "", false, false}}) {
        p.run(std::string("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1") + c.rows);
        if (c.marker) std::ofstream(marker) << "";
        bulk = false;
        ProcessAllotmentsOld(p.session, progress, c.filter);
        std::filesystem::remove(marker);
        EXPECT_EQ(bulk, c.bulk) << c.what;
        EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1"), "0");
    }
}

}  // namespace
}  // namespace owb
