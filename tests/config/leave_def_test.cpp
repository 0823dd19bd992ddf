#include <gtest/gtest.h>

#include "config/screens/modLeaveDef.h"
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

struct Leaves : Payroll {
    Leaves() : Payroll(kJune, kJune + 1) {
        head({10, 2});
        for (int id : {1, 2}) {
            employee(id, "2020-01-01", 10);
            salary(id, 1, kJune, kJune + 1);
        }
        leaveKind(5, "CL", false);
        leaveKind(6, "SL", false);
        leaveKind(7, "OD", false, false);
        reconcile();
        run("UPDATE LEV_MONTHDET SET EDITMODEYN = 0");
        run("UPDATE MAS_OPTSETFEATURE SET AUDITTRAILYN = 1");
    }
    std::string definition(int id) {
        return rows(
            "SELECT LEVNAME, LEVSHORT, LEAVEYN, AFFECTSALARYYN, ALLOTMENTYN FROM "
            "ATT_DEFINITION WHERE LEVID = " +
            std::to_string(id));
    }
    std::string settingsOf(int id) {
        return rows("SELECT ATTHEADID, PRIORITY FROM LEV_SETTINGS WHERE LEVID = " +
                    std::to_string(id) + " ORDER BY ATTHEADID");
    }
    std::string marked() {
        return rows(
            "SELECT EMPID, MONTHYEAR FROM LEV_MONTHDET WHERE EDITMODEYN = 1 ORDER BY EMPID, "
            "MONTHYEAR");
    }
    std::string audit() { return rows("SELECT ACTION, DETAIL, EXTRA FROM SEC_AUDITTRAIL"); }
};

// Of the list of leaves.
const std::string kChooseCl = "cell fpgMstDetail 4 1\n";

TEST(LeaveDef, ChecksInOrder) {
    struct Case {
        std::string script, boxes;
    };
    for (const Case& c :
         {Case{"click cmdSave\n", "Specify Leave name.\n"},
          {"click optNonLeave\nclick cmdSave\n", "Specify Non-Leave name.\n"},
          {"set txtLeaveName CL\nclick cmdSave\n", "Specify Leave abbreviation.\n"},
          {"set txtLeaveName OD\nset txtAttShort cl\nclick cmdSave\n",
           "Leave/Non Leave Type is already been created.\n"},
          {"set txtLeaveName Casual\nset txtAttShort od\nclick cmdSave\n",
           "Given abbreviation already set for a Leave/Non Leave Type.\n"},
          {"click cmdDelete\n", "Select Leave to delete.\n"},
          {kChooseCl + "click optNonLeave\nclick cmdDelete\n", "Select Non-Leave to delete.\n"},
          {"cell fpgMstDetail 1 1\nclick cmdDelete\n",
           "Selected Leave is not user created. Hence, deletion is not allowed\n"},
          {"click optNonLeave\ncell fpgMstDetail 1 1\nclick cmdDelete\n",
           "Selected Non-Leave is not user created. Hence, deletion is not allowed\n"},
          {kChooseCl + "click cmdDelete\n",
           "Do you want to delete selected Leave?\\n\\nCL, CL|No\n"},
          {"click cmdMasterSetting\n", "Leave Settings is not available in this version.\n"}}) {
        Leaves l;
        EXPECT_EQ(drive<modLeaveDef>(l, c.script).boxes, c.boxes) << c.script;
        EXPECT_EQ(l.value("SELECT COUNT(*) FROM ATT_DEFINITION"), "7") << c.script;
        EXPECT_EQ(l.settingsOf(5), "") << c.script;
    }
}

TEST(LeaveDef, ANewTypeTakesTheNextNumberAndSettingsWhereItIsAllotted) {
    Leaves l;
    const Scripted run = drive<modLeaveDef>(
        l,
        "set txtLeaveName Women's Leave\nset txtAttShort WL\nset chkAffectSalary Yes\n"
        "set chkLeaveAllotment Yes\nclick cmdSave\nshow txtLeaveName\n"
        "click optNonLeave\nset txtLeaveName Tour\nset txtAttShort TR\nclick cmdSave\n"
        "dump fpgMstDetail\n");
    EXPECT_EQ(run.boxes + run.errors, "");
    EXPECT_EQ(l.boxes.shown.size(), 2U) << "the message of a save";
    EXPECT_EQ(l.definition(8), "Women's Leave,WL,1,1,1");
    EXPECT_EQ(l.definition(9), "Tour,TR,0,0,0");
    EXPECT_EQ(l.settingsOf(8), "0,8 1,8 10,8");
    EXPECT_EQ(l.settingsOf(9), "");
    EXPECT_EQ(l.settingsOf(3), "0,3 1,3 10,3") << "every type with allotment";
    EXPECT_EQ(l.marked(), "");
    EXPECT_EQ(l.settings.GetSetting("LeaveMgmt", "CallMenu"), "1");
    EXPECT_EQ(run.shown,
              "txtLeaveName:  | Name | Yes | Yes\n"
              "Name,Abbreviation,Affects Salary,Leave Allotment\n"
              "Reserved,RES,0,0\nOD,OD,0,1\nTour,TR,0,0\n");
    EXPECT_EQ(l.audit(),
              "New Leave Added,:Type = Leave:Name = Womens Leave:Short Name = WL:Affects Salary = "
              "Yes:Leave Allotment = Yes,Leave Type Added "
              "New Leave Added,:Type = Non-Leave:Name = Tour:Short Name = TR:Affects Salary = "
              "No:Leave Allotment = No,Non-Leave Type Added");
}

TEST(LeaveDef, AnEditTellsWhatChanged) {
    Leaves l;
    l.run(
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR) VALUES (5, 0, 0), (5, 10, 24294), "
        "(5, 10, 24295)");
    l.leave(1, 1, 5, "2024-06-03", "FS");
    EXPECT_EQ(
        drive<modLeaveDef>(l, kChooseCl + "set txtLeaveName Casual\nset chkLeaveAllotment No\n"
                                          "click cmdSave\n")
            .boxes,
        "")
        << "a rename is free after use";
    EXPECT_EQ(l.definition(5), "Casual,CL,1,0,0");
    EXPECT_EQ(l.settingsOf(5), "") << "of all months at once";
    EXPECT_EQ(l.audit(),
              "Leave Definition Updated,::Leave Name = Casual:Leave Name Changed from CL to "
              "Casual:Leave Allotment Changed from Yes to No,Leave Type Updated");
    EXPECT_EQ(drive<modLeaveDef>(l, "cell fpgMstDetail 1 1\nset chkLeaveAllotment Yes\n").errors,
              "error: line 2: chkLeaveAllotment takes no tick now\n")
        << "loss of pay is never allotted";
}

TEST(LeaveDef, AChangeOfSalaryMarksTheMonthsInWhichTheTypeWasTaken) {
    struct Case {
        std::string answer, locked, boxes, affects, marked;
    };
    const std::string question =
        "Salaries will be processed for Employee (s) who have availed selected leave.\\nDo you "
        "want to continue updating leave definition?|";
    for (const Case& c :
         {Case{"answer Yes\n", "24294", question + "Yes\n", "1", "2,24295"},
          {"", "24294", question + "No\n", "0", ""},
          {"answer Yes\n", "24295",
           "Some of the Salary processed months are 'Locked'.\\nUnlock such months to change "
           "'Affects Salary' setting.\n",
           "0", ""}}) {
        Leaves l;
        l.leave(2, 1, 5, "2024-07-01", "FS");
        l.leave(1, 1, 6, "2024-06-03", "FS");
        l.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = " + c.locked);
        EXPECT_EQ(
            drive<modLeaveDef>(l, c.answer + kChooseCl + "set chkAffectSalary Yes\nclick cmdSave\n")
                .boxes,
            c.boxes);
        EXPECT_EQ(l.value("SELECT AFFECTSALARYYN FROM ATT_DEFINITION WHERE LEVID = 5"), c.affects)
            << c.boxes;
        EXPECT_EQ(l.marked(), c.marked) << c.boxes;
    }
}

TEST(LeaveDef, UsedTypesStay) {
    struct Case {
        std::string used, boxes;
    };
    const std::string encashed =
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, LEVID) VALUES (1, 1, 5) INSERT INTO ATT_ENCASH "
        "(EMPID, ENCASHSLNO, ALLOTID) VALUES (1, 1, 1)";
    for (const Case& c :
         {Case{"INSERT INTO LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE) VALUES (1, 1, 5, "
               "'2024-06-03')",
               "'CL' has been availed by one or more Employee (s). \\nYou can not delete the Leave "
               "Definition.\n"},
          {encashed, "Encashment has been done for 'CL'. Deletion is not allowed.\n"},
          {"INSERT INTO ATT_OPBAL (EMPID, LEVID, OPBAL) VALUES (1, 5, 1)",
           " 'Opening Balance' given for one or more Employee (s). Hence, Leave can not be "
           "deleted.\n"}}) {
        Leaves l;
        l.run(c.used);
        EXPECT_EQ(drive<modLeaveDef>(l, kChooseCl + "answer Yes\nclick cmdDelete\n").boxes,
                  c.boxes);
        EXPECT_NE(l.definition(5), "") << c.used;
    }
    Leaves l;
    l.run(encashed);
    const Scripted run =
        drive<modLeaveDef>(l, kChooseCl + "set chkLeaveAllotment No\nshow chkLeaveAllotment\n");
    EXPECT_EQ(run.boxes,
              "Leave encashment has been done for this Leave. Now Allotment option cannot be "
              "unchecked.\n");
    EXPECT_EQ(run.shown.substr(0, 22), "chkLeaveAllotment: Yes");
}

TEST(LeaveDef, ADeletedTypeTakesItsRowsAlongOrNone) {
    for (const bool breaks : {false, true}) {
        Leaves l;
        l.run(
            "INSERT INTO ATT_OPBAL (EMPID, LEVID, OPBAL) VALUES (1, 5, 0), (1, 6, 1) "
            "INSERT INTO LEV_ALLOTMENT (ALLOTID, EMPID, LEVID) VALUES (1, 1, 5), (2, 1, 6) "
            "INSERT INTO ATT_ALLOTMENT (ALLOTID, LEVID) VALUES (1, 5), (2, 6) "
            "INSERT INTO ATT_MONTHLEV (ATTSLNO, LEVID) VALUES (1, 5), (2, 6) "
            "INSERT INTO LEV_ALLOTCONFIG (EFFFROM, LEVID, ATTHEADID, ALLOTTYPE) VALUES (0, 5, 10, "
            "1), (0, 6, 10, 1) "
            "INSERT INTO LEV_ALLOTFROM (EMPID, LEVID) VALUES (1, 5), (1, 6) "
            "INSERT INTO LEV_ADJUSTMENT (EMPID, LEVID) VALUES (1, 5), (1, 6)");
        if (breaks) l.run("DROP TABLE LEV_AVAILFROM");
        drive<modLeaveDef>(l, kChooseCl + "answer Yes\nclick cmdDelete\n");
        std::string left;
        for (const char* table :
             {"ATT_OPBAL", "LEV_ALLOTMENT", "ATT_ALLOTMENT", "ATT_MONTHLEV", "ATT_DEFINITION",
              "LEV_ALLOTCONFIG", "LEV_ALLOTFROM", "LEV_ADJUSTMENT"})
            left += l.rows(std::string("SELECT LEVID FROM ") + table +
                           " WHERE LEVID IN (5, 6) ORDER BY LEVID") +
                    ";";
        EXPECT_EQ(left, breaks ? "5 6;5 6;5 6;5 6;5 6;5 6;5 6;5 6;" : "6;6;6;6;6;6;6;6;");
        if (breaks) continue;
        EXPECT_EQ(l.settingsOf(6), "0,6 1,6 10,6") << "settings are brought in line";
        EXPECT_EQ(l.audit(),
                  "Leave Definition Deleted,:Type = Leave:Name = CL:Short Name = CL:Affects Salary "
                  "= No:Leave Allotment = Yes,Leave Type Deleted");
    }
}

TEST(LeaveDef, SavesAndDeletesWholeOrNotAtAll) {
    const std::string added = "set txtLeaveName Women's Leave\nset txtAttShort WL\n";
    for (const std::string& script :
         {kChooseCl + "set chkAffectSalary Yes\nanswer Yes\nclick cmdSave\n",
          added + "set chkLeaveAllotment Yes\nclick cmdSave\n",
          std::string("cell fpgMstDetail 5 1\nanswer Yes\nclick cmdDelete\n")}) {
        Leaves l;
        l.leave(1, 1, 5, "2024-06-03", "FS");
        test::Rehearsal rehearsal(
            l, [&] { test::act<modLeaveDef>(l, script); }, test::kPlaces);
        rehearsal.failsAnywhere();
        rehearsal.othersWorkAnywhere([](Session& other) {
            other.gConn.Execute(
                "UPDATE ATT_DEFINITION SET LEVNAME = 'Changed' WHERE LEVID IN (5, 6) INSERT INTO "
                "LEV_DETAILS (EMPID, EMPDETID, LEVID, LEAVEDATE, FIRSTHALFYN, SECONDHALFYN) VALUES "
                "(2, 1, 6, '2024-07-01', 1, 1)");
        });
    }
}

TEST(LeaveDef, WhatAGuardCannotAskIsRefused) {
    Leaves l;
    l.leave(1, 1, 5, "2024-06-03", "FS");
    l.run("DROP TABLE ATT_ENCASH");
    const Scripted run = drive<modLeaveDef>(
        l,
        "cell fpgMstDetail 5 1\nanswer Yes\nclick cmdDelete\nset chkLeaveAllotment No\n"
        "show chkLeaveAllotment\n");
    EXPECT_EQ(run.boxes, "Invalid object name 'ATT_ENCASH'.\nInvalid object name 'ATT_ENCASH'.\n");
    EXPECT_EQ(run.shown.substr(0, 22), "chkLeaveAllotment: Yes");
    EXPECT_NE(l.definition(6), "");
}

TEST(LeaveDef, RepairsRowsOfOlderVersionsOnOpening) {
    Leaves l;
    l.run(
        "UPDATE ATT_DEFINITION SET ALLOTMENTYN = NULL UPDATE ATT_DEFINITION SET AFFECTSALARYYN = 1 "
        "WHERE LEVID = 6 "
        "INSERT INTO LEV_SETTINGS (LEVID, ATTHEADID, MONTHYEAR, ALLOTTYPE, ALLOTON, LAPSENEGATIVE) "
        "VALUES (5, 10, 24294, 2, 1, NULL), (5, 10, 24295, 2, 2, NULL) "
        "INSERT INTO LEV_ALLOTCONFIG (EFFFROM, LEVID, ATTHEADID, ALLOTTYPE, ALLOTON) VALUES (0, 5, "
        "10, 2, 0), (0, 5, 10, 1, 0) "
        "INSERT INTO LEV_ALLOTMENT (ALLOTID, ALLOTLEV, EDITMODEYN) VALUES (1, 2.5, NULL), (2, 1, "
        "0) "
        "INSERT INTO LEV_ADJUSTMENT (EMPID, LEVID, ATTHEADID) VALUES (1, 5, 10), (2, 5, 99), (3, "
        "5, NULL)");
    drive<modLeaveDef>(l, "");
    EXPECT_EQ(l.rows("SELECT LEVID, ALLOTMENTYN FROM ATT_DEFINITION ORDER BY LEVID"),
              "1,0 2,1 3,1 4, 5,1 6,0 7,");
    EXPECT_EQ(l.rows("SELECT ALLOTTYPE, ALLOTON FROM LEV_ALLOTCONFIG ORDER BY ALLOTTYPE"),
              "1,0 2,2");
    EXPECT_EQ(l.rows("SELECT ALLOTID, ACTALLOTLEV, EDITMODEYN FROM LEV_ALLOTMENT ORDER BY ALLOTID"),
              "1,2.50,1 2,1.00,0");
    EXPECT_EQ(l.rows("SELECT DISTINCT ALLOTFOR, ALLOTRNDTYPE, LAPSENEGATIVE FROM LEV_SETTINGS"),
              "0,0,0");
    EXPECT_EQ(l.rows("SELECT EMPID FROM LEV_ADJUSTMENT ORDER BY EMPID"), "1 3");
}

TEST(LeaveDef, HoldsRightsAndTheReadOnlyUser) {
    Leaves l;
    l.session.gMultiLogin = true;
    l.session.gMenuId = 1503;  // the screen that opened this one
    l.settings.SaveSetting("Settings", "User", "clerk");
    l.run(
        "INSERT INTO SEC_USERLIST (USERID, USERNAME, GROUPID) VALUES (2, 'Clerk', 2) "
        "INSERT INTO SEC_BUTDET (BUTID, FORMID, BUTNAME) VALUES (1, 1500, '*SAVE*'), (2, 1500, "
        "'*DELETE*') INSERT INTO SEC_BUTPER (BUTID, GROUPID, BUTALLOWYN) VALUES (1, 2, 0), (2, 2, "
        "1)");
    EXPECT_EQ(drive<modLeaveDef>(l, "click cmdSave\nclick cmdDelete\n").boxes,
              "Select Leave to delete.\n");
    ASSERT_EQ(l.boxes.shown.size(), 1U);
    EXPECT_EQ(l.boxes.shown[0].text, "Permission denied.");

    l.session.gReadOnly = true;
    EXPECT_EQ(drive<modLeaveDef>(l, "click cmdSave\nclick cmdDelete\n").errors,
              "error: line 1: cmdSave takes no click now\n"
              "error: line 2: cmdDelete takes no click now\n");

    // Whoever enables the command again lets nobody write.
    test::TestFrontEnd frontEnd(l.boxes);
    frontEnd.atInput = [&](Screen& screen) {
        auto& definitions = static_cast<modLeaveDef&>(screen);
        definitions.txtLeaveName.value = definitions.txtAttShort.value = "X";
        definitions.cmdSave.enabled = true;
        EXPECT_FALSE(definitions.cmdSave.click());
    };
    modLeaveDef(l.session, frontEnd).showModal();
    EXPECT_EQ(l.value("SELECT COUNT(*) FROM ATT_DEFINITION"), "7");
}

}  // namespace
}  // namespace owb
