// The holiday screens, driven by script on a small payroll.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "calendar/screens/modHolidayList.h"
#include "calendar/screens/modHolidayWeekly.h"
#include "exchange/sheet_file.h"
#include "script/script_commands.h"
#include "script/script_front_end.h"
#include "session/modAttSetting.h"
#include "session/screens/frmOwbCalender.h"
#include "session/screens/frmSelMonth.h"
#include "support/payroll.h"
#include "support/rehearsal.h"
#include "support/screens.h"
#include "support/scripted.h"

namespace owb {
namespace {

constexpr int32_t kMay = 2024 * 12 + 5, kJune = kMay + 1, kJuly = kMay + 2;

struct Holidays : test::Payroll {
    Holidays() : Payroll(kMay, kJuly) {
        head({10, 2});
        head({20, 2});
        for (int id : {1, 2}) {
            employee(id, "2020-01-01", id * 10);
            salary(id, 1, kMay, kJuly);
        }
        reconcile();
        recalculate();
        run("UPDATE SLC_SALARYCALC_E SET EDITMODEYN = 0");
    }
    // What the script prints; the screen's own opening and closing left out.
    template <class S>
    std::string drive(const std::string& script, int head = 0) {
        session.gAttHeadId = head;
        LoadAttHead(session, head);
        std::istringstream in(script);
        std::ostringstream out;
        ScriptFrontEnd frontEnd(in, out, out);
        S(session, frontEnd).showModal();
        std::string text = out.str();
        text.erase(0, text.find('\n') + 1);
        text.erase(text.rfind("close: "));
        return text;
    }
    // Month keys, less May's, of marked month rows, registers and salary rows.
    std::string marked(const std::string& table = "LEV_MONTHDET") {
        return rows("SELECT EMPID, MONTHYEAR - " + std::to_string(kMay) + " FROM " + table +
                    " WHERE EDITMODEYN = 1 ORDER BY EMPID, MONTHYEAR");
    }
    void clean() {
        for (const char* table : {"LEV_MONTHDET", "ATT_DAYTODAY", "SLC_SALARYCALC_E"})
            run(std::string("UPDATE ") + table + " SET EDITMODEYN = 0");
    }
    std::string holidays() {
        return rows(
            "SELECT HOLIDAYID, CONVERT(varchar(10), HOLIDAYDATE, 103), HOLIDAYDESC, "
            "HOLIDAYTYPE, ISNULL(ATTHEADID, 0) FROM ATT_HOLIDAY ORDER BY HOLIDAYID");
    }
};

std::string box(const std::string& text) {
    return "box: information|Orvane Wagebook|" + text + "|OK|OK\n";
}

TEST(HolidayList, RefusesAtTheFirstFailedCheck) {
    Holidays h;
    h.session.gOptSet.STARTMONTHYEAR = kMay;
    h.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = " + std::to_string(kMay));
    struct Case {
        const char* script;
        std::string said;
    };
    for (const Case& c : {
             Case{"set cmbAttHead Nobody", box("'Attendance Head' not found.  Select from list.")},
             {"set txtHDesc Eid", box("Specify Holiday date.")},
             {"set txtHDate 01/01/1999\nset txtHDesc Eid",
              box("Given date cannot be before 'Start Month' specified.")},
             {"set txtHDate 17/06/2024", box("Specify holiday description.")},
             {"set txtHDate 17/05/2024\nset txtHDesc Eid",
              "box: warning|Permission Denied|One or more Employee Record(s)/Month(s) has been "
              "locked.\\nStill if you want to make changes, unlock it and try again.|OK|OK\n"},
         }) {
        EXPECT_EQ(h.drive<modHolidayList>(std::string(c.script) + "\nclick cmdSave\n"), c.said)
            << c.script;
        EXPECT_EQ(h.holidays(), "");
    }
    EXPECT_EQ(h.marked(), "");
}

// A head has a holiday on the 17th; branches may begin behind it, and heads end before them.
TEST(HolidayList, HeadsEndBeforeBranchesBegin) {
    Holidays h;
    h.run("INSERT INTO MAS_BRANCH (BRANCHID, BRANCHNAME) VALUES (1, 'Pune')");
    h.holiday(1, "2024-06-17", 10);
    const auto add = [&](const std::string& day, bool branch) {
        return h.drive<modHolidayList>(
            (branch ? "set chkBranchWise Yes\nset cmbAttHead Pune\n" : std::string()) +
                "set txtHDate " + day + "/06/2024\nset txtHDesc Eid\nclick cmdSave\n",
            branch ? 0 : 10);
    };
    const std::string ofHeads =
        box("Future Holiday Date defined in Attendancewise.  Branchwise Holiday Can't Define ");
    EXPECT_EQ(add("16", true), ofHeads);
    EXPECT_EQ(add("17", true), ofHeads);
    EXPECT_EQ(add("19", true), "");
    EXPECT_EQ(add("18", false), "");
    EXPECT_NE(add("19", false), "");
    EXPECT_NE(add("20", false), "");
    EXPECT_EQ(h.rows("SELECT DAY(HOLIDAYDATE), BRANCHID FROM ATT_HOLIDAY ORDER BY HOLIDAYDATE"),
              "17, 18, 19,1");
}

TEST(HolidayList, MarksTheMonthOfWhatIsSaved) {
    Holidays h;
    EXPECT_EQ(h.drive<modHolidayList>("set txtHDate 17/6/24\nset txtHDesc Eid\nset chkNH Yes\n"
                                      "click cmdSave\ndump fpgHDetail\n"),
              "Date,Description,Type\n17/06/2024,Eid,National\n");
    EXPECT_EQ(h.boxes.shown.back().text, "Updated");
    EXPECT_EQ(h.holidays(), "1,17/06/2024,Eid,1,0");
    EXPECT_EQ(h.marked(), "1,1 2,1");
    EXPECT_EQ(h.marked("ATT_DAYTODAY"), "1,1 2,1");
    EXPECT_EQ(h.marked("SLC_SALARYCALC_E"), "1,1 2,1");
    // A holiday of a head marks that head's salaries, but every register of the month.
    h.clean();
    EXPECT_EQ(h.drive<modHolidayList>("set txtHDate 01/07/2024\nset txtHDesc Founder\n"
                                      "click cmdSave\n",
                                      10),
              "");
    EXPECT_EQ(h.marked("SLC_SALARYCALC_E"), "1,2");
    EXPECT_EQ(h.marked(), "1,2 2,2");
    // A new date marks the old month and the new one.
    h.clean();
    EXPECT_EQ(h.drive<modHolidayList>("cell fpgHDetail 1 Date\nset txtHDate 02/05/2024\n"
                                      "click cmdSave\n"),
              "");
    EXPECT_EQ(h.marked(), "1,0 1,1 2,0 2,1");
    EXPECT_EQ(h.holidays(), "1,02/05/2024,Eid,1,0 2,01/07/2024,Founder,0,10");
    EXPECT_EQ(h.drive<modHolidayList>("set txtHDate 02/05/2024\nset txtHDesc Again\n"
                                      "click cmdSave\n"),
              box("Holiday already available."));
}

TEST(HolidayList, TakesACompanysHolidayFromOneHead) {
    Holidays h;
    h.holiday(1, "2024-06-17");
    h.run("UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'Eid', GENERALYN = 1");
    const std::string ask =
        "box: question|Orvane Wagebook|Do you want to delete selected record?\\n\\nEid, "
        "17/Jun/2024|YesNo|";
    EXPECT_EQ(
        h.drive<modHolidayList>("click cmdDelete\ncell fpgHDetail 1 1\nclick cmdDelete\n"
                                "answer Yes\nclick cmdDelete\ndump fpgHDetail\n",
                                10),
        box("Select record to delete.") + ask + "No\n" + ask + "Yes\nDate,Description,Type\n");
    EXPECT_EQ(h.rows("SELECT HOLIDAYID, ATTHEADID FROM ATT_HOLEX"), "1,10");
    EXPECT_EQ(h.rows("SELECT COUNT(*) FROM ATT_HOLIDAY"), "1");
    const std::string description = h.value("SELECT HOLIDAYDESC FROM ATT_HOLIDAY");
    EXPECT_EQ(h.drive<modHolidayList>(
                  "set txtHDate 17/06/2024\nset txtHDesc " + description + "\nclick cmdSave\n", 10),
              "")
        << "it comes back without a row of its own";
    EXPECT_EQ(h.rows("SELECT COUNT(*) FROM ATT_HOLEX"), "0");
    EXPECT_EQ(h.rows("SELECT COUNT(*) FROM ATT_HOLIDAY"), "1");
    EXPECT_EQ(h.drive<modHolidayList>("answer Yes\ncell fpgHDetail 1 1\nclick cmdDelete\n"),
              ask + "Yes\n");
    EXPECT_EQ(h.rows("SELECT COUNT(*) FROM ATT_HOLIDAY"), "0");
}

TEST(HolidayList, GoesToASheetAndComesBack) {
    Holidays h;
    h.holiday(1, "2024-06-17");
    const std::string sheet = h.folder.file("list.xlsx");
    EXPECT_EQ(h.drive<modHolidayList>("file " + sheet + "\nclick lblExport\n"),
              "file: save|Holiday List|" + sheet + "\nshow: " + sheet + "\n");
    writeSheet(sheet, {.name = "x",
                       .header = {"Date", "Description", "Type"},
                       .columns = {{}, {}, {}},
                       .rows = {{"17/06/2024", "Eid", "General"},
                                {"15/07/2024", "Muharram", "National"},
                                {"15/07/2024", "Twice", ""},
                                {"soon", "Puja", ""},
                                {"16-Jul-2024", std::string(101, 'x'), ""}}});
    const std::string preview =
        "file: open|Import Holiday List|" + sheet +
        "\nopen: frmImport|Import Holiday List\nlblCount: 1 to import, 4 refused | 1 to import, 4 "
        "refused | Yes | Yes\nRow,Date,Description,Type,Import\n2,17/06/2024,Eid,General,Holiday "
        "already available.\n3,15/07/2024,Muharram,National,Add\n4,15/07/2024,Twice,,Holiday "
        "already available.\n5,soon,Puja,,Specify Holiday date.\n6,16-Jul-2024," +
        std::string(101, 'x') + ",,The description is longer than 100 characters.\n";
    EXPECT_EQ(h.drive<modHolidayList>("file " + sheet +
                                      "\nclick lblImport\nshow lblCount\ndump fpgImport\nclose\n"),
              preview + "close: frmImport\n");
    EXPECT_EQ(h.rows("SELECT COUNT(*) FROM ATT_HOLIDAY"), "1") << "nothing before the user says so";
    EXPECT_EQ(h.drive<modHolidayList>("file " + sheet + "\nclick lblImport\nclick cmdImport\n"),
              "file: open|Import Holiday List|" + sheet +
                  "\nopen: frmImport|Import Holiday List\nclose: frmImport\n");
    EXPECT_EQ(h.rows("SELECT CONVERT(varchar(10), HOLIDAYDATE, 103), HOLIDAYDESC, HOLIDAYTYPE FROM "
                     "ATT_HOLIDAY WHERE HOLIDAYID > 1"),
              "15/07/2024,Muharram,1");
    EXPECT_EQ(h.marked(), "1,2 2,2");
}

TEST(WeeklyHoliday, OfTheCompanyFlowsToHeadsThatHaveNotDiverged) {
    Holidays h;
    EXPECT_EQ(
        h.drive<modHolidayWeekly>("click cmdSave\nset cmbMonthYear Jun/2024\nclick cmdSave\n"),
        box("Select effective Month/Year.") + box("Select proper 'Day of the Week'."));
    auto flags = [&] {
        return h.rows(
            "SELECT ATTHEADID, FH1YN, SH1YN, EDITEDYN FROM LEV_WEEKLYHLD WHERE EFFFROM = " +
            std::to_string(kJune) + " AND WEEKID = 1 ORDER BY ATTHEADID");
    };
    const std::string save =
        "set cmbWeekDay Sunday\nset cmbMonthYear Jun/2024\nset chkFirst(0) Yes\n";
    h.drive<modHolidayWeekly>(save + "click cmdSave\n");
    EXPECT_EQ(flags(), "0,1,0,0 1,1,0,0 10,1,0,0 20,1,0,0");
    EXPECT_EQ(h.value("SELECT COUNT(DISTINCT WHID) FROM LEV_WEEKLYHLD WHERE WEEKID = 1"), "4")
        << "every row has a number of its own";
    EXPECT_EQ(h.marked(), "1,1 1,2 2,1 2,2");
    // Head 20 goes its own way, and the next company's change passes it by.
    h.clean();
    h.drive<modHolidayWeekly>(save + "set chkSecond(0) Yes\nclick cmdSave\n", 20);
    EXPECT_EQ(flags(), "0,1,0,0 1,1,0,0 10,1,0,0 20,1,1,1");
    EXPECT_EQ(h.marked(), "2,1 2,2");
    h.clean();
    h.drive<modHolidayWeekly>(
        "set cmbWeekDay Sunday\nset cmbMonthYear Jun/2024\nset chkSecond(0) Yes\nclick cmdSave\n");
    EXPECT_EQ(flags(), "0,0,1,0 1,0,1,0 10,0,1,0 20,1,1,1");
    EXPECT_EQ(h.marked(), "1,1 1,2") << "only of heads that followed";
    // The same once more changes nothing and marks all.
    h.clean();
    h.drive<modHolidayWeekly>("cell fpgWeeklyHoliday 1 1\nclick cmdSave\n");
    EXPECT_EQ(h.marked(), "1,1 1,2 2,1 2,2");
    // Deleting the company's rule takes those along that never diverged.
    h.drive<modHolidayWeekly>(
        "cell fpgWeeklyHoliday 1 1\nanswer Yes\nanswer Yes\nclick cmdDelete\n");
    EXPECT_EQ(flags(), "20,1,1,1");
}

TEST(WeeklyHoliday, IsRefusedBeforeALockedMonth) {
    Holidays h;
    h.run("UPDATE MAS_MONTHYEAR SET LOCKEDYN = 1 WHERE MONTHYEAR = " + std::to_string(kJuly));
    EXPECT_EQ(h.drive<modHolidayWeekly>("set cmbWeekDay Friday\nset cmbMonthYear Jun/2024\n"
                                        "click cmdSave\n"),
              "box: warning|Permission Denied|One or more Employee (s) record/Month(s) has been "
              "locked with effective from Jun/2024.|OK|OK\n");
    h.session.gReadOnly = true;
    EXPECT_EQ(h.drive<modHolidayWeekly>("click cmdSave\n"),
              "error: line 1: cmdSave takes no click now\n");
}

// --- what disturbs a save ---

const std::string kMove = "set txtHDate 02/07/2024\nclick cmdSave\n";

TEST(HolidayList, AHeadsViewLeavesTheCompanysHolidayToTheOthers) {
    Holidays h;
    h.holiday(1, "2024-06-17");
    h.run("UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'Eid', HOLIDAYTYPE = 0");
    h.drive<modHolidayList>("cell fpgHDetail 1 1\nclick cmdSave\n", 10);
    EXPECT_EQ(h.holidays(), "1,17/06/2024,Eid,0,0") << "nothing was changed";
    EXPECT_EQ(h.drive<modHolidayList>("cell fpgHDetail 1 1\n" + kMove + "dump fpgHDetail\n", 10),
              "Date,Description,Type\n02/07/2024,Eid,General\n");
    EXPECT_EQ(h.holidays(), "1,17/06/2024,Eid,0,0 2,02/07/2024,Eid,0,10");
    EXPECT_EQ(h.rows("SELECT HOLIDAYID, ATTHEADID FROM ATT_HOLEX"), "1,10");
    EXPECT_EQ(h.marked("SLC_SALARYCALC_E"), "1,1 1,2");
    // A branch takes no more from it, by a deletion or a change.
    h.run(
        "DELETE FROM ATT_HOLIDAY WHERE ATTHEADID = 10 INSERT INTO MAS_BRANCH (BRANCHID, "
        "BRANCHNAME) VALUES (1, 'Pune')");
    const std::string kept = box("General Holiday Can't Delete in Branchwise");
    EXPECT_EQ(h.drive<modHolidayList>("set chkBranchWise Yes\nset cmbAttHead Pune\n"
                                      "cell fpgHDetail 1 1\nanswer Yes\nclick cmdDelete\n" +
                                      kMove),
              "box: question|Orvane Wagebook|Do you want to delete selected record?\\n\\nEid, "
              "17/Jun/2024|YesNo|Yes\n" +
                  kept + kept);
}

TEST(HolidayList, TheFilterNarrowsByEachOfItsFieldsAndKeepsTheEditedRow) {
    Holidays h;
    for (int day = 1; day <= 4; ++day) h.holiday(day, "2024-06-1" + std::to_string(day));
    h.run("UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'H', HOLIDAYTYPE = HOLIDAYID % 2");
    const std::pair<const char*, const char*> cases[] = {
        {"set cmbHFilter National\n", "13/06/2024,H,National\n11/06/2024,H,National\n"},
        {"set txtFilterFrom 14/06/2024\n", "14/06/2024,H,General\n"},
        {"set txtFilterTo 11/6/24\n", "11/06/2024,H,National\n"},
        {"set txtFilterFrom 12/06/2024\nset txtFilterTo 13/06/2024\nset cmbHFilter General\n",
         "12/06/2024,H,General\n"}};
    for (const auto& [script, left] : cases)
        EXPECT_EQ(h.drive<modHolidayList>(std::string(script) + "dump fpgHDetail\n"),
                  std::string("Date,Description,Type\n") + left);
    h.drive<modHolidayList>(
        "cell fpgHDetail 1 1\nset txtHDesc Changed\nset txtFilterTo "
        "12/06/2024\nclick cmdSave\n");
    EXPECT_EQ(h.rows("SELECT HOLIDAYID, HOLIDAYDESC FROM ATT_HOLIDAY ORDER BY HOLIDAYID"),
              "1,H 2,H 3,H 4,Changed");
}

TEST(HolidayList, TellsOnPaperWhatItIsNarrowedBy) {
    Holidays h;
    h.holiday(1, "2024-06-11");
    std::istringstream in(
        "set cmbHFilter General\nset txtFilterTo 11/6/24\nprint fpgHDetail list.pdf\n");
    std::ostringstream out;
    ScriptFrontEnd frontEnd(in, out, out);
    PrintHeading printed;
    frontEnd.printToPdf = [&](const Grid&, const PrintHeading& heading, PaperSize,
                              const std::string&) -> size_t {
        printed = heading;
        return 1;
    };
    modHolidayList(h.session, frontEnd).showModal();
    EXPECT_EQ(printed.filters,
              (std::vector<std::string>{"Holiday Type: General", "To: 11/06/2024"}))
        << out.str();
}

TEST(HolidayList, WritesNothingOnOpening) {
    Holidays h;
    h.run("UPDATE MAS_OPTSET SET BRGHEFROM = '2024-05-01'");
    EXPECT_EQ(h.drive<modHolidayList>("show lblEffFrom\n"),
              "lblEffFrom: 01/May/2024 | 01/May/2024 | Yes | Yes\n");
    EXPECT_EQ(h.rows("SELECT BRGHEFROM FROM MAS_OPTSET"), "2024-05-01");
}

TEST(HolidayScreens, SaveAndDeleteWholeOrNotAtAll) {
    Holidays kept;
    const std::string sheet = kept.folder.file("list.xlsx");
    writeSheet(sheet, {.name = "x",
                       .header = {"Date", "Description", "Type"},
                       .columns = {{}, {}, {}},
                       .rows = {{"18/06/2024", "Eid", "General"}, {"15/07/2024", "Puja", ""}}});
    const std::string day = "cell fpgHDetail 1 1\n", yes = "answer Yes\n";
    const auto tried = [](const auto& act, const std::string& script, int head,
                          bool othersWork = false) {
        Holidays h;
        h.holiday(1, "2024-06-17");
        h.weekly(0, 1, "FS FS FS FS FS", kJune);
        h.run("UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'Eid', HOLIDAYTYPE = 0");
        h.session.gAttHeadId = head;
        test::Rehearsal rehearsal(
            h, [&] { act(h, script); }, test::kPlaces);
        rehearsal.failsAnywhere();
        if (!othersWork && !std::getenv("OWB_EVERY")) return;
        rehearsal.othersWorkAnywhere([](Session& other) {
            other.gConn.Execute(
                "UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'Changed' UPDATE LEV_WEEKLYHLD SET FH3YN = 0 "
                "UPDATE LEV_MONTHDET SET EDITMODEYN = 1 UPDATE ATT_DAYTODAY SET EDITMODEYN = 1");
        });
    };
    const auto list = [](Holidays& h, const std::string& script) {
        test::act<modHolidayList>(h, script);
    };
    tried(list, "set txtHDate 18/06/2024\nset txtHDesc Puja\nclick cmdSave\n", 0);
    tried(list, day + kMove, 0, true);
    tried(list, day + kMove, 10);
    tried(list, day + yes + "click cmdDelete\n", 20);
    tried(list, day + yes + "click cmdDelete\n", 0);
    tried(list, "file " + sheet + "\nclick lblImport\nclick cmdImport\n", 10);
    const auto weekly = [](Holidays& h, const std::string& script) {
        test::act<modHolidayWeekly>(h, script);
    };
    const std::string rule = "cell fpgWeeklyHoliday 1 1\n";
    tried(weekly, rule + "set chkFirst(0) No\nclick cmdSave\n", 0, true);
    tried(weekly, rule + yes + yes + "click cmdDelete\n", 0);
    tried(weekly, "set cmbWeekDay Friday\nset cmbMonthYear Jun/2024\nclick cmdSave\n", 10);
}

// Runs the script's lines, then the other's statement, then the last line.
template <class S>
std::string disturbed(Holidays& h, std::vector<std::string> lines, const std::string& other) {
    h.boxes.shown.clear();
    test::TestFrontEnd frontEnd(h.boxes);
    frontEnd.atInput = [&](Screen& screen) {
        std::ostringstream out;
        for (size_t i = 0; i < lines.size(); ++i) {
            if (i + 1 == lines.size()) h.run(other);
            runControlCommand(screen, lines[i], out);
        }
    };
    S(h.session, frontEnd).showModal();
    std::string told;
    for (const Box& box : h.boxes.shown) told += box.text + "\n";
    return told;
}

TEST(HolidayScreens, AnothersChangeIsToldAndStays) {
    Holidays h;
    h.holiday(1, "2024-06-17");
    h.weekly(0, 1, "FS FS FS FS FS", kJune);
    const std::string day = "cell fpgHDetail 1 1", rule = "cell fpgWeeklyHoliday 1 1";
    const std::string changed = " has been changed by another user meanwhile.\n";
    EXPECT_EQ(disturbed<modHolidayList>(h, {day, "set txtHDate 18/06/2024", "click cmdSave"},
                                        "UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'Eid'"),
              "The holiday" + changed);
    EXPECT_EQ(disturbed<modHolidayList>(h, {day, "click cmdDelete"},
                                        "UPDATE ATT_HOLIDAY SET HOLIDAYTYPE = 1"),
              "The holiday" + changed);
    EXPECT_EQ(disturbed<modHolidayList>(h, {day, "click cmdDelete"},
                                        "UPDATE ATT_HOLIDAY SET HOLIDAYID = 2"),
              "Holiday already deleted.\n");
    EXPECT_EQ(h.holidays(), "2,17/06/2024,Eid,1,0");
    EXPECT_EQ(disturbed<modHolidayWeekly>(h, {rule, "set chkFirst(1) No", "click cmdSave"},
                                          "UPDATE LEV_WEEKLYHLD SET FH1YN = 0"),
              "The weekly holiday" + changed);
    EXPECT_EQ(h.rows("SELECT FH1YN, FH2YN FROM LEV_WEEKLYHLD"), "0,1");
    EXPECT_EQ(disturbed<modHolidayWeekly>(h, {rule, "click cmdDelete"},
                                          "DELETE FROM LEV_WEEKLYHLD WHERE ATTHEADID = 0"),
              "The weekly holiday" + changed);
}

// Rules of one month are told apart by their day.
TEST(WeeklyHoliday, ShownAgainKeepsTheChosenRule) {
    Holidays h;
    h.weekly(0, 1, "FS FS FS FS FS", kJune);
    h.weekly(0, 7, "FS -- FS -- FS", kJune);
    EXPECT_EQ(h.drive<modHolidayWeekly>("cell fpgWeeklyHoliday 2 1\nkey fpgWeeklyHoliday F5\n"
                                        "show fpgWeeklyHoliday\n"),
              "fpgWeeklyHoliday: 24294 |  | Yes | Yes | current=2 EFFFROM | status=Row 2/2\n");
}

TEST(WeeklyHoliday, DeletesOnlyARuleThatExists) {
    Holidays h;
    h.weekly(0, 1, "FS FS FS FS FS", kJune);
    for (const char* script :
         {"click cmdDelete\n",
          "set cmbWeekDay Monday\nset cmbMonthYear Jun/2024\nclick cmdDelete\n"})
        EXPECT_EQ(h.drive<modHolidayWeekly>(script), box("Select record to Delete")) << script;
}

TEST(Pickers, OfferWhatTheFieldTakes) {
    Holidays h;
    // A month that the combo does not offer takes no click.
    test::TestFrontEnd frontEnd(h.boxes);
    modHolidayWeekly screen(h.session, frontEnd);
    frontEnd.atInput = [&](Screen& shown) {
        if (&shown == &screen) {
            screen.cmbMonthYear.items.erase(screen.cmbMonthYear.items.begin());  // July
            screen.cmbMonthYear.value = "Jun/2024";
            EXPECT_TRUE(static_cast<Control&>(screen.cmbMonthYear).key("F2"));
            EXPECT_EQ(screen.cmbMonthYear.key(), kMay);
            return;
        }
        auto& picker = static_cast<frmSelMonth&>(shown);
        EXPECT_FALSE(picker.lblMonth[6].click());
        EXPECT_TRUE(picker.lblMonth[4].click());
    };
    screen.showModal();
    // The calendar opens on the date that the box holds, in any form.
    for (const char* typed : {"2-13-2024", "13-Feb-2024", "13.2.24"})
        EXPECT_EQ(
            h.drive<modHolidayList>(std::string("set txtHDate ") + typed + "\nshow txtHDate\n"),
            "txtHDate: 13/02/2024 |  | Yes | Yes | tip=dd/mm/yyyy,Press F2 or Double click | "
            "changed=Yes\n");
    TextBox date(screen, "txtDate");
    date.value = "05/Jan/2014";
    frmOwbCalender calendar(h.session, frontEnd);
    calendar.SetTarget(date);
    calendar.LoadMonthYear();
    EXPECT_EQ(calendar.cmbMonth.value + calendar.cmbYear.value, "January2014");
}

TEST(Pickers, FillTheFieldTheyWereOpenedFrom) {
    Holidays h;
    EXPECT_EQ(h.drive<modHolidayList>("set txtHDate 29/02/2024\nkey txtHDate F2\nshow cmbMonth\n"
                                      "show lblDate(4)\nclick lblDate(31)\nfocus\n"
                                      "show txtHDate\n"),
              "open: frmOwbCalender|Calendar\ncmbMonth: February |  | Yes | Yes\nlblDate(4): 1 | 1 "
              "| Yes | Yes\nclose: frmOwbCalender\nfocus: txtHDate\ntxtHDate: 28/02/2024 |  | Yes "
              "| Yes | tip=dd/mm/yyyy,Press F2 or Double click | changed=Yes\n");
    EXPECT_EQ(h.drive<modHolidayWeekly>("dblclick cmbMonthYear\nclick lblMonth(5)\n"
                                        "set lstYear 2024\nclick lblMonth(0)\nclick lblMonth(5)\n"
                                        "show cmbMonthYear\n"),
              "open: frmSelMonth|Select Month Year\nbox: information|MONTHYEAR|Please Select The "
              "year|OK|OK\nerror: line 4: lblMonth(0) takes no click now\nclose: "
              "frmSelMonth\ncmbMonthYear: Jun/2024 |  | Yes | Yes | tip=Select effective "
              "Month/Year,Press "
              "F2 or Double click  to quick select\n");
}

// Today is 2024-08-15, a holiday of the company; a head's own holiday is none of the calendar's.
TEST(Pickers, TheCalendarIsWalkedByKeysAndShowsHolidays) {
    struct Case {
        const char* from;
        std::vector<const char*> keys;
        const char* picked;
    };
    for (const Case& c : {Case{"31/01/2024", {"Left", "Up", "Enter"}, "23/01/2024"},
                          {"31/01/2024", {"Right", "Enter"}, "01/02/2024"},
                          {"31/01/2024", {"PgDown", "Enter"}, "29/02/2024"},
                          {"31/01/2024", {"PgDown", "Home", "Up", "Enter"}, "25/01/2024"},
                          {"05/03/2024", {"End", "Down", "PgUp", "Enter"}, "07/03/2024"},
                          {"05/03/2024", {"T", "Enter"}, "15/08/2024"},
                          {"", {"Enter"}, "15/08/2024"},
                          {"5/3", {"Enter"}, "05/03/2024"},
                          {"05/03/2024", {"PgUp", "Esc"}, "05/03/2024"}}) {
        Holidays h;
        test::TestFrontEnd frontEnd(h.boxes);
        frmOwbCalender calendar(h.session, frontEnd);
        std::string picked = c.from;
        calendar.SetTarget(c.from, [&](const std::string& date) { picked = date; });
        frontEnd.atInput = [&](Screen& shown) {
            EXPECT_EQ(shown.takeFocus(), &calendar.monDays);
            for (const char* key : c.keys)
                EXPECT_TRUE(calendar.monDays.key(key) || shown.press(key)) << key;
        };
        calendar.showModal();
        EXPECT_EQ(picked, c.picked) << c.from << " " << c.keys.front();
    }
    Holidays h;
    h.holiday(1, "2024-08-15");
    h.holiday(2, "2024-08-16", 10);
    h.run("UPDATE ATT_HOLIDAY SET HOLIDAYDESC = 'Independence Day'");
    test::TestFrontEnd frontEnd(h.boxes);
    const auto shown = [&] {
        frmOwbCalender calendar(h.session, frontEnd);
        calendar.SetTarget("20/08/2024", [](const std::string&) {});
        std::string marks;
        frontEnd.atInput = [&](Screen&) {
            for (int day = 1; day <= 31; ++day) {
                const BoardCell& cell = calendar.monDays.cellOf(day);
                if (cell.holiday) marks += cell.text + " " + cell.tip + ";";
                if (cell.ringed) marks += "today " + cell.text + ";";
                if (cell.chosen) marks += "chosen " + cell.text + ";";
                EXPECT_EQ(cell.offDay, day % 7 == 4) << day;
            }
        };
        calendar.showModal();
        return marks;
    };
    EXPECT_EQ(shown(), "15 Independence Day;today 15;chosen 20;");
    h.run("DROP TABLE ATT_HOLIDAY");
    EXPECT_EQ(shown(), "today 15;chosen 20;") << "holidays that cannot be read cost their tint";
    EXPECT_TRUE(h.boxes.shown.empty());
}

// Today is in August 2024; the payroll's months are May to July.
TEST(Pickers, TheBoardOfMonthsIsWalkedByKeys) {
    Holidays h;
    const std::string open = "set cmbMonthYear Jun/2024\nkey cmbMonthYear F2\n";
    EXPECT_EQ(h.drive<modHolidayWeekly>(open + "dump monMonths\nkey monMonths Esc\n"),
              "open: frmSelMonth|Select Month Year\ntext,tip,marks\nMay,,\nJun,,chosen "
              "current\nJul,,\nclose: frmSelMonth\n");
    struct Case {
        const char* keys;
        const char* month;
    };
    for (const Case& c : {Case{"key monMonths Right\nkey monMonths Enter\n", "Jul/2024"},
                          {"key monMonths Left\nkey monMonths Enter\n", "May/2024"},
                          {"key monMonths Home\nkey monMonths Enter\n", "May/2024"},
                          {"key monMonths End\nkey monMonths Enter\n", "Jul/2024"},
                          {"key monMonths PgDown\nkey monMonths Enter\n", "Jun/2024"}}) {
        const std::string told = h.drive<modHolidayWeekly>(open + c.keys + "show cmbMonthYear\n");
        EXPECT_NE(told.find("\ncmbMonthYear: " + std::string(c.month) + " |"), std::string::npos)
            << c.keys << told;
    }
}

}  // namespace
}  // namespace owb
