// Helpers, loaders, rights and per-host objects on a company database.
#include <gtest/gtest.h>

#include <thread>

#include "calendar/restricted_holidays.h"
#include "family/modCommon.h"
#include "session/FileSettingsStore.h"
#include "session/clsCtrlDep.h"
#include "session/lenient_queries.h"
#include "session/locks.h"
#include "session/modAttSetting.h"
#include "session/modAuditTrail.h"
#include "session/modEmployeeViews.h"
#include "session/modOWBSetting.h"
#include "session/modRights.h"
#include "session/modSave.h"
#include "session/months.h"
#include "session/queries.h"
#include "support/company.h"

namespace owb {
namespace {

struct Database : ::testing::Test {
    test::Company company;
    Session& session = company.session;
};

TEST_F(Database, FirstValue) {
    company.run("INSERT INTO MAS_BRANCH (BRANCHID, BRANCHNAME) VALUES (1, NULL), (2, 'Pune')");
    EXPECT_EQ(
        FnVarGetValue(session, "SELECT BRANCHNAME FROM MAS_BRANCH WHERE BRANCHID = 2", "none"),
        Value("Pune"));
    EXPECT_EQ(
        FnVarGetValue(session, "SELECT BRANCHNAME FROM MAS_BRANCH WHERE BRANCHID = 1", "none"),
        Value("none"));
    EXPECT_EQ(FnVarGetValue(session, "SELECT BRANCHNAME FROM MAS_BRANCH WHERE BRANCHID = 3", 5),
              Value(5));
    EXPECT_TRUE(company.boxes.shown.empty());
    // A failing query tells so and gives nothing, not the default.
    EXPECT_EQ(FnVarGetValue(session, "SELECT X FROM NOWHERE", 5).toInt(), 0);
    ASSERT_EQ(company.boxes.shown.size(), 1u);
    EXPECT_EQ(company.boxes.shown[0].text, "Invalid object name 'NOWHERE'. : 208");
    EXPECT_EQ(company.boxes.shown[0].icon, BoxIcon::Critical);

    EXPECT_FALSE(FnBlnRecordExists(session, "SELECT X FROM NOWHERE"));
    EXPECT_FALSE(FnBlnExecute(session, "DELETE FROM NOWHERE"));
    EXPECT_TRUE(FnBlnExecute(session, "DELETE FROM MAS_BRANCH WHERE BRANCHID = 9"));
    EXPECT_EQ(company.boxes.shown.size(), 1u);
}

TEST_F(Database, KeysAndDuplicates) {
    const clsCtrlDep dep(session);
    EXPECT_EQ(dep.FnLngGetNextNumber("MAS_BRANCH", "BRANCHID"), 1);
    company.run("INSERT INTO MAS_BRANCH (BRANCHID, BRANCHNAME) VALUES (4, 'O''Neil Road')");
    EXPECT_EQ(dep.FnLngGetNextNumber("MAS_BRANCH", "BRANCHID"), 5);
    EXPECT_EQ(dep.FnLngGetNextNumber("MAS_BRANCH", "BRANCHID", "BRANCHID > 4"), 1);
    const struct {
        std::string value;
        int64_t ownId;
        bool duplicate;
    } cases[] = {{" o'neil road ", 0, true}, {"O'NEIL ROAD", 4, false}, {"Other", 0, false}};
    for (const auto& c : cases)
        EXPECT_EQ(FnBlnDuplicate(session, "MAS_BRANCH", "BRANCHNAME", "BRANCHID", c.value, c.ownId),
                  c.duplicate)
            << c.value;
    EXPECT_EQ(FnVarNz(Value(), 7), Value(7));
    EXPECT_EQ(FnVarNz(Value(0), 7), Value(0));
    EXPECT_EQ(FnVarNz(Value(0.0), 7, true), Value(7));
    EXPECT_EQ(FnVarNz(Value(""), 7, true), Value(""));
}

TEST_F(Database, MonthsThatStartInMidMonth) {
    company.run(
        "INSERT INTO MAS_MONTHYEAR (MONTHYEAR, CALCSTARTDATE, CALCENDDATE) VALUES (24169, "
        "'2013-12-26', '2014-01-25')");
    int32_t month = 1;
    std::string name = "unchanged";
    GetMonthOfDate(session, DateTime::fromCivil(2014, 2, 1), month, name);
    EXPECT_EQ(month, 1);
    EXPECT_EQ(name, "unchanged");
    GetMonthOfDate(session, DateTime::fromCivil(2013, 12, 30), month, name);
    EXPECT_EQ(month, 24169);
    EXPECT_EQ(name, "Jan/2014");

    DateTime from, to;
    GetMonthPeriod(session, 24169, from, to);
    EXPECT_EQ(isoText(from) + " " + isoText(to), "2014-01-01 2014-01-31");
    session.gFeature.CALCINMIDYN = true;
    GetMonthPeriod(session, 24169, from, to);
    EXPECT_EQ(isoText(from) + " " + isoText(to), "2013-12-26 2014-01-25");
    EXPECT_EQ(FnDteMonthStart(session, 0), DateTime{});
    EXPECT_EQ(company.boxes.shown.size(), 1u);
}

TEST_F(Database, Locks) {
    company.addMonths(24289, 24291);
    company.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = 24290");
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID, LOCKYN) VALUES (1, 0), (2, 1)");
    EXPECT_TRUE(FnBlnMonthLocked(session, 24290));
    EXPECT_FALSE(FnBlnMonthLocked(session, 24289));
    EXPECT_FALSE(FnBlnMonthLocked(session, 20000));
    EXPECT_TRUE(FnBlnMonthRangeLocked(session, 24289, 24291, false, 0));
    EXPECT_FALSE(FnBlnMonthRangeLocked(session, 24291, 24291, true, 1));
    EXPECT_TRUE(FnBlnMonthRangeLocked(session, 24291, 24291, true, 2));
    EXPECT_TRUE(FnBlnMonthRangeLocked(session, 24291, 24291, true, 0));
    session.gOptSet.STARTMONTHYEAR = 24290;
    EXPECT_FALSE(FnBlnInPayrollPeriod(session, DateTime::fromCivil(2024, 1, 31)));
    EXPECT_TRUE(FnBlnInPayrollPeriod(session, DateTime::fromCivil(2024, 2, 1)));
}

TEST_F(Database, TaxYears) {
    int32_t from = 0, to = 0;
    GetTaxYearRange(session, 24291, 24292, from, to);  // Mar and Apr/2024, no table
    EXPECT_EQ(from, 2023);
    EXPECT_EQ(to, 2024);
    session.gOptSet.TDSMAR2FEB = true;
    GetTaxYearRange(session, 24290, 24291, from, to);  // Feb and Mar/2024
    EXPECT_EQ(from, 2023);
    EXPECT_EQ(to, 2024);
    company.run("INSERT INTO ITSETTING (ASSYEAR) VALUES (2012), (2015)");
    GetTaxYearRange(session, 24000, 24300, from, to);
    EXPECT_EQ(from, 2011);
    EXPECT_EQ(to, 2014);
}

TEST_F(Database, RestrictedHolidays) {
    company.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, ATTHEADID, "
        "BRANCHID) VALUES (1, 1, '2020-01-01', '2024-03-31', 3, 8), (1, 2, '2024-04-01', "
        "NULL, 4, 9)");
    company.run(
        "INSERT INTO ATT_RESTRICTHOLIDAY (HOLIDAYDATE, ATTHEADID, BRANCHID) VALUES "
        "('2024-01-01', NULL, NULL), ('2024-02-01', 3, NULL), ('2024-04-02', 3, NULL), "
        "('2024-04-03', NULL, 9), ('2024-04-04', 0, 0)");
    const std::pair<DateTime, bool> cases[] = {
        {DateTime::fromCivil(2024, 1, 1), true},  {DateTime::fromCivil(2024, 2, 1), true},
        {DateTime::fromCivil(2024, 4, 2), false}, {DateTime::fromCivil(2024, 4, 3), true},
        {DateTime::fromCivil(2024, 4, 4), false}, {DateTime::fromCivil(2024, 1, 2), false}};
    for (const auto& [date, expected] : cases)
        EXPECT_EQ(FnBlnIsRestrictedHoliday(session, 1, date), expected) << isoText(date);
}

TEST_F(Database, OptionLoaders) {
    company.run(
        "UPDATE MAS_OPTSET SET EMPIDCAP = NULL, REFNOCAP = 'Code', ENDMONTHYEAR = NULL, "
        "ROUNDTYPE = 3, CLASSSECURITYN = 1, DERIVABLETOTCAP = NULL, TDSMAR2FEB = 1");
    company.run(
        "UPDATE MAS_OPTSETFEATURE SET ATTNCALCTYPE = 2, LVSTARTMNYEAR = 24290, AUTOPFTYPE = "
        "NULL, CALCINMIDYN = NULL");
    company.run("UPDATE MAS_ATTHEAD SET OT2YN = 1");
    session.gOptSet.LEVMINDAYS = 99;  // what stood before goes
    LoadOptSet(session);
    EXPECT_EQ(session.gOptSet.EMPIDCAP, "Emp ID");
    EXPECT_EQ(session.gOptSet.REFNOCAP, "Code");
    EXPECT_EQ(session.gOptSet.DERIVABLETOTCAP, "Derivable Total");
    EXPECT_EQ(session.gOptSet.ENDMONTHYEAR, 22800);
    EXPECT_EQ(session.gOptSet.ROUNDTYPE, 3);
    EXPECT_EQ(session.gOptSet.LEVMINDAYS, 0);
    EXPECT_TRUE(session.gOptSet.TDSMAR2FEB);
    EXPECT_FALSE(session.gOptSet.CLASSSECURITYN);  // the user is ADMIN
    EXPECT_FALSE(session.gHasOt1Head);
    EXPECT_TRUE(session.gHasOt2Head);
    EXPECT_TRUE(session.gFeature.attnCalcType2);
    EXPECT_EQ(session.gFeature.AUTOPFTYPE, 1);
    EXPECT_EQ(session.gFeature.LVSTARTMNYEAR, 24290);
    EXPECT_TRUE(session.gFeature.ADVLEAVEYN);

    company.settings.SaveSetting("Settings", "User", "clerk");
    LoadOptSet(session);
    EXPECT_TRUE(session.gOptSet.CLASSSECURITYN);
    company.settings.SaveSetting("Settings", "User", "Admin");
    LoadOptSet(session);
    EXPECT_FALSE(session.gOptSet.CLASSSECURITYN);

    company.run("UPDATE MAS_COMPANY SET ITRYN = 2, PFYN = 1, ESIYN = NULL");
    LoadCompany(session);
    EXPECT_TRUE(session.gCompany.PFYN);
    EXPECT_FALSE(session.gCompany.ESIYN);
    EXPECT_FALSE(session.gCompany.ITRYN);  // true for 1 alone

    company.run("DELETE FROM MAS_OPTSET");
    LoadOptSet(session);
    EXPECT_EQ(session.gOptSet.REFNOCAP, "Ref. No.");
}

TEST_F(Database, Captions) {
    company.run(
        "UPDATE MAS_PULLDOWNVALUES SET PDLISTDESC = 'Lending' WHERE REFID = 5 AND PDID = 3");
    company.run(
        "UPDATE MAS_PULLDOWNVALUES SET PDLISTDESC = 'Job' WHERE REFID = 26 AND PDID IN (1, 2)");
    company.run("DELETE FROM MAS_PULLDOWNVALUES WHERE REFID = 26 AND PDID = 6");
    company.run(
        "INSERT INTO MAS_EXTCAPTION (MASTERID, CAPTION, TRANSFERED) VALUES (1, 'Role', 1), (2, "
        "'Trade', 0), (7, 'Cost Centre', 0), (19, 'Shift', 1)");
    LoadCaptions(session);
    EXPECT_EQ(session.gComponentCaption[2], "Lending");
    EXPECT_EQ(session.gClassCaption[0], "Role");
    EXPECT_EQ(session.gClassCaption[1], "Job");
    EXPECT_EQ(session.gClassCaption[5], "Branch");
    EXPECT_EQ(session.gExtCaption[1], "Cost Centre");
    EXPECT_EQ(session.gExtCaption[13], "Shift");
    EXPECT_TRUE(session.gExtCaptionUsed[0]);
    EXPECT_FALSE(session.gExtCaptionUsed[1]);
}

TEST_F(Database, HeadsAndTheirOptions) {
    company.run(
        "INSERT INTO MAS_ATTHEAD (ATTHEADID, ATTHEADNAME, ATTMENUNAME, ATTNTYPE, NODFORCALC, "
        "ATTNTIGHTYN, MINFULLDAY) VALUES (2, 'Night Shift Staff', NULL, 3, NULL, 0, 6.5)");
    LoadAttHead(session, 2);
    EXPECT_EQ(session.gAtt.MENUNAME, "Night Shif");
    EXPECT_EQ(session.gAtt.ATTCAP, "Attendance - Hourly");
    EXPECT_EQ(session.gAtt.NODFORCALC, 2);
    EXPECT_FALSE(session.gAtt.TIGHTYN);
    EXPECT_EQ(session.gAtt.MINFULLDAY, 6.5);
    EXPECT_EQ(session.gAtt.MAXHALFDAY, 0);  // NULL is 0; the default is for a head without a row
    LoadAttHead(session, 99);
    EXPECT_EQ(session.gAtt.ATTHEADNAME, "General");
    EXPECT_EQ(session.gAtt.MAXHALFDAY, 5.99);

    // A head's own options count only while the common row is not for all.
    AttOptionsRecord own;
    own.HOLPRIORITY = true;
    own.DEFVAL = 1;
    SaveAttOptions(session, 2, own);
    company.run("UPDATE ATT_OPTSETTINGS SET COCWYN = NULL WHERE ATTHEADID = 2");
    LoadAttOptions(session, 2);
    EXPECT_TRUE(session.gOpt.HOLPRIORITY);
    EXPECT_FALSE(session.gOpt.COCWYN);
    EXPECT_EQ(session.gOpt.DEFVAL, 1);
    company.run("UPDATE ATT_OPTSETTINGS SET COMMONYN = 1, ROTWHYN = 1 WHERE ATTHEADID = 0");
    LoadAttOptions(session, 2);
    EXPECT_FALSE(session.gOpt.HOLPRIORITY);
    EXPECT_TRUE(session.gOpt.ROTWHYN);
    EXPECT_TRUE(FnBlnCommonExcessLeave(session, 0));
    EXPECT_FALSE(FnBlnCommonExcessLeave(session, 1));
}

TEST_F(Database, LeaveSettingsByMonth) {
    company.addMonths(24289, 24300);
    LeaveSettingsRecord s;
    s.COTYPE = 1;
    s.LOWERLIMITYN = true;
    s.COLOWERLIMIT = 2.5;
    s.REMARKS = "O'Neil's rule";
    SaveLeaveSettings(session, 5, 1, 24289, s);
    s.COLOWERLIMIT = 7;
    SaveLeaveSettings(session, 5, 1, 24295, s);
    s.COTYPE = 0;
    SaveLeaveSettings(session, 5, 1, 24298, s);
    SaveLeaveSettings(session, 5, 1, 24298, s);  // the same month is one row
    EXPECT_EQ(company.value("SELECT COUNT(*) FROM LEV_SETTINGS"), "3");
    const struct {
        int32_t month;
        double lower;
        int32_t version;
    } cases[] = {{24288, 0, 0},     {24289, 2.5, 24289}, {24294, 2.5, 24289},
                 {24295, 7, 24295}, {24299, 0, 24298},   {0, 0, 24298}};
    for (const auto& c : cases) {
        LoadLeaveSettings(session, 5, 1, c.month);
        EXPECT_EQ(session.gLev.COLOWERLIMIT, c.lower) << c.month;
        EXPECT_EQ(session.gLev.MONTHYEAR, c.version) << c.month;
        EXPECT_EQ(session.gLev.PRIORITY, 1);
    }
    EXPECT_FALSE(session.gLev.LOWERLIMITYN);  // no carry-over kind, no limits
    EXPECT_EQ(session.gLev.REMARKS, "O'Neil's rule");
}

TEST_F(Database, RoundingTypesOffered) {
    const std::pair<int, size_t> counts[] = {{1, 4}, {2, 7}, {3, 10}};
    for (const auto& [selection, count] : counts)
        EXPECT_EQ(LoadHeadList(session, selection).size(), count);
    EXPECT_EQ(LoadHeadList(session, 3)[8].RNDTYPE, "Higher Quarter Day");
}

TEST_F(Database, EmployeeCard) {
    company.run("INSERT INTO MAS_BRANCH (BRANCHID, BRANCHNAME) VALUES (1, 'Pune')");
    company.run("INSERT INTO MAS_SALSTRUCT (STRUCTID, STRUCTDESC) VALUES (1, 'Staff')");
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID, DOJ) VALUES (7, '2014-01-05')");
    company.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, ATTHEADID, BRANCHID, STRUCTID, "
        "DESIGNATION) VALUES (7, 1, 1, 1, 1, 'Fitter')");
    const EmployeeDisplay card = LoadEmployeeDisplay(session, 7, 1);
    EXPECT_EQ(card.DESIGNATION + card.GRADE + card.BRANCHNAME + card.ATTHEADNAME + card.STRUCTDESC,
              "FitterPuneGeneralStaff");
    EXPECT_EQ(LoadEmployeeDates(session, 7).DOJ, "05/Jan/2014");
    EXPECT_EQ(LoadEmployeeDates(session, 7).DOL, "");
    EXPECT_EQ(LoadEmployeeDates(session, 8).DOJ, "");
}

TEST_F(Database, FilterTakesInNewEmployees) {
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID, EMPNAME) VALUES (1, 'Asha'), (2, 'Ravi')");
    CreateFilterObjects(session);
    company.run("UPDATE " + session.gFilterTable + " SET FILTERYN1 = 0 WHERE EMPID = 1");
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID, EMPNAME) VALUES (3, 'Mary')");
    // Who is not in the table yet counts as in the filter.
    EXPECT_EQ(company.rows("SELECT EMPNAME FROM " + session.gEmployeeView +
                           " WHERE FILTERYN1=1 ORDER BY EMPID"),
              "Ravi Mary");
    CreateFilterObjects(session);
    EXPECT_EQ(company.rows("SELECT EMPID, FILTERYN1, REPTYN1 FROM " + session.gFilterTable +
                           " ORDER BY EMPID"),
              "1,1,1 2,1,1 3,1,1");
}

TEST_F(Database, DetailViewTakesTheLatestClassification) {
    company.addMonths(24289, 24291);
    SetHostNames(session);
    company.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, EFFFROMDATE, EFFTODATE, DESIGNATION) "
        "VALUES (7, 1, '2020-01-01', '2024-02-14', 'Fitter'), (7, 2, '2024-02-15', NULL, "
        "'Foreman'), (8, 1, '2020-01-01', NULL, 'Clerk')");
    company.run(
        "INSERT INTO MAS_EMPLOYEEEXTDET (EMPEXTID, EMPID, EFFFROMDATE, EXTCLASS01, EXTCLASS06) "
        "VALUES (1, 7, '2020-01-01', 'Old role', 'A'), (2, 7, '2024-02-01', 'New role', 'B'), "
        "(3, 7, '2024-03-10', 'Last role', 'C')");
    auto shown = [&](const std::string& columns) {
        return company.rows("SELECT " + columns + " FROM " + session.gEmployeeDetView +
                            " ORDER BY EMPID, EMPDETID");
    };
    CreateEmployeeDetailView(session, 7, "");
    EXPECT_EQ(shown("EMPDETID, DESIGNATION, EXTCLASS06"), "1,Fitter,B 2,Foreman,C");
    session.gExtCaptionUsed[0] = true;
    CreateEmployeeDetailView(session, 0, "24289");
    EXPECT_EQ(shown("EMPID, EMPDETID, MONTHYEAR, DESIGNATION"),
              "7,1,24289,Old role 7,2,24289,Old role 8,1,24289,");
}

TEST_F(Database, RightsOfUsers) {
    company.run("INSERT INTO SEC_USERLIST (USERID, USERNAME, GROUPID) VALUES (2, 'Clerk', 5)");
    company.run(
        "INSERT INTO SEC_BUTDET (BUTID, FORMID, BUTNAME) VALUES (1, 1514, '*Delete*'), (2, "
        "1514, '*Save*'), (3, 1500, '*Save*')");
    company.run(
        "INSERT INTO SEC_BUTPER (BUTID, GROUPID, BUTALLOWYN) VALUES (1, 5, 0), (2, 5, 1), (3, "
        "5, 0)");
    auto tags = [&](const std::string& user, bool multiLogin) {
        company.settings.SaveSetting("Settings", "User", user);
        session.gMultiLogin = multiLogin;
        std::vector<CommandRight> commands{{"&Delete", ""}, {"&Save", "NA"}, {"C&lose", "kept"}};
        ApplyScreenRights(session, 1514, commands);
        return commands[0].tag + "|" + commands[1].tag + "|" + commands[2].tag;
    };
    EXPECT_EQ(tags("clerk", true), "NA||kept");
    EXPECT_EQ(tags("clerk", false), "|NA|kept");
    EXPECT_EQ(tags("aDmin", true), "|NA|kept");
    EXPECT_EQ(tags("nobody", true), "NA|NA|kept");
    EXPECT_TRUE(FnBlnCommandDenied(session, "NA"));
    ASSERT_EQ(company.boxes.shown.size(), 1u);
    EXPECT_EQ(company.boxes.shown[0].text, "Permission denied.");
    EXPECT_FALSE(FnBlnCommandDenied(session, ""));
    session.gMultiLogin = false;
    EXPECT_FALSE(FnBlnCommandDenied(session, "NA"));
}

TEST_F(Database, ClassSecurityLimitsToTheUsersBranches) {
    SetHostNames(session);
    FillClassSecurity(session, 1, 24290);
    EXPECT_EQ(FnStrClassSecurityFilter(session), "");
    company.run("INSERT INTO MAS_EMPLOYEE (EMPID) VALUES (1), (2)");
    company.run(
        "INSERT INTO MAS_EMPLOYEEDET (EMPID, EMPDETID, BRANCHID) VALUES (1, 1, 8), (2, 1, 9)");
    company.run(
        "INSERT INTO SEC_LOGHISTORY (OWBUSERID, [LOGIN], HOSTNAME) VALUES (2, '2020-01-01', "
        "HOST_NAME())");
    session.gOptSet.CLASSSECURITYN = true;
    auto visible = [&] {
        FillClassSecurity(session, 1, 24290);
        const std::string employees =
            company.rows("SELECT EMPID FROM MAS_EMPLOYEE ME WHERE 1 = 1" +
                         FnStrClassSecurityFilter(session) + " ORDER BY EMPID");
        EXPECT_EQ(company.rows("SELECT EMPID FROM MAS_EMPLOYEEDET MD WHERE 1 = 1" +
                               FnStrClassSecurityVersionFilter(session, "EMPID", "EMPDETID") +
                               " ORDER BY EMPID"),
                  employees);
        return employees;
    };
    EXPECT_EQ(visible(), "1 2");
    company.run("INSERT INTO SEC_USERCLASS (USERID, BRANCHID) VALUES (2, 9)");
    EXPECT_EQ(visible(), "2");
    session.gExtendedYN = true;
    session.gWinUserId = "front desk's";
    SetHostNames(session);
    EXPECT_EQ(visible(), "2");
}

TEST_F(Database, AuditTrail) {
    EXPECT_FALSE(FnBlnAuditTrailOn(session));
    company.run("UPDATE MAS_OPTSETFEATURE SET AUDITTRAILYN = 1");
    EXPECT_FALSE(FnBlnAuditTrailOn(session));  // asked once
    company.settings.SaveSetting("Settings", "User", "O'Neil");
    session.windowsUser = "front desk";
    UpdateAuditTrail(session, kAuditModule, 7, "Leave \"Updated\"",
                     ":->Reason Changed from [a'b] to |c|");
    EXPECT_EQ(company.rows("SELECT USERNAME, MODULEID, EMPID, ACTION, DETAIL, EXTRA, WINUSER FROM "
                           "SEC_AUDITTRAIL"),
              "ONeil,3,7,Leave Updated,:->Reason Changed from ab to c,,frontdesk");
    company.run("DROP PROCEDURE UpdateAuditTrail");
    UpdateAuditTrail(session, kAuditModule, 7, "x", "y");  // nobody is troubled
    EXPECT_TRUE(company.boxes.shown.empty());
    company.run("DROP TABLE MAS_OPTSETFEATURE");
    session.gAuditTrailOn = -1;
    EXPECT_FALSE(FnBlnAuditTrailOn(session));
    EXPECT_EQ(session.gAuditTrailOn, -1) << "it is asked again";
}

// What decides whether something may be done throws when it cannot be asked.
TEST_F(Database, GuardsRefuseWhatTheyCannotAsk) {
    company.addMonths(24289, 24291);
    session.gMultiLogin = true;
    company.settings.SaveSetting("Settings", "User", "clerk");
    for (const char* table : {"MAS_MONTHYEAR", "MAS_EMPLOYEE", "SEC_BUTDET", "MAS_BRANCH",
                              "ATT_RESTRICTHOLIDAY", "ATT_OPTSETTINGS"})
        company.run(std::string("DROP TABLE ") + table);
    session.gFeature.CALCINMIDYN = true;
    DateTime from, to;
    std::vector<CommandRight> commands{{"&Save", ""}};
    const std::pair<const char*, std::function<void()>> guards[] = {
        {"rows", [&] { FnBlnExistsOrThrow(session, "SELECT * FROM NOWHERE"); }},
        {"month lock", [&] { FnBlnMonthLocked(session, 24290); }},
        {"range lock", [&] { FnBlnMonthRangeLocked(session, 24290, 24290, false, 0); }},
        {"duplicates",
         [&] { FnBlnDuplicate(session, "MAS_BRANCH", "BRANCHNAME", "BRANCHID", "x", 0); }},
        {"next number", [&] { clsCtrlDep(session).FnLngGetNextNumber("MAS_BRANCH", "BRANCHID"); }},
        {"restricted days", [&] { FnBlnIsRestrictedHoliday(session, 1, DateTime{}); }},
        {"month bounds", [&] { GetMonthPeriod(session, 24290, from, to); }},
        {"no month", [&] { GetMonthPeriod(session, 0, from, to); }},
        {"options", [&] { LoadAttOptions(session, 2); }},
        {"rights", [&] { ApplyScreenRights(session, 1514, commands); }}};
    for (const auto& [what, ask] : guards) EXPECT_THROW(ask(), DbError) << what;
    EXPECT_TRUE(company.boxes.shown.empty());
    EXPECT_EQ(FnDteMonthStart(session, 24290), DateTime{}) << "for screens it is shown";
    EXPECT_EQ(company.boxes.shown.size(), 1u);
}

TEST_F(Database, ASaveIsDoneWholeOrRefusedWithItsReason) {
    company.run("INSERT INTO MAS_BRANCH (BRANCHID, BRANCHNAME) VALUES (1, 'Pune'), (2, NULL)");
    const auto shown = [&](int id) {
        return ShownRow(session, "MAS_BRANCH", "BRANCHNAME", "BRANCHID = " + std::to_string(id));
    };
    const ShownRow pune = shown(1), empty = shown(2), none = shown(3);
    EXPECT_TRUE(pune.found() && empty.found() && !none.found());
    const auto refused = [&](const ShownRow& row, const std::string& other) -> std::string {
        company.run(other);
        SaveBatch batch;
        batch.add(RowText().set("BRANCHNAME", "It's").update("MAS_BRANCH", "BRANCHID = 2"));
        batch.refuseUnless("1 = 1", "never").requireShown(row, "The branch");
        try {
            batch.run(session);
        } catch (const SaveRefused& reason) {
            EXPECT_EQ(shown(2).value("branchname"), empty.value("BRANCHNAME")) << "undone";
            return reason.what();
        }
        company.run("UPDATE MAS_BRANCH SET BRANCHNAME = NULL WHERE BRANCHID = 2");
        return "";
    };
    const std::string told = "The branch has been changed by another user meanwhile.";
    EXPECT_EQ(refused(pune, ""), "");
    EXPECT_EQ(refused(none, ""), "");
    EXPECT_EQ(refused(pune, "UPDATE MAS_BRANCH SET BRANCHNAME = 'Goa' WHERE BRANCHID = 1"), told);
    EXPECT_EQ(refused(none, "INSERT INTO MAS_BRANCH (BRANCHID) VALUES (3)"), told);
    EXPECT_EQ(refused(shown(3), "DELETE FROM MAS_BRANCH WHERE BRANCHID = 3"), told);
    company.run("UPDATE MAS_BRANCH SET BRANCHNAME = 'PUNE' WHERE BRANCHID = 1");
    EXPECT_FALSE(pune.standsNow(session)) << "to the letter";

    SaveBatch batch;
    for (int i = 0; i < 2; ++i)
        batch.add(RowText()
                      .setSql("BRANCHID", batch.newKey("MAS_BRANCH", "BRANCHID"))
                      .set("BRANCHNAME", Value(i))
                      .insertInto("MAS_BRANCH"));
    batch.run(session);
    EXPECT_EQ(company.rows("SELECT BRANCHID, BRANCHNAME FROM MAS_BRANCH WHERE BRANCHID > 2"),
              "3,0 4,1");
}

TEST(FileSettings, ProcessesShareOneFile) {
    const test::TempDir folder;
    const std::string path = folder.file("deep/er/settings.db");
    {
        FileSettingsStore store(path);
        EXPECT_EQ(store.GetSetting("Settings", "User", "ADMIN"), "ADMIN");
        store.SaveSetting("Settings", "User", "O'Neil ½");
        store.SaveSetting("SETTINGS", "user", "clerk");
        store.SaveSetting("ExeTalk", "Empty", "");
    }
    constexpr int kWriters = 4, kWrites = 25;
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w)
        writers.emplace_back([&, w] {
            FileSettingsStore store(path);
            for (int n = 0; n < kWrites; ++n) {
                store.SaveSetting("ExeTalk", "Shared", std::to_string(w));
                store.SaveSetting("ExeTalk", "Own" + std::to_string(w), std::to_string(n));
            }
        });
    for (std::thread& writer : writers) writer.join();
    const FileSettingsStore store(path);
    EXPECT_EQ(store.GetSetting("settings", "USER"), "clerk");
    EXPECT_EQ(store.GetSetting("ExeTalk", "Empty", "none"), "");
    for (int w = 0; w < kWriters; ++w)
        EXPECT_EQ(store.GetSetting("ExeTalk", "own" + std::to_string(w)),
                  std::to_string(kWrites - 1));
}

}  // namespace
}  // namespace owb
