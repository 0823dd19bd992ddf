// Procedures, trigger and views, and their installation.
#include <gtest/gtest.h>

#include "schema/modSQLFunction.h"
#include "session/modEmployeeViews.h"
#include "support/company.h"

namespace owb {
namespace {

struct ServerProcedures : ::testing::Test {
    ServerProcedures() {
        company.addMonths(24289, 24300);
        company.run("UPDATE MAS_ATTHEAD SET ATTNTYPE = 2 WHERE ATTHEADID = 1");
        company.run(
            "INSERT INTO MAS_ATTHEAD (ATTHEADID, ATTHEADNAME, ATTNTYPE) VALUES (2, 'Register', "
            "1)");
        company.run(
            "INSERT INTO MAS_EMPLOYEE (EMPID, EMPNAME, DOJ) VALUES (7, 'Asha Rao', "
            "'2020-01-01'), (8, 'Ravi Nair', '2020-01-01')");
        company.run(
            "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, ATTHEADID) "
            "VALUES (7, 1, '2020-01-01', '2024-02-14', 1), (7, 2, '2024-02-15', NULL, 1), "
            "(8, 1, '2020-01-01', NULL, 2)");
    }
    test::Company company;
};

TEST_F(ServerProcedures, OneDayIsWrittenAndCleared) {
    company.run(
        "INSERT INTO LEV_MONTHDET (EMPID, EMPDETID, MONTHYEAR, EDITMODEYN) VALUES (7, 1, "
        "24290, 0), (7, 2, 24290, 0)");
    company.run("EXEC dbo.USP_OWB_UPDATELEVDET 7, 24290, 1, N'½CL+½P', '05 ', '2024-02-05', 2.5");
    // The second version's day makes a row of its own; a second write finds it again.
    company.run("EXEC dbo.USP_OWB_UPDATELEVDET 7, 24290, 1, 'O''ff', '20', '2024-02-20', 0");
    company.run("EXEC dbo.USP_OWB_UPDATELEVDET 7, 24290, 1, 'P', '21', '2024-02-21', 1.25");
    EXPECT_EQ(
        company.rows("SELECT D.ATTTRANNO, EMPDETID, ATTHEADID, DAY05, OTDAY05, DAY20, DAY21, "
                     "OTDAY21, EDITMODEYN FROM ATT_DAYTODAY D, ATT_OVERTIME O WHERE D.ATTTRANNO "
                     "= O.ATTTRANNO ORDER BY D.ATTTRANNO"),
        "1,1,1,½CL+½P,2.50,,,,1 2,2,1,,,O'ff,P,1.25,1");
    EXPECT_EQ(company.rows("SELECT EMPDETID, EDITMODEYN FROM LEV_MONTHDET ORDER BY EMPDETID"),
              "1,1 2,1");

    company.run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0");
    company.run(
        "INSERT INTO LEV_DETAILS VALUES (7, 1, 5, '2024-02-05', 1, 0, NULL, ''), (7, 1, 5, "
        "'2024-02-06', 1, 0, NULL, '')");
    company.run("INSERT INTO LEV_OTDETAILS VALUES (7, 1, '2024-02-05', 2.5, 0, 0)");
    company.run(
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, LEVID, ALLOTFROM, ALLOTTO, EDITMODEYN) VALUES "
        "(1, 7, 5, '2024-01-01', '2024-01-31', 0), (2, 7, 5, '2024-02-01', '2024-02-14', 0), "
        "(3, 7, 6, '2024-03-01', '2024-03-31', 0), (4, 8, 5, '2024-02-01', '2024-02-29', 0)");
    company.run("EXEC dbo.CLEARDAYTODAYREC 7, 1, '2024-02-05', 1, 24290, '05 ', 1");
    EXPECT_EQ(company.rows("SELECT DAY05, OTDAY05 FROM ATT_DAYTODAY D, ATT_OVERTIME O WHERE "
                           "D.ATTTRANNO = O.ATTTRANNO AND D.ATTTRANNO = 1"),
              ",");
    EXPECT_EQ(company.rows("SELECT LEAVEDATE FROM LEV_DETAILS"), "2024-02-06");
    EXPECT_EQ(company.value("SELECT COUNT(*) FROM LEV_OTDETAILS"), "0");
    EXPECT_EQ(company.rows("SELECT EMPDETID, EDITMODEYN FROM LEV_MONTHDET ORDER BY EMPDETID"),
              "1,1 2,0");
    EXPECT_EQ(
        company.rows("SELECT ALLOTID FROM LEV_ALLOTMENT WHERE EDITMODEYN = 1 ORDER BY ALLOTID"),
        "2 3");
}

TEST_F(ServerProcedures, SweepRepairsAndClears) {
    company.run(
        "INSERT INTO LEV_DETAILS VALUES (7, 0, 5, '2024-02-20', 1, 1, NULL, 'repaired'), "
        "(7, NULL, 5, '2024-02-05', 1, 0, NULL, 'repaired'), (9, 0, 5, '2024-02-05', 1, 1, NULL, "
        "'nobody'), (7, 1, 0, '2024-02-05', 1, 1, NULL, 'no leave'), (7, 1, 5, '2024-02-07', 0, 0, "
        "0, 'empty'), (7, 1, 5, '2024-02-08', 0, 0, 2.5, 'month figure'), (7, 1, 5, '2024-02-09', "
        "NULL, NULL, NULL, 'empty')");
    company.run(
        "INSERT INTO LEV_OTDETAILS VALUES (7, 0, '2024-02-20', 1, 0, 0), (7, 1, '2024-02-01', "
        "0, NULL, 0), (7, 1, '2024-02-02', 0, 0, -1)");
    // A row of the head that the version has, of another head, of a register head, of no month, and
    // a second row of the same version and month (which the tidying of registers takes out).
    company.run(
        "INSERT INTO ATT_DAYTODAY (ATTTRANNO, EMPID, EMPDETID, ATTHEADID, MONTHYEAR) VALUES "
        "(1, 7, 1, 1, 24289), (2, 7, 2, 9, 24290), (3, 8, 1, 2, 24290), (4, 7, 1, 1, 24100), "
        "(5, 7, 1, 1, 24289)");
    company.run("INSERT INTO ATT_OVERTIME (ATTTRANNO) VALUES (1), (2), (3), (4), (5)");
    company.run(
        "INSERT INTO SLC_SALARYCALC_E (SALID, EMPID, EMPDETID, MONTHYEAR) VALUES (12, 7, 1, "
        "24289), (11, 7, 1, 24289), (13, 7, 2, 24289), (14, 8, 1, 24289)");
    company.run("INSERT INTO SLC_SALARYCALC_D (SALID) VALUES (11), (12), (13), (14)");
    company.run(
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, EMPDETID, ATTHEADID, LEVID, ALLOTFROM, "
        "ALLOTTO) "
        "VALUES (1, 7, 1, 1, 5, '2024-01-01', '2024-01-31'), (2, 7, 1, 1, 5, '2024-01-01', "
        "'2024-01-31'), (3, 7, 1, 1, 6, '2024-01-01', '2024-01-31'), (4, 7, 1, 1, 5, '2024-02-02', "
        "'2024-02-01')");
    company.run(
        "INSERT INTO SLC_ADDDEFINITION (ADDROWID, MONTHYEAR, ADDTYPE, SHOWINSALARYYN) VALUES "
        "(1, 24289, 2, 1), (2, 24289, 1, 1)");
    company.run(
        "INSERT INTO SLC_ADDEMPCALC_E (ADDENTRYID, EMPID, ADDROWID) VALUES (1, 8, 1), (2, 7, "
        "1), (3, 7, 2)");
    company.run("INSERT INTO SLC_ADDEMPCALC_D (ADDENTRYID) VALUES (1), (2), (3)");
    company.run("INSERT INTO ATT_ENCASH (EMPID, ADDENTRYID) VALUES (7, 2)");

    TidyAttendanceRows(company.session);
    FreeLeaveTables(company.session);

    EXPECT_EQ(
        company.rows("SELECT EMPDETID, LEAVEDATE, REASON FROM LEV_DETAILS ORDER BY LEAVEDATE"),
        "1,2024-02-05,repaired 1,2024-02-08,month figure 2,2024-02-20,repaired");
    EXPECT_EQ(company.rows("SELECT EMPDETID, OTDATE FROM LEV_OTDETAILS ORDER BY OTDATE"),
              "1,2024-02-02 2,2024-02-20");
    // Row 2 got its version's head while the registers were tidied.
    EXPECT_EQ(company.rows("SELECT ATTTRANNO, ATTHEADID FROM ATT_DAYTODAY ORDER BY ATTTRANNO"),
              "1,1 2,1");
    EXPECT_EQ(company.rows("SELECT ATTTRANNO FROM ATT_OVERTIME ORDER BY ATTTRANNO"), "1 2");
    EXPECT_EQ(company.rows("SELECT SALID FROM SLC_SALARYCALC_E ORDER BY SALID"), "11 13 14");
    EXPECT_EQ(company.rows("SELECT SALID FROM SLC_SALARYCALC_D ORDER BY SALID"), "11 13 14");
    EXPECT_EQ(company.rows("SELECT ALLOTID FROM LEV_ALLOTMENT ORDER BY ALLOTID"), "1 3");
    EXPECT_EQ(company.rows("SELECT ADDENTRYID FROM SLC_ADDEMPCALC_E ORDER BY ADDENTRYID"), "2 3");
    EXPECT_EQ(company.rows("SELECT ADDENTRYID FROM SLC_ADDEMPCALC_D ORDER BY ADDENTRYID"), "2 3");
    EXPECT_EQ(company.rows("SELECT SALID FROM SLC_SALARYCALC_E WHERE EDITMODEYN = 1"), "14");
    // Settings of every leave with allotment, for the common row and both heads, at the first
    // month.
    EXPECT_EQ(
        company.rows("SELECT LEVID, ATTHEADID, MONTHYEAR, PRIORITY, COYN FROM LEV_SETTINGS "
                     "ORDER BY LEVID, ATTHEADID"),
        "2,0,24289,2,0 2,1,24289,2,0 2,2,24289,2,0 3,0,24289,3,0 3,1,24289,3,0 3,2,24289,3,0");

    // A second sweep finds nothing; settings of a leave that lost its allotment go.
    company.run("UPDATE ATT_DEFINITION SET ALLOTMENTYN = 0 WHERE LEVID = 2");
    FreeLeaveTables(company.session);
    EXPECT_EQ(company.rows("SELECT COUNT(*) FROM LEV_SETTINGS"), "3");
    EXPECT_EQ(company.rows("SELECT COUNT(*) FROM LEV_DETAILS"), "3");
}

TEST_F(ServerProcedures, LockHistoryHoldsChangesOnly) {
    company.run(
        "INSERT INTO SEC_LOGHISTORY (OWBUSERID, [LOGIN], HOSTNAME) VALUES (3, '2020-01-01', "
        "HOST_NAME()), (4, '2021-01-01', HOST_NAME()), (5, '2022-01-01', 'elsewhere')");
    company.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR <= 24290");
    company.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1, ATTLOCKYN = 1 WHERE MONTHYEAR <= 24291");
    company.run(
        "UPDATE MAS_MONTHYEAR SET LOCKEDYN = 0 WHERE MONTHYEAR = 24289 OR MONTHYEAR = 24295");
    EXPECT_EQ(
        company.rows("SELECT MONTHYEAR, LOCKEDYN, OWBUSERID FROM SEC_MONTHLOCKHISTORY ORDER BY "
                     "MONTHYEAR, LOCKEDYN"),
        "24289,0,4 24289,1,4 24290,1,4 24291,1,4");
}

TEST_F(ServerProcedures, PeriodViews) {
    SetHostNames(company.session);
    CreatePeriodViews(company.session);
    CreatePeriodViews(company.session);  // a second start drops them first
    company.addMonths(24301, 24303);     // Jan to Mar/2025
    auto periods = [&](const std::string& view) {
        return company.rows("SELECT MONTHNAME, STARTDATE, ENDDATE FROM [dbo].[" +
                            company.session.gHostPrefix + view + "] ORDER BY MONTHYEAR");
    };
    EXPECT_EQ(periods("_vw_Quarterly"),
              "Jan/2024,2024-01-01,2024-03-31 Apr/2024,2024-04-01,2024-06-30 "
              "Jul/2024,2024-07-01,2024-09-30 Oct/2024,2024-10-01,2024-12-31 "
              "Jan/2025,2025-01-01,2025-03-31");
    EXPECT_EQ(periods("_vw_CalHalfYear"),
              "Jan/2024,2024-01-01,2024-06-30 Jul/2024,2024-07-01,2024-12-31 "
              "Jan/2025,2025-01-01,2025-06-30");
    EXPECT_EQ(periods("_vw_FinHalfYear"),
              "Oct/2023,2023-10-01,2024-03-31 Apr/2024,2024-04-01,2024-09-30 "
              "Oct/2024,2024-10-01,2025-03-31");
}

TEST_F(ServerProcedures, LeaveSummaryAddsUpItsDates) {
    company.run(
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, RNDTYPE, ALLOTTYPE) VALUES (5, "
        "1, 24200, 1, 1), (5, 1, 24290, 2, 1)");
    company.run(
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, EMPDETID, ATTHEADID, LEVID, ALLOTFROM, "
        "ALLOTTO, "
        "ALLOTLEV, COLEV, LAPSE) VALUES (1, 7, 1, 1, 5, '2024-01-01', '2024-01-31', 1, 3, 0), (2, "
        "7, "
        "1, 1, 5, '2024-02-01', '2024-02-14', 1, 2, 0.5)");
    company.run(
        "INSERT INTO LEV_DETAILS VALUES (7, 1, 5, '2024-02-01', 1, 0, NULL, ''), (7, 1, 5, "
        "'2024-02-02', 1, 1, 0, ''), (7, 1, 5, '2024-02-03', 0, 0, 1.25, ''), (7, 2, 5, "
        "'2024-02-15', 1, 1, NULL, '')");
    company.run(
        "INSERT INTO LEV_ADJUSTMENT (EMPID, EMPDETID, LEVID, MONTHYEAR, ALLOT, TAKEN) VALUES "
        "(7, 1, 5, 24290, 2, 0.5), (7, 1, 5, 24290, 1, NULL)");
    company.run(
        "INSERT INTO ATT_ENCASH (EMPID, ALLOTID, UPTODATE, NOOFDAYS) VALUES (7, 1, "
        "'2024-02-10', 4), (7, 2, '2024-03-10', 8)");
    SetHostNames(company.session);
    CreateLeaveSummaryView(company.session);
    EXPECT_EQ(company.rows("SELECT ALLOTID, MONTHYEAR, RNDTYPE, ALLOTTED, OPBAL, LAPSED, AVAILED, "
                           "ENCASHED, ADJUSTED FROM " +
                           company.session.gLeaveSummaryView +
                           " WHERE EMPNAME = 'asha rao' ORDER BY ALLOTID"),
              "1,24289,1,1.00,3.00,0.00,0.000000,0.00,0.00 "
              "2,24290,2,1.00,2.00,0.50,2.750000,4.00,2.50");
}

TEST_F(ServerProcedures, InstallationReplacesWhatIsThere) {
    company.run("DROP FUNCTION dbo.FnDblRndOff");
    company.run("DROP PROCEDURE dbo.CLEARDAYTODAYREC");
    company.session.gWinUserId = "desk7";
    InstallServerObjects(company.session);
    EXPECT_EQ(company.value("SELECT dbo.FnDblRndOff(2.3, 2)"), "2.50");
    EXPECT_EQ(company.value("SELECT COUNT(*) FROM Sys.Objects WHERE Name IN ('FnDblRndOff', "
                            "'CLEARDAYTODAYREC', 'TrMonthLockHistory')"),
              "3");
    EXPECT_FALSE(
        FnBlnPrepareObject(company.session, "UDF_LSET", ServerObjectKind::Function, false));

    // A hosted session carries the Windows user in its names and keeps no lock history.
    company.session.gExtendedYN = true;
    company.session.gConn.BeginTrans();
    InstallServerObjects(company.session);
    company.session.gConn.CommitTrans();
    EXPECT_TRUE(company.session.gHostPrefix.ends_with("desk7"));
    EXPECT_EQ(company.value("SELECT COUNT(*) FROM Sys.Objects WHERE Name = 'TrMonthLockHistory'"),
              "0");
}

TEST(FamilyDatabase, DeliveredRowsAndNoMore) {
    test::Company company;
    EXPECT_EQ(
        company.rows("SELECT LEVID, LEVSHORT, ALLOTMENTYN FROM ATT_DEFINITION ORDER BY LEVID"),
        "1,LOP,0 2,CO,1 3,CW,1 4,RES,0");
    const std::pair<const char*, const char*> counts[] = {
        {"MAS_ATTHEAD", "1"},   {"ATT_OPTSETTINGS", "2"}, {"SEC_USERLIST", "1"},
        {"MAS_COMPANY", "1"},   {"MAS_OPTSET", "1"},      {"MAS_OPTSETFEATURE", "1"},
        {"MAS_MONTHYEAR", "0"}, {"MAS_EMPLOYEE", "0"},    {"LEV_SETTINGS", "0"}};
    for (const auto& [table, count] : counts)
        EXPECT_EQ(company.value("SELECT COUNT(*) FROM " + std::string(table)), count) << table;
    // Replaced by plain statements, with the columns that are not named left NULL.
    company.run("DELETE FROM ATT_DEFINITION DELETE FROM MAS_ATTHEAD DELETE FROM MAS_OPTSET");
    company.run("INSERT INTO ATT_DEFINITION (LEVID, LEVSHORT) VALUES (1, 'LWP')");
    company.run("INSERT INTO MAS_OPTSET (EMPIDCAP) VALUES ('Code')");
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID, PROBATIONDATE) VALUES (1, '05/Jan/2014')");
    EXPECT_EQ(company.value("SELECT PROBATIONDATE FROM MAS_EMPLOYEE"), "2014-01-05");
    EXPECT_EQ(company.value("SELECT MONTHNAME FROM QRYMONTH"), "");
    company.addMonths(24168, 24169);
    EXPECT_EQ(company.rows("SELECT MONTHNAME FROM QRYMONTH ORDER BY MONTHYEAR DESC"),
              "Jan/2014 Dec/2013");
}

TEST(FamilyDatabase, ScriptsFallApartAtGo) {
    EXPECT_EQ(splitBatches("SELECT 1\n go \r\nSELECT 'GO'\nGOTO x\nGO\n\nGO\n").size(), 2u);
    EXPECT_TRUE(splitBatches("\nGO\n").empty());
}

}  // namespace
}  // namespace owb
