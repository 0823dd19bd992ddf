#include <gtest/gtest.h>

#include "config/screens/modAttHead.h"
#include "config/screens/modAttHeadSet.h"
#include "script/script_commands.h"
#include "support/payroll.h"
#include "support/rehearsal.h"
#include "support/screens.h"
#include "support/scripted.h"

namespace owb {
namespace {

using test::drive;
using test::Payroll;
using test::Scripted;

constexpr int32_t kJune = 2024 * 12 + 6;

// Head 10 with a paid employee, head 11 without any, besides the delivered head 1.
struct Heads : Payroll {
    Heads() : Payroll(kJune, kJune + 1) {
        head({10, 3});
        head({11, 2});
        setHead(10, "MINNOATT = 0, MAXNOATT = 1.99, ATTDESC = 'Works', NOATTOTYN = 0");
        employee(1, "2020-01-01", 10);
        salary(1, 1, kJune, kJune);
        leaveKind(5, "CL", false);
        reconcile();
        run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0 UPDATE ATT_DAYTODAY SET EDITMODEYN = 0");
        run("UPDATE MAS_OPTSETFEATURE SET AUDITTRAILYN = 1");
    }
    std::string row(int id) {
        return rows(
            "SELECT ATTHEADNAME, ATTMENUNAME, ATTNTIGHTYN, ATTNTYPE, ATTNDTODYN, "
            "ATTNHOURLYYN, ATTNALLOTTYPE, OT1YN, OT2YN, OTHOURLYYN, NODFORCALC, "
            "MORETHANNODYN, INACTIVEYN, ATTDESC FROM MAS_ATTHEAD WHERE ATTHEADID = " +
            std::to_string(id));
    }
    // Register, month and both salary marks of the employee.
    std::string marks() {
        return value("SELECT EDITMODEYN FROM ATT_DAYTODAY") +
               value("SELECT EDITMODEYN FROM LEV_MONTHDET") +
               rows("SELECT EDITMODEYN, ISNULL(TSALEDITMODEYN, 0) FROM SLC_SALARYCALC_E");
    }
    std::string audit() { return rows("SELECT ACTION, DETAIL FROM SEC_AUDITTRAIL"); }
};

const std::string kHead10 = "cell fpgAtt 2 1\n", kHead11 = "cell fpgAtt 3 1\n";
const std::string kQuestion =
    "By changing these values, salary will be recalculated.\\nDo you want to proceed?|";

TEST(AttHead, ChecksInOrder) {
    struct Case {
        std::string script, boxes;
    };
    const std::string named = "click cmdNew\nset txtShortName Site\nset txtAttName Site\n";
    for (const Case& c :
         {Case{"click cmdSave\n", "Specify Sl. No.\n"},
          {"click cmdNew\nclick cmdSave\n", "Specify Menu Caption\n"},
          {"click cmdNew\nset txtShortName head 11\nclick cmdSave\n",
           "Specify Attendance Head Name\n"},
          {"click cmdNew\nset txtShortName head 11\nset txtAttName head 10\nclick cmdSave\n",
           "Specified name already exists\n"},
          {"click cmdNew\nset txtShortName head 11\nset txtAttName Site\nclick cmdSave\n",
           "Specified Attendance Menu already exists\n"},
          {named + "click cmdSave\n", "Invalid option selected for 'Salary Calendar Days'.\n"},
          {named + "set optNODForCalc 4\nclick OptAttMonthly\nclick cmdSave\n",
           "Invalid Allotment type option selected.\n"},
          {named + "click optLooseIntegrate\nclick OptAttMonthly\nclick cmdSave\n",
           "Invalid Allotment type option selected.\n"},
          {kHead10 + "click cmdDelete\n", "Employee assigned, cannot delete\n"},
          {kHead11 + "click cmdDelete\n", "Do you want to delete ?\\n\\nHead 11|No\n"},
          {"click cmdCreateCopy\n",
           "New Attendance Creation is not available in this version.\n"}}) {
        Heads h;
        const Scripted run = drive<modAttHead>(h, c.script);
        EXPECT_EQ(run.boxes + run.errors, c.boxes) << c.script;
        EXPECT_EQ(h.rows("SELECT ATTHEADID FROM MAS_ATTHEAD"), "1 10 11") << c.script;
    }
}

TEST(AttHead, ANewHeadHasBandsAndLeaveSettings) {
    Heads h;
    h.run(
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, ALLOTTYPE, PRIORITY) VALUES (5, 0, "
        "0, 2, 7)");
    const Scripted run = drive<modAttHead>(
        h,
        "click cmdNew\nset txtAttName Night Shift\nset txtShortName Night\nclick optAttHourly\n"
        "set optNODForCalc 4\nset optAllotType 3\nset chkOT1 Yes\nclick optOTHourly\n"
        "set chkAllowMore Yes\nset txtDescription At the works\nclick cmdSave\n"
        "cell fpgAtt 4 1\nshow lblEmployees\nshow cmdSetting\n");
    EXPECT_EQ(run.boxes + run.errors, "");
    EXPECT_EQ(h.row(12), "Night Shift,Night,1,3,1,1,3,1,0,1,4,1,0,At the works");
    EXPECT_EQ(h.rows("SELECT MINNOATT, MAXNOATT, MINHALFDAY, MAXHALFDAY, CUTOFFHALFDAY, "
                     "MINFULLDAY, MAXFULLDAY, CUTOFFFULLDAY, ATTUPPERLIMIT, OTHOURMIN, NOATTOTYN, "
                     "HALFDAYOTYN, HALFDAYDEDYN, FULLDAYOTYN, FULLDAYDEDYN FROM MAS_ATTHEAD WHERE "
                     "ATTHEADID = 12"),
              "0.00,1.99,2.00,5.99,4.00,6.00,10.00,8.00,10.00,30,1,1,0,1,0");
    EXPECT_EQ(h.rows("SELECT LEVID, MONTHYEAR, ALLOTTYPE, PRIORITY, EDITEDYN FROM LEV_SETTINGS "
                     "WHERE ATTHEADID = 12 ORDER BY LEVID"),
              "2,24294,0,2,0 3,24294,0,3,0 5,24294,2,7,0");
    EXPECT_EQ(h.marks(), "000,0");
    EXPECT_EQ(h.settings.GetSetting("LeaveMgmt", "CallMenu"), "1");
    EXPECT_EQ(run.shown,
              "lblEmployees: Employee (s) : 0 | Employee (s) : 0 | Yes | Yes\n"
              "cmdSetting: Se&tting | Se&tting | Yes | Yes | tip=Hours of the bands of a day\n");
    EXPECT_EQ(h.audit(),
              "Attendance Configuration Added,New Attendance Head Added:->Attendance Name = Night "
              "Shift:->Short Name = Night:->Salary Calculation = Dependent:->Salary Calendar days "
              "(NWD) = Only working days:->Attendance Register Type = Hourly");
}

TEST(AttHead, WhatTheSalaryRestsOnAsksAndMarks) {
    struct Case {
        std::string change, boxes;
        bool locked = false;
        std::string marks = "000,0", audit;
    };
    const std::string updated =
        "Attendance Configuration Updated,Attendance Head Updated:->Attendance Name = Head 10:->";
    for (const Case& c :
         {Case{"set txtDescription Yard\n", "", false, "000,0",
               updated + "Remarks Changed from Works to Yard"},
          {"set chkInactive Yes\nset txtAttName Head Ten\n", "", true, "000,0",
           "Attendance Configuration Updated,Attendance Head Updated:->Attendance Name Changed "
           "from "
           "Head 10 to Head Ten:->Inactive Changed from No to Yes"},
          {"answer Yes\nclick optLooseIntegrate\n", kQuestion + "Yes\n", false, "111,1",
           updated + "Salary Calculation Changed from Dependent to Independent"},
          {"answer Yes\nset optNODForCalc 6\n", kQuestion + "Yes\n", false, "111,1",
           updated + "Salary Calendar days (NWD) Changed from Actual Days / Month to Only working "
                     "days + Holiday"},
          {"answer Yes\nset chkAllowMore Yes\n", kQuestion + "Yes\n", false, "111,1",
           updated + "Allow more than working days Changed from No to Yes"},
          {"set chkAllowMore Yes\n", kQuestion + "No\n"},
          {"set optNODForCalc 1\nset chkAllowMore Yes\n",
           "Months locked, unlock locked months to change Salary Calendar days (NWD) setting.\n",
           true}}) {
        Heads h;
        if (c.locked) h.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = 24294");
        const std::string before = h.row(10);
        EXPECT_EQ(drive<modAttHead>(h, kHead10 + c.change + "click cmdSave\n").boxes, c.boxes)
            << c.change;
        EXPECT_EQ(h.marks(), c.marks) << c.change;
        EXPECT_EQ(h.audit(), c.audit) << c.change;
        EXPECT_EQ(h.row(10) == before, c.audit.empty()) << c.change;
    }
    Heads h;
    EXPECT_EQ(drive<modAttHead>(h, kHead11 + "set optNODForCalc 1\nclick cmdSave\n").boxes, "")
        << "a head that nobody is paid by";
}

TEST(AttHead, OvertimeThatIsUsedStays) {
    struct Case {
        std::string rows, boxes;
    };
    const std::string structure =
        "INSERT INTO SLC_SALSTRUCTDET (STRUCTID, SALHEADROWID, CALCTYPE) VALUES (1, 100, 1) ";
    const std::string refused = "OT1 defined, cannot change\n";
    for (const Case& c :
         {Case{"UPDATE MAS_ATTHEAD SET OT1YN = 1 WHERE ATTHEADID = 10", ""},
          {structure + "UPDATE MAS_ATTHEAD SET OT1YN = 1 WHERE ATTHEADID = 10", refused},
          {structure + "UPDATE MAS_ATTHEAD SET OT1YN = 1", ""},
          {"UPDATE MAS_ATTHEAD SET OT1YN = 1 INSERT INTO SLC_COMPCALCDET (SLNO, EMPID, MONTHYEAR, "
           "STRUCTID, SALHEADROWID, UNIT) VALUES (1, 1, 24294, 1, 100, 2)",
           refused},
          {"UPDATE MAS_ATTHEAD SET OT1YN = 1 INSERT INTO SLC_COMPCALCDET (SLNO, EMPID, MONTHYEAR, "
           "STRUCTID, SALHEADROWID, UNIT) VALUES (1, 1, 24294, 1, 101, 2)",
           ""}}) {
        Heads h;
        h.run(c.rows);
        EXPECT_EQ(drive<modAttHead>(h, kHead10 + "set chkOT1 No\nclick cmdSave\n").boxes, c.boxes)
            << c.rows;
        EXPECT_EQ(h.value("SELECT OT1YN FROM MAS_ATTHEAD WHERE ATTHEADID = 10"),
                  c.boxes.empty() ? "0" : "1")
            << c.rows;
    }
}

TEST(AttHead, TheRegisterTypeStaysOnceLeaveWasAllotted) {
    Heads h;
    h.run("INSERT INTO ATT_ALLOTMENT (ALLOTID, EMPID) VALUES (1, 1)");
    EXPECT_EQ(drive<modAttHead>(h, kHead10 + "click optAttDaily\n" + kHead11 +
                                       "click optAttDaily\nclick cmdSetting\nclose\n")
                  .errors,
              "error: line 2: optAttDaily takes no click now\n");
}

TEST(AttHead, ADeletedHeadTakesItsRowsAlong) {
    Heads h;
    h.run(
        "INSERT INTO ATT_WEEKLY (ATTHEADID) VALUES (10), (11) "
        "INSERT INTO SLC_ATTHEADNOD (ATTHEADID, MONTHYEAR) VALUES (10, 24294), (11, 24294) "
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID) VALUES (5, 10), (5, 11) "
        "INSERT INTO LEV_ALLOTCONFIG (EFFFROM, LEVID, ATTHEADID, ALLOTTYPE) VALUES (0, 5, 10, 1), "
        "(0, 5, 11, 1) "
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, ATTHEADID) VALUES (1, 10), (2, 11)");
    for (int id : {10, 11}) {
        h.weekly(id, 1, "FS FS FS FS FS");
        h.holiday(id, "2024-06-03", id);
    }
    EXPECT_EQ(drive<modAttHead>(h, kHead11 + "answer Yes\nclick cmdDelete\n").boxes,
              "Do you want to delete ?\\n\\nHead 11|Yes\n");
    for (const char* table :
         {"ATT_WEEKLY", "LEV_WEEKLYHLD", "SLC_ATTHEADNOD", "MAS_ATTHEAD", "LEV_SETTINGS",
          "ATT_OPTSETTINGS", "ATT_HOLIDAY", "LEV_ALLOTCONFIG", "LEV_ALLOTMENT"})
        EXPECT_EQ(h.rows(std::string("SELECT ATTHEADID FROM ") + table + " WHERE ATTHEADID > 1"),
                  "10")
            << table;
    EXPECT_EQ(h.audit().rfind("Attendance Configuration Deleted,Attendance Head Deleted:->"
                              "Attendance Name = Head 11:->Short Name = Head 11",
                              0),
              0U);
    h.run("DELETE FROM MAS_EMPLOYEEDET DELETE FROM MAS_ATTHEAD WHERE ATTHEADID = 10");
    EXPECT_EQ(drive<modAttHead>(h, "cell fpgAtt 1 1\nclick cmdDelete\n").boxes,
              "First Attedance detail is required, can't delete\n");
}

// What a screen shows stays the measure: another's change in between is told and stands.
TEST(AttHead, AnothersChangeIsToldAndStays) {
    const std::string told = "The attendance head has been changed by another user meanwhile.\n";
    struct Case {
        std::string script, other;
    };
    for (const Case& c :
         {Case{kHead10 + "set txtDescription Yard\n", "UPDATE MAS_ATTHEAD SET NODFORCALC = 4"},
          {kHead10 + "set txtDescription Yard\n",
           "UPDATE MAS_ATTHEAD SET ATTHEADNAME = 'HEAD 10' "
           "WHERE ATTHEADID = 10"},
          {kHead11 + "answer Yes\n", "UPDATE MAS_ATTHEAD SET OT1YN = 1"},
          {kHead11 + "answer Yes\n", "DELETE FROM MAS_ATTHEAD WHERE ATTHEADID = 11"}}) {
        Heads h;
        const bool deletes = c.script.rfind(kHead11, 0) == 0;
        test::TestFrontEnd frontEnd(h.boxes);
        std::string after;
        frontEnd.atInput = [&](Screen& screen) {
            std::ostringstream out;
            std::istringstream lines(c.script);
            for (std::string line; std::getline(lines, line);)
                if (line.rfind("answer", 0) != 0) runControlCommand(screen, line, out);
            h.run(c.other);
            after = h.row(10) + h.row(11);
            runControlCommand(screen, deletes ? "click cmdDelete" : "click cmdSave", out);
        };
        modAttHead(h.session, frontEnd).showModal();
        ASSERT_EQ(h.boxes.shown.size(), 1U) << c.other;
        EXPECT_EQ(h.boxes.shown[0].text + "\n", told);
        EXPECT_EQ(h.row(10) + h.row(11), after) << c.other;
        EXPECT_EQ(h.audit(), "");
    }
}

TEST(AttHead, SavesAndDeletesWholeOrNotAtAll) {
    const std::string save = "set optNODForCalc 4\nanswer Yes\nclick cmdSave\n";
    for (const std::string& script :
         {kHead10 + save, kHead11 + "answer Yes\nclick cmdDelete\n",
          "click cmdNew\nset txtAttName Night\nset txtShortName Night\n" + save}) {
        Heads h;
        test::Rehearsal rehearsal(
            h, [&] { test::act<modAttHead>(h, script); }, test::kPlaces);
        rehearsal.failsAnywhere();
        rehearsal.othersWorkAnywhere([](Session& other) {
            other.gConn.Execute("UPDATE MAS_ATTHEAD SET ATTDESC = 'Changed' WHERE ATTHEADID < 20");
        });
    }
    Heads h;
    const std::string create = "click cmdNew\nset txtAttName Night\nset txtShortName Night\n";
    test::Rehearsal rehearsal(
        h, [&] { test::act<modAttHead>(h, create + save); }, test::kPlaces);
    rehearsal.othersWorkAnywhere([](Session& other) {
        other.gConn.Execute(
            "INSERT INTO MAS_ATTHEAD (ATTHEADID, ATTHEADNAME, ATTMENUNAME, NODFORCALC) SELECT "
            "MAX(ATTHEADID) + 1, 'Day', 'Day', 2 FROM MAS_ATTHEAD");
    });
}

// --- the bands of a day ---

Scripted driveBands(Heads& h, const std::string& script) {
    return drive<modAttHeadSet>(h, script, 10);
}

TEST(AttHeadSet, ChecksInOrder) {
    struct Case {
        std::string field, value, text;
    };
    // The stored bands: 0 to 1.99, 2 to 5.99 with 4, 6 to 24 with 8.
    for (const Case& c : {
             Case{"txtNoAttMin", "24.01",
                  "Attendance - no attendance minimum can't be greater than 24"},
             {"txtNoAttMax", "25", "Attendance - no attendance maximum can't be greater than 24"},
             {"txtHalfMin", "25", "Attendance - half day minimum can't be greater than 24"},
             {"txtHalfMax", "25", "Attendance - half day maximum can't be greater than 24"},
             {"txtHalfCutoff", "25", "Attendance - half day cutoff can't be greater than 24"},
             {"txtFullMin", "25", "Attendance - full day minimum can't be greater than 24"},
             {"txtFullMax", "24.01", "Attendance - full day maximum can't be greater than 24"},
             {"txtFullCutOff", "25", "Attendance - full day cutoff can't be greater than 24"},
             {"txtAttUpperLimit", "24.5", "Attendance - upper limit can't be greater than 24"},
             {"txtNoAttMin", "2", "No attendance Maximum can't be lesser than Minimum"},
             {"txtHalfMin", "1.99",
              "Half day Minimum can't be lesser than or equal to no attendance maximum."},
             {"txtHalfMax", "1.5", "Half day Maximum can't be lesser than Minimum"},
             {"txtHalfCutoff", "6", "Half day cutoff has to be between Minimum and Maximum"},
             {"txtHalfCutoff", "1.99", "Half day cutoff has to be between Minimum and Maximum"},
             {"txtFullMin", "5.99",
              "Full day Minimum can't be lesser than or equal to half day maximum."},
             {"txtFullMax", "5", "Full day Maximum can't be lesser than Minimum"},
             {"txtFullCutOff", "5.5", "Full day cutoff has to be between Minimum and Maximum"},
             {"txtOTMinLimit", "1441", "Over Time minimum limit can't be greater than 1440"},
             {"txtFullCutOff", "6", ""},
             {"txtFullCutOff", "24", ""},
             {"txtNoAttMax", "0", ""},
             {"txtOTMinLimit", "1440", ""},
         }) {
        Heads h;
        h.run("DELETE FROM SLC_SALARYCALC_E");
        const Scripted run = driveBands(h, "set " + c.field + " " + c.value + "\nclick cmdSave\n");
        const bool onLeaving = c.text.find("greater than") != std::string::npos;
        EXPECT_EQ(run.boxes, c.text.empty() ? "" : (onLeaving ? c.text + "\n" : "") + c.text + "\n")
            << c.field;
        EXPECT_EQ(h.value("SELECT COUNT(*) FROM SEC_AUDITTRAIL"), c.text.empty() ? "1" : "0")
            << c.field;
        EXPECT_EQ(h.marks(), c.text.empty() ? "10" : "00") << c.field;
    }
}

TEST(AttHeadSet, AChangeAsksMarksTheRegisterAndTellsWhatChanged) {
    const std::string script =
        "set txtNoAttMax 1.5\nset chkNoAttOT Yes\nset txtFullMax 12\nset chkFullDed Yes\n"
        "set txtAttUpperLimit 12.5\nset txtOTMinLimit 45\nclick cmdSave\nclick cmdSave\n";
    Heads h;
    EXPECT_EQ(driveBands(h, "click cmdSave\n" + script).boxes,
              kQuestion + "No\n" + kQuestion + "No\n");
    EXPECT_EQ(h.marks() + h.audit(), "000,0");
    EXPECT_EQ(driveBands(h, "answer Yes\n" + script).boxes, kQuestion + "Yes\n")
        << "the second save changes nothing";
    EXPECT_EQ(h.marks(), "100,0");
    EXPECT_EQ(h.rows("SELECT MAXNOATT, NOATTOTYN, MAXFULLDAY, FULLDAYDEDYN, ATTUPPERLIMIT, "
                     "OTHOURMIN, MINHALFDAY FROM MAS_ATTHEAD WHERE ATTHEADID = 10"),
              "1.50,1,12.00,1,12.50,45,2.00");
    EXPECT_EQ(h.audit(),
              "Attendance Configuration Updated,Day to Day Hourly Setting Updated::No Attendance "
              "Settings Changed:->Max. Value Changed from 1.99 to 1.5:->OverTime Applicability "
              "Changed from No to Yes:Full Day Attendance Settings Changed:->Max. Value Changed "
              "from 24 to 12:->OT Deduct Changed from No to Yes:->Attendance Upper Limit Changed "
              "from 24 hours(s) to 12.5 hours(s):->Over Time Min. Limit Changed from 0 minutes(s) "
              "to 45 minutes(s)");

    h.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = 24295");
    for (const bool employees : {true, false}) {
        h.session.gFeature.EMPLOCKYN = employees;
        EXPECT_EQ(driveBands(h, "answer Yes\nset txtFullMax 13\nclick cmdSave\n").boxes,
                  employees ? "One or more Employee (s) record/Month(s) locked, unlock to change "
                              "attendance setting.\n"
                            : "Months locked, unlock locked months to change attendance "
                              "setting.\n");
    }
    h.session.gReadOnly = true;
    EXPECT_EQ(driveBands(h, "click cmdSave\n").errors,
              "error: line 1: cmdSave takes no click now\n");
}

TEST(AttHeadSet, SavesWholeOrNotAtAll) {
    Heads h;
    const std::string script = "set txtFullMax 12\nanswer Yes\nclick cmdSave\n";
    test::Rehearsal rehearsal(
        h, [&] { test::act<modAttHeadSet>(h, script, 10); }, test::kPlaces);
    rehearsal.failsAnywhere();
    for (const char* change : {"FULLDAYOTYN = 0", "NODFORCALC = 4"})
        rehearsal.othersWorkAnywhere([&](Session& other) {
            other.gConn.Execute(std::string("UPDATE MAS_ATTHEAD SET ") + change);
        });
}

}  // namespace
}  // namespace owb
