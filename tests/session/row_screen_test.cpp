// A list screen of five fields as the base of screens makes it, and what it does without a line of
// its own: reading, comparing, saving whole, refusing, the audit's words, rights and export.
#include <gtest/gtest.h>

#include "session/modAttSetting.h"
#include "session/modRights.h"
#include "session/screens/RowScreen.h"
#include "session/screens/family_combos.h"
#include "session/screens/query_lists.h"
#include "support/payroll.h"
#include "support/rehearsal.h"
#include "support/screens.h"
#include "support/scripted.h"

namespace owb {
namespace {

using test::drive;
using test::Scripted;

class Contracts final : public RowScreen {
  public:
    Contracts(Session& session, FrontEnd& frontEnd)
        : RowScreen(session, frontEnd, {"Contracts", "Contracts", 1234, "fpgContracts"},
                    contract_) {
        contract_.text("NAME", txtName, "Name");
        contract_.number("RATE", txtRate, "Rate");
        contract_.date("SINCE", txtSince, "Since");
        contract_.check("ACTIVEYN", chkActive, "Active");
        contract_.option("KIND", optKind, "Kind");
        contract_.choice("HEADID", cmbHead, "Head");
        list.setColumns({{.caption = "ID", .hidden = true},
                         {.caption = "Name", .width = 20},
                         {.caption = "Rate", .width = 10, .type = CellType::Number},
                         {.caption = "Since", .width = 12, .type = CellType::Date},
                         {.caption = "Active", .width = 7, .type = CellType::Check}});
    }
    static constexpr Captions<2> kKinds = {"Daily", "Monthly"};
    TextBox txtName{*this, "txtName", "Name"};
    NumberBox txtRate{*this, "txtRate", "Rate"};
    DateBox txtSince{*this, "txtSince", "Since"};
    CheckBox chkActive{*this, "chkActive", "Active"};
    OptionArray<2> optKind{*this, "optKind", 1, kKinds};
    ScopeCombo cmbHead{*this, "cmbHead"};

  private:
    void load() override {
        cmbHead.load(ScopeCombo::Of::Heads);
        showAgain();
    }
    void loadList() override {
        fillGrid(session_, list, "SELECT ID, NAME, RATE, SINCE, ACTIVEYN FROM CONTRACTS");
    }
    std::optional<Refusal> check() override {
        if (txtName.value.empty()) return Refusal{"Enter Name", &txtName};
        return {};
    }
    bool mayBeSaved(SaveBatch& batch) override {
        row_.requireFree(batch, "NAME", "There is such a contract.");
        return true;
    }
    std::optional<Refusal> checkDeletion() override {
        if (row_.isNew()) return Refusal{"Select a contract."};
        return {};
    }
    bool mayBeDeleted(SaveBatch&) override { return askToDelete("Delete?"); }
    std::string rowWords() const override { return row_.before("NAME").toText(); }
    void joinMarks(SaveBatch& batch, Change, const std::string& key) override {
        batch.add(" UPDATE CONTRACTS SET MARK = 1 WHERE ID = " + key);
    }
    AuditLine auditLine(Change change) override {
        return {change == Change::Deleted ? "Gone" : "Saved", AuditText()};
    }

    EditedRow contract_{"CONTRACTS", "ID", "The contract"};
};

struct WithContracts : test::Payroll {
    WithContracts() : Payroll(24294, 24295) {
        run("CREATE TABLE CONTRACTS (ID int PRIMARY KEY, NAME varchar(40), RATE numeric(18,2), "
            "SINCE datetime, ACTIVEYN tinyint, KIND int, HEADID int, MARK int)");
        run("INSERT INTO CONTRACTS VALUES (4, 'Guards', 12.5, '2024-02-29', 1, 2, 0, NULL), "
            "(7, 'Canteen', NULL, NULL, NULL, NULL, NULL, NULL)");
        run("UPDATE MAS_OPTSETFEATURE SET AUDITTRAILYN = 1");
    }
    std::string contracts() { return rows("SELECT * FROM CONTRACTS ORDER BY ID"); }
    std::string audit() { return rows("SELECT ACTION, DETAIL FROM SEC_AUDITTRAIL"); }
};

const std::string kGuards = "4,Guards,12.50,2024-02-29,1,2,0,", kCanteen = "7,Canteen,,,,,,";

TEST(RowScreen, ShowsTakesComparesAndWrites) {
    struct Case {
        std::string script, boxes, contracts, audit;
    };
    for (const Case& c :
         {Case{"click cmdSave\n", "Enter Name\n", kGuards + " " + kCanteen, ""},
          {"click cmdDelete\n", "Select a contract.\n", kGuards + " " + kCanteen, ""},
          {"cell fpgContracts 1 1\nset txtRate 13\nset txtSince 1-mar-24\nset chkActive No\n"
           "click optKind(1)\nclick cmdSave\n",
           "", "4,Guards,13.00,2024-03-01,0,1,0,1 " + kCanteen,
           "Saved,:Rate Changed from 12.5 to 13:Since Changed from 29/02/2024 to "
           "01/03/2024:Active Changed from Yes to No:Kind Changed from Monthly to Daily"},
          {"cell fpgContracts 2 1\nclick cmdSave\n", "", kGuards + " 7,Canteen,0.00,,0,,,1",
           "Saved,"},
          {"click cmdNew\nset txtName O'Hara\nset cmbHead ALL\nclick cmdSave\n", "",
           kGuards + " " + kCanteen + " 8,O'Hara,0.00,,0,,0,1",
           "Saved,:Name = OHara:Rate = 0:Since = :Active = No:Kind = :Head = ALL"},
          {"set txtName guards\nclick cmdSave\n", "There is such a contract.\n",
           kGuards + " " + kCanteen, ""},
          {"cell fpgContracts 1 1\nset txtName Guards \nclick cmdSave\n", "",
           "4,Guards,12.50,2024-02-29,1,2,0,1 " + kCanteen, "Saved,"},
          {"cell fpgContracts 1 1\nanswer Yes\nset txtRate 99\nclick cmdDelete\n",
           "Delete?\\n\\nGuards|Yes\n", kCanteen,
           "Gone,:Name = Guards:Rate = 12.5:Since = 29/02/2024:Active = Yes:Kind = Monthly:Head = "
           "ALL"}}) {
        WithContracts w;
        const Scripted run = drive<Contracts>(w, c.script);
        EXPECT_EQ(run.boxes + run.errors, c.boxes) << c.script;
        EXPECT_EQ(w.contracts(), c.contracts) << c.script;
        EXPECT_EQ(w.audit(), c.audit) << c.script;
    }
}

TEST(RowScreen, ADateBoxTakesShortEntriesAndKeepsWhatIsNone) {
    struct Case {
        const char* typed;
        const char* shown;  // "<text> | <refusal>"
        const char* boxes;  // of a save
    };
    for (const Case& c :
         {Case{"05-Mar-2024", "05/03/2024", ""},
          {"05/mar/24", "05/03/2024", ""},
          {"", "", ""},
          {"32/3/24", "32/3/24 | \"32/3/24\" is no date.", "\"32/3/24\" is no date.\n"},
          {"150324", "150324 | \"150324\" is no date.", "\"150324\" is no date.\n"}}) {
        WithContracts w;
        const Scripted run =
            drive<Contracts>(w, std::string("cell fpgContracts 1 1\nset txtSince ") + c.typed +
                                    "\nshow txtSince\nclick cmdSave\n");
        const std::string state = run.shown;
        const std::string text = state.substr(state.find(": ") + 2);
        std::string shown = text.substr(0, text.find(" | "));
        if (const size_t at = state.find("refused="); at != std::string::npos)
            shown += " | " + state.substr(at + 8, state.find(" | changed") - at - 8);
        EXPECT_EQ(shown, c.shown) << c.typed;
        EXPECT_EQ(run.boxes + run.errors, c.boxes) << c.typed;
        const bool saved = *c.boxes == 0;
        EXPECT_EQ(w.contracts() == kGuards + " " + kCanteen, !saved) << c.typed;
    }
}

TEST(RowScreen, ShortDatesCountFromToday) {
    WithContracts w;
    const DateTime today{w.session.now().day, 0};
    const CivilDate c = today.civil();
    struct Case {
        const char* typed;
        DateTime date;
    };
    for (const Case& k : {Case{"+1", today.plusDays(1)},
                          {"-3", today.plusDays(-3)},
                          {"5", DateTime::fromCivil(c.year, c.month, 5)},
                          {"5/3", DateTime::fromCivil(c.year, 3, 5)}}) {
        test::TestFrontEnd frontEnd(w.boxes);
        Contracts screen(w.session, frontEnd);
        screen.txtSince.edit(k.typed);
        screen.txtSince.leave();
        EXPECT_EQ(screen.txtSince.value, dateText(k.date, "dd/mm/yyyy")) << k.typed;
    }
}

TEST(RowScreen, AsksBeforeWhatIsTypedIsDropped) {
    const std::string question =
        "What has been typed is not saved.\\nDo you want to close without saving?|";
    struct Case {
        std::string script, boxes;
        bool open;
    };
    for (const Case& c :
         {Case{"close\n", "", false},
          {"cell fpgContracts 1 1\nclose\n", "", false},
          {"set txtName New\nclose\n", question + "No\n", true},
          {"set txtName New\nanswer Yes\nclose\n", question + "Yes\n", false},
          {"set txtSince 32/3/24\nclose\n", question + "No\n", true},
          {"set txtName New\nclick cmdClose\n", question + "No\n", true},
          {"set txtName New\nkey txtName Esc\n", question + "No\n", true},
          {"cell fpgContracts 1 1\nset txtRate 13\nset txtRate 12.5\nkey fpgContracts Esc\n", "",
           false},
          {"cell fpgContracts 1 1\nset chkActive No\nkey txtName Ctrl+S\nclose\n", "", false}}) {
        WithContracts w;
        const Scripted run = drive<Contracts>(w, c.script + "title\n");
        EXPECT_EQ(run.boxes + run.errors, c.boxes) << c.script;
        EXPECT_EQ(run.shown.empty(), !c.open) << c.script;
    }
}

TEST(RowScreen, AnotherRowAndANewOneAskToo) {
    struct Case {
        const char *script, *name, *rate;  // what stands there afterwards
    };
    for (const Case& c : {Case{"cell fpgContracts 2 1\n", "Guards", "13"},
                          {"key fpgContracts Down\n", "Guards", "13"},
                          {"click cmdNew\n", "Guards", "13"},
                          {"answer Yes\ncell fpgContracts 2 1\n", "Canteen", "0"},
                          {"answer Yes\nclick cmdNew\n", "", "0"}}) {
        WithContracts w;
        const Scripted run =
            drive<Contracts>(w, std::string("cell fpgContracts 1 1\nset txtRate 13\n") + c.script +
                                    "show txtName\nshow txtRate\nshow fpgContracts\n");
        EXPECT_EQ(run.boxes.rfind("What has been typed is not saved.", 0), 0U) << c.script;
        const std::string &shown = run.shown, stays = "txtName: " + std::string(c.name) + " |";
        EXPECT_EQ(shown.find(stays), 0U) << c.script << shown;
        EXPECT_NE(shown.find("txtRate: " + std::string(c.rate) + " |"), std::string::npos) << shown;
        // The line that is marked is that of the row below.
        EXPECT_EQ(shown.find("current=1") != std::string::npos, c.rate != std::string("0"))
            << c.script << shown;
    }
}

TEST(RowScreen, TellsWhoseDataItShowsAndWhatWasDone) {
    WithContracts w;
    w.run("DELETE FROM MAS_COMPANY");
    w.run("INSERT INTO MAS_COMPANY (CMPNAME) VALUES ('Sample Works')");
    const std::string time = dateText(w.session.now(), "HH:mm");
    const std::string script =
        "title\ncell fpgContracts 1 1\nset txtRate 13\nshow txtRate\nkey txtRate Ctrl+S\nstatus\n"
        "cell fpgContracts 2 1\nanswer Yes\nclick cmdDelete\nstatus\n";
    EXPECT_EQ(drive<Contracts>(w, script).shown,
              "title: Sample Works - Contracts\n"
              "txtRate: 13 | Rate | Yes | Yes | changed=Yes\n"
              "status: Saved " +
                  time +
                  "\n"
                  "status: Deleted Canteen, " +
                  time + "\n");
    w.session.gAttHeadId = w.session.gAtt.ATTHEADID = 3;
    w.session.gAtt.ATTHEADNAME = "Plant";
    w.session.gReadOnly = true;
    EXPECT_EQ(drive<Contracts>(w, "title\nstatus\n").shown,
              "title: Plant - Contracts - Sample Works (Read only)\nstatus: Read only\n");
}

TEST(RowScreen, WhatSomebodyElseChangedIsNotWrittenOver) {
    enum class Act { Save, Delete, Choose };
    struct Case {
        std::string others;
        Act act;
    };
    for (const Case& c : {Case{"UPDATE CONTRACTS SET RATE = 20 WHERE ID = 4", Act::Save},
                          {"UPDATE CONTRACTS SET RATE = 20 WHERE ID = 4", Act::Delete},
                          {"DELETE FROM CONTRACTS WHERE ID = 4", Act::Save},
                          {"DELETE FROM CONTRACTS WHERE ID = 4", Act::Choose}}) {
        WithContracts w;
        test::TestFrontEnd frontEnd(w.boxes);
        Contracts screen(w.session, frontEnd);
        std::string others;
        frontEnd.atInput = [&](Screen&) {
            screen.list.clickCell(c.act == Act::Choose ? 1 : 0, 1);
            if (c.act != Act::Choose) screen.txtRate.edit("30");
            w.run(c.others);
            others = w.contracts();
            if (c.act == Act::Save) screen.cmdSave.click();
            if (c.act == Act::Delete) screen.cmdDelete.click();
            if (c.act == Act::Choose) screen.list.clickCell(0, 1);
        };
        w.boxes.answers = {BoxAnswer::Yes};
        screen.showModal();
        EXPECT_EQ(w.contracts(), others) << c.others;
        ASSERT_FALSE(w.boxes.shown.empty()) << c.others;
        EXPECT_EQ(w.boxes.shown.front().text,
                  "The contract has been changed by another user meanwhile.");
    }
}

TEST(RowScreen, SavesWholeOrNotAtAll) {
    WithContracts w;
    test::Rehearsal rehearsal(
        w,
        [&] { test::act<Contracts>(w, "cell fpgContracts 1 1\nset txtRate 13\nclick cmdSave\n"); },
        test::kPlaces);
    rehearsal.failsAnywhere();
}

// Rights go by the screen's own form, whatever the program was started for, on every way in.
TEST(RowScreen, RightsAndTheReadOnlyUser) {
    WithContracts w;
    w.run("INSERT INTO SEC_USERLIST (USERID, USERNAME, GROUPID) VALUES (9, 'ASHA', 5)");
    w.run(
        "INSERT INTO SEC_BUTDET (BUTID, FORMID, BUTNAME) VALUES (1, 1234, '*Save*'), "
        "(2, 1500, '*Delete*')");
    w.run("INSERT INTO SEC_BUTPER (BUTID, GROUPID, BUTALLOWYN) VALUES (1, 5, 0), (2, 5, 0)");
    w.settings.SaveSetting("Settings", "User", "Asha");
    w.session.gMultiLogin = true;
    w.session.gMenuId = 1500;
    const std::string all =
        "cell fpgContracts 1 1\nset txtRate 1\nclick cmdSave\nclick cmdDelete\n";
    EXPECT_EQ(drive<Contracts>(w, "tip cmdSave\ntip cmdDelete\n").shown,
              "tip: Permission denied.\ntip: \n");
    EXPECT_EQ(drive<Contracts>(w, all).boxes, "Delete?\\n\\nGuards|No\n");
    ASSERT_EQ(w.boxes.shown.size(), 1U);
    EXPECT_EQ(w.boxes.shown[0].text, "Permission denied.");
    w.session.gReadOnly = true;
    const Scripted run = drive<Contracts>(w, all);
    EXPECT_EQ(run.boxes, "");
    for (const char* closed : {"txtRate", "cmdSave", "cmdDelete"})
        EXPECT_NE(run.errors.find(closed), std::string::npos) << closed;
    EXPECT_NE(drive<Contracts>(w, "click cmdNew\n").errors, "");
    EXPECT_EQ(w.contracts(), kGuards + " " + kCanteen);
}

TEST(FamilyCombos, MonthsStepAndShowWhatIsNotListed) {
    WithContracts w;
    test::TestFrontEnd frontEnd(w.boxes);
    Contracts screen(w.session, frontEnd);
    MonthCombo months(screen, "cmbMonth");
    int changes = 0;
    months.onChange = [&] { ++changes; };
    months.load();
    EXPECT_FALSE(months.previous()) << "none is chosen";
    months.setMonth(24295);
    EXPECT_FALSE(months.next());
    EXPECT_TRUE(months.previous());
    EXPECT_EQ(months.value, "Jun/2024");
    EXPECT_FALSE(months.previous());
    EXPECT_EQ(changes, 1);
    months.setMonth(24000);
    EXPECT_EQ(months.value, "Dec/1999");
    EXPECT_EQ(months.month(), 24000);
}

TEST(FamilyCombos, NumberAndNameOfAnEmployeeFollowEachOther) {
    WithContracts w;
    w.run(
        "INSERT INTO MAS_EMPLOYEE (EMPID, EMPNAME, REFNO) VALUES (1, 'Asha', 'A1'), (2, 'Asha', "
        "'A2'), (3, 'Ravi', 'R3')");
    test::TestFrontEnd frontEnd(w.boxes);
    Contracts screen(w.session, frontEnd);
    EmployeeCombos employees(screen, "cmbEmpIDRef", "cmbEmpName");
    w.session.gOptSet.EMPREFNOYN = true;
    employees.load("SELECT EMPID, EMPNAME, REFNO FROM MAS_EMPLOYEE ORDER BY EMPID");
    employees.byId.edit("a2");
    EXPECT_EQ(employees.byName.value + employees.byId.value, "AshaA2");
    EXPECT_EQ(employees.byName.key(), 2) << "of two with one name";
    employees.byName.choose(2);
    EXPECT_EQ(employees.employee(), 3);
    employees.byName.edit("Nobody");
    EXPECT_EQ(employees.employee(), 0);
    EXPECT_TRUE(employees.select(1));
    EXPECT_EQ(employees.byName.key(), 1);
}

TEST(Options, AHeadsOwnRowIsReadWhateverTheCommonRowSays) {
    WithContracts w;
    w.head({10, 2});
    w.setOptions(10, "LOADDEFYN = 1, DEFVAL = 1");
    w.run("UPDATE ATT_OPTSETTINGS SET COMMONYN = 1, DEFVAL = 0 WHERE ATTHEADID = 0");
    EXPECT_EQ(FnReadAttOptions(w.session, 10).DEFVAL, 1);
    LoadAttOptions(w.session, 10);
    EXPECT_EQ(w.session.gOpt.DEFVAL, 0);
    EXPECT_FALSE(FnReadAttOptions(w.session, 99).LOADDEFYN);
}

}  // namespace
}  // namespace owb
