// The rows that the ledger needs: from-dates, ledger rows, and what their coming and going marks.
#include <gtest/gtest.h>

#include "leave/ledger_company.h"

namespace owb {
namespace {

using test::LedgerCompany;
using test::Way;

constexpr int32_t kJan = 2024 * 12 + 1, kMar = kJan + 2;

TEST(FromDates, FollowTheSettingsOfTheFirstVersionsMonth) {
    LedgerCompany p(kJan, kMar);
    p.head({10, 2});
    p.head({11, 2});
    p.employee(1, "2024-01-10", 10);
    p.employee(2, "2020-01-01", 10);  // before any setting
    p.employee(3, "2024-01-31", 11);
    p.version(1, 2, "2024-03-01", 11);
    p.run(
        "UPDATE MAS_EMPLOYEE SET PROBATIONDATE = '2024-07-10', CONFIRMATIONDATE = '2024-08-31' "
        "WHERE EMPID = 1");
    p.rule(5, 10, kJan,
           "MINDATETYPE = 1, MINMONTH = 1, MINDAYS = 2, MINAVAILDATETYPE = 2, "
           "MINAVAILMONTH = 6");
    p.rule(5, 11, kJan, "MINMONTH = 1, MINAVAILDATETYPE = 2, MINAVAILDAYS = 9");
    p.run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 0 WHERE LEVID = 2");
    p.ledgerRows();
    const char* dates =
        "SELECT LA.EMPID, LA.ALLOTFROM, LV.AVAILFROM, ACTALLOTFROM FROM LEV_ALLOTFROM LA, "
        "LEV_AVAILFROM LV WHERE LV.EMPID = LA.EMPID AND LV.LEVID = LA.LEVID ORDER BY LA.EMPID";
    EXPECT_EQ(p.rows(dates),
              "1,2024-08-12,2025-02-28,2024-08-12 2,2020-01-01,2020-01-01,2020-01-01 "
              "3,2024-02-29,2099-12-31,2024-02-29");
    EXPECT_EQ(p.rows("SELECT DISTINCT LEVID FROM LEV_ALLOTFROM"), "5") << "never compensatory work";

    p.process(Way::Bulk);
    p.run("UPDATE LEV_SETTINGS SET MINDATETYPE = 0, MINMONTH = 0, MINDAYS = 0 WHERE LEVID = 5");
    p.run("UPDATE LEV_ALLOTFROM SET CHANGEYN = 1");
    p.run("UPDATE LEV_ALLOTFROM SET ALLOTFROM = '2024-02-05', EDITEDYN = 1 WHERE EMPID = 3");
    p.run("UPDATE LEV_ALLOTMENT SET EDITMODEYN = 0");
    UpdateAllotFromDate(p.session);
    EXPECT_EQ(p.rows(dates),
              "1,2024-01-10,2025-02-28,2024-01-10 2,2020-01-01,2020-01-01,2020-01-01 "
              "3,2024-02-05,2099-12-31,2024-02-29")
        << "a date set by hand stays";
    EXPECT_EQ(p.value("SELECT COUNT(*) FROM LEV_ALLOTFROM WHERE CHANGEYN <> 0"), "0");
}

// Employee 1 from joining to leaving over a change of version, with a month without salary; 2 in a
// head whose leave begins in February.
class Rows : public LedgerCompany {
  public:
    Rows() : LedgerCompany(kJan - 1, kMar + 9) {
        run("UPDATE MAS_OPTSETFEATURE SET LVSTARTMNYEAR = 24289");
        session.gFeature.LVSTARTMNYEAR = kJan;
        head({10, 2});
        head({11, 2});
        employee(1, "2024-01-10", 10, "2024-03-20");
        version(1, 2, "2024-02-11", 10);
        employee(2, "2020-01-01", 11);
        rule(5, 10, kJan, "COYN = 1");
        rule(5, 11, kJan + 1, "COYN = 1");
        run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 0 WHERE LEVID = 2");
        salary(1, 1, kJan - 1, kJan + 1);
        salary(1, 2, kJan + 1, kMar);
        salary(2, 1, kJan, kMar);
        ledgerRows();
    }
    std::string spans(int employee) {
        return column(
            "CAST(EMPDETID AS varchar(2)) + ' ' + CONVERT(varchar(10), ALLOTFROM, 120) + "
            "' ' + CONVERT(varchar(10), ALLOTTO, 120)",
            employee, 5);
    }
    void clean() {
        process(Way::RowByRow);
        run("UPDATE LEV_ALLOTMENT SET LAPSE = 1");
    }
    std::string marked(int employee) {
        return column("MONTH(ALLOTFROM)", employee, 5, " AND EDITMODEYN = 1");
    }
};

TEST(LedgerRows, AreTheSlicesOfTheMonthsSinceTheAllotFromDate) {
    Rows p;
    EXPECT_EQ(p.spans(1),
              "1 2024-01-10 2024-01-31 1 2024-02-01 2024-02-10 2 2024-02-11 2024-02-29 "
              "2 2024-03-01 2024-03-20");
    EXPECT_EQ(p.spans(2), "1 2024-02-01 2024-02-29 1 2024-03-01 2024-03-31")
        << "from the head's first settings on";
    EXPECT_EQ(p.rows("SELECT DISTINCT ACTALLOTLEV, ALLOTLEV, COLEV, LAPSE, EDITMODEYN FROM "
                     "LEV_ALLOTMENT"),
              "0.00,0.00,0.00,0.00,1");
    p.clean();
    const std::string before = p.ledger();
    p.ledgerRows();
    EXPECT_EQ(p.ledger(), before) << "nothing to do";
    p.run("UPDATE MAS_MONTHYEAR SET TDSPORTYN = 1 WHERE MONTHYEAR = 24290");
    p.ledgerRows();
    EXPECT_EQ(p.ledger(), before) << "rows stay when the tax is ported";
    p.run("DELETE FROM LEV_ALLOTMENT WHERE EMPID = 2 AND ALLOTFROM < '2024-03-01'");
    p.ledgerRows();
    EXPECT_EQ(p.spans(2), "1 2024-03-01 2024-03-31") << "and no new ones come";
}

TEST(LedgerRows, WhatComesAndGoesMarksWhatRestsOnIt) {
    struct Change {
        const char* what;
        const char* sql;
        const char* marked;  // months of the rows of employee 2 marked afterwards
    };
    for (const Change& c :
         {Change{"a month behind the others",
                 "INSERT INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR) VALUES (99, 2, "
                 "1, 24292)",
                 "4"},
          {"a setting that begins with the new month",
           "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR) VALUES (5, 11, 24292) INSERT "
           "INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR) VALUES (99, 2, 1, 24292)",
           "2 3 4"},
          {"a row that goes", "DELETE FROM SLC_SALARYCALC_E WHERE EMPID = 2 AND MONTHYEAR = 24291",
           "2"},
          {"a row before the others",
           "UPDATE LEV_SETTINGS SET MONTHYEAR = 24289 WHERE ATTHEADID = "
           "11",
           "1 2 3"},
          {"an end of service", "UPDATE MAS_EMPLOYEE SET DOL = '2024-03-09' WHERE EMPID = 2",
           "2 3"}}) {
        Rows p;
        p.clean();
        p.run(c.sql);
        p.ledgerRows();
        EXPECT_EQ(p.marked(2), c.marked) << c.what;
        EXPECT_EQ(p.marked(1), "") << c.what;
    }
}

TEST(LedgerRows, GoWithTheirLeave) {
    Rows p;
    p.rule(6, 10, kJan, "");
    p.ledgerRows();
    p.figure(5, 10, kJan, "1");
    p.figure(6, 10, kJan, "1");
    p.run("INSERT INTO LEV_ADJUSTMENT (EMPID, LEVID, ALLOT, TAKEN) VALUES (1, 5, 2, 1)");
    p.run(
        "INSERT INTO ATT_ENCASH (EMPID, ADDENTRYID, ALLOTID, MONTHYEAR, NOOFDAYS) SELECT EMPID, "
        "7, ALLOTID, 24291, 1 FROM LEV_ALLOTMENT WHERE EMPID = 1 AND LEVID = 5 AND MONTH(ALLOTTO) "
        "= 3");
    p.run("INSERT INTO SLC_ADDEMPCALC_E (ADDENTRYID, EMPID) VALUES (7, 1), (8, 1)");
    p.run("INSERT INTO SLC_ADDEMPCALC_D (ADDENTRYID) VALUES (7), (8)");
    p.run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 0 WHERE LEVID = 5");
    p.run("DELETE FROM ATT_DEFINITION WHERE LEVID = 6");
    p.ledgerRows();
    for (const char* table : {"ATT_OPBAL", "LEV_ALLOTMENT", "LEV_ALLOTFROM", "LEV_AVAILFROM",
                              "LEV_ALLOTCONFIG", "ATT_ENCASH"})
        EXPECT_EQ(p.value(std::string("SELECT COUNT(*) FROM ") + table), "0") << table;
    EXPECT_EQ(p.rows("SELECT ALLOT, TAKEN FROM LEV_ADJUSTMENT"), "0.00,1.00");
    EXPECT_EQ(p.rows("SELECT ADDENTRYID FROM SLC_ADDEMPCALC_E"), "8");
    EXPECT_EQ(p.rows("SELECT ADDENTRYID FROM SLC_ADDEMPCALC_D"), "8");
    EXPECT_EQ(p.rows("SELECT EMPID, MONTHYEAR FROM SLC_SALARYCALC_E WHERE EDITMODEYN = 1"),
              "1,24291");
}

}  // namespace
}  // namespace owb
