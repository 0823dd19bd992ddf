// Masters are changed by other programs, which mark nothing here. Whatever they change in companies
// drawn by chance, the starts that follow end with the tables that working everything out anew
// gives.
#include <gtest/gtest.h>

#include <random>

#include "leave/ledger_company.h"
#include "support/rehearsal.h"

namespace owb {
namespace {

using test::LedgerCompany;
using test::Rehearsal;

constexpr int32_t kFirst = 2023 * 12 + 4, kLast = kFirst + 9;
constexpr int kPeople = 6;

class ChangedMasters : public LedgerCompany {
  public:
    explicit ChangedMasters(unsigned seed) : LedgerCompany(kFirst, kLast), random_(seed) {
        for (int h : {10, 11}) head({h, h == 10 ? 1 : 2, 2});
        setHead(11, "OT1YN = 1");
        weekly(11, 1, "FS FS FS FS FS");
        for (int h : {10, 11}) {
            rule(5, h, kFirst, "AUTOALLOTYN = 1, ALLOTTYPE = 2, ALLOTON = 2, COYN = 1");
            figure(5, h, 2000, "12");
            rule(6, h, kFirst, "AUTOALLOTYN = 1, ALLOTTYPE = 1, ALLOTON = 1, COYN = 1");
            figure(6, h, kFirst, "1.5");
            rule(7, h, kFirst, "COYN = 1");
        }
        for (int id = 1; id <= kPeople; ++id) {
            employee(id, "2022-05-10", 10 + id % 2);
            salary(id, 1, kFirst, kLast - 2);
        }
    }

    // One change of a master, as the programs that own them make it. What it was.
    std::string change() {
        const int id = 1 + below(kPeople);
        const std::string mine = " WHERE EMPID = " + text(id);
        const std::string day = "'" + iso(below(270)) + "'";
        switch (below(8)) {
            case 0:
                run("UPDATE MAS_EMPLOYEE SET DOL = " + day + mine);
                return "leaves " + day;
            case 1:
                run("UPDATE MAS_EMPLOYEE SET DOL = [dbo].FnDteGetLastDate(" +
                    text(kFirst + below(9)) + ")" + mine);
                return "leaves with the month";
            case 2:
                run("UPDATE MAS_EMPLOYEE SET DOL = NULL" + mine);
                return "does not leave";
            case 3:
                return transfer(id, iso(20 + below(230)));
            case 4:
                run("DELETE FROM MAS_EMPLOYEEDET" + mine + " AND EMPDETID > 1");
                run("UPDATE MAS_EMPLOYEEDET SET EFFTODATE = NULL" + mine);
                run("UPDATE SLC_SALARYCALC_E SET EMPDETID = 1" + mine);
                run("DELETE FROM SLC_SALARYCALC_E" + mine +
                    " AND SALID > (SELECT MIN(SALID) FROM SLC_SALARYCALC_E S WHERE S.EMPID = "
                    "SLC_SALARYCALC_E.EMPID AND S.MONTHYEAR = SLC_SALARYCALC_E.MONTHYEAR)");
                return "transfers taken back";
            case 5:
                run("DELETE FROM SLC_SALARYCALC_E" + mine + " AND MONTHYEAR = " + text(kLast - 2));
                return "loses the last salary row";
            case 6:
                run("UPDATE MAS_EMPLOYEE SET SALCALCFROM = '2023-04-12'" + mine);
                return "is paid from a later day";
            default:
                run("UPDATE MAS_EMPLOYEEDET SET ATTHEADID = 21 - ATTHEADID" + mine +
                    " AND EMPDETID = 1");
                return "has always been in the other head";
        }
    }
    void enterLeave() {
        const int id = 1 + below(kPeople);
        const std::string day = iso(below(240));
        const std::string det =
            value("SELECT [dbo].FnIntMaxEmpDetID(" + text(id) + ", '" + day + "', '" + day + "')");
        leave(id, std::stoi(det), 5 + below(3), day, below(2) ? "FS" : "F");
        run("UPDATE LEV_MONTHDET SET EDITMODEYN = 1 WHERE EMPID = " + text(id));
        run("UPDATE ATT_DAYTODAY SET EDITMODEYN = 1 WHERE EMPID = " + text(id));
        run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 1 WHERE EMPID = " + text(id));
    }
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  private:
    static std::string iso(int afterFirst) {
        return dateText(parseDate("2023-04-01").value().plusDays(afterFirst), "yyyy-MM-dd");
    }
    std::string transfer(int id, const std::string& on) {
        const std::string mine = " WHERE EMPID = " + text(id);
        if (value("SELECT COUNT(*) FROM MAS_EMPLOYEEDET" + mine) != "1") return "nothing";
        const std::string head = value("SELECT 21 - ATTHEADID FROM MAS_EMPLOYEEDET" + mine);
        version(id, 2, on, std::stoi(head));
        const std::string month = "[dbo].FnLngMonthYear('" + on + "', '" + on + "')";
        run("UPDATE SLC_SALARYCALC_E SET EMPDETID = 2" + mine + " AND MONTHYEAR > " + month);
        const int32_t divided = std::stoi(value("SELECT " + month));
        if (divided <= kLast - 2) salary(id, 2, divided, divided);
        return "is transferred on " + on;
    }

    std::mt19937 random_;
};

TEST(ChangedMasters, AreAllSeenByTheNextStart) {
    const char* set = std::getenv("OWB_SEEDS");
    const unsigned seeds = set ? static_cast<unsigned>(std::atoi(set)) : 3;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        ChangedMasters p(seed);
        Rehearsal starts(p, [] {});
        starts.heal();
        for (int n = 0; n < 6; ++n) p.enterLeave();
        starts.heal();
        std::string changes;
        for (int n = 0; n < 5; ++n) {
            changes += p.change() + ", ";
            if (p.below(2)) changes += p.change() + ", ";
            starts.heal();
        }
        const std::string found = starts.tables();
        p.run("DELETE FROM LEV_CONFIGURED WHERE WHAT = 'STATE'");
        for (const char* table : {"ATT_DAYTODAY", "LEV_MONTHDET", "LEV_ALLOTMENT"})
            p.run(std::string("UPDATE ") + table + " SET EDITMODEYN = 1");
        p.run("UPDATE LEV_MONTHDET SET NODCALC = 0, NOD = 0, NDP = 0");
        starts.heal();
        EXPECT_EQ(test::difference(found, starts.tables()), "")
            << "seed " << seed << ": " << changes;
        EXPECT_TRUE(p.boxes.shown.size() <= 20) << p.boxes.shown.front().text;
    }
}

}  // namespace
}  // namespace owb
