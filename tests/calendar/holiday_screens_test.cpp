// The holiday screens, driven by script on a small payroll.
#include <gtest/gtest.h>

#include <sstream>

#include "calendar/screens/modHolidayList.h"
#include "calendar/screens/modHolidayWeekly.h"
#include "data/modAttSetting.h"
#include "exchange/sheet_file.h"
#include "script/script_front_end.h"
#include "support/payroll.h"

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
        "box: question|Orvane Wagebook|Do you want to delete selected record?|YesNo|";
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
                                {"soon", "Puja", ""}}});
    const std::string preview =
        "file: open|Import Holiday List|" + sheet +
        "\nopen: frmImport|Import Holiday List\nlblCount: 1 to import, 3 refused | 1 to import, 3 "
        "refused | Yes | Yes\nRow,Date,Description,Type,Import\n2,17/06/2024,Eid,General,Holiday "
        "already available.\n3,15/07/2024,Muharram,National,Add\n4,15/07/2024,Twice,,Holiday "
        "already available.\n5,soon,Puja,,Specify Holiday date.\n";
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

TEST(Pickers, FillTheFieldTheyWereOpenedFrom) {
    Holidays h;
    EXPECT_EQ(h.drive<modHolidayList>("set txtHDate 29/02/2024\nkey txtHDate F2\nshow cmbMonth\n"
                                      "show lblDate(4)\nclick lblDate(31)\nshow lblDate(32)\n"
                                      "click lblDate(32)\nshow txtHDate\n"),
              "open: frmOwbCalender|Calendar\ncmbMonth: February |  | Yes | Yes\nlblDate(4): 1 | 1 "
              "| Yes | Yes\nclose: frmOwbCalender\nerror: line 6: no control lblDate(32) on "
              "modHolidayList\nerror: line 7: no control lblDate(32) on modHolidayList\ntxtHDate: "
              "28/02/2024 |  | Yes | Yes\n");
    EXPECT_EQ(h.drive<modHolidayWeekly>("dblclick cmbMonthYear\nclick lblMonth(5)\n"
                                        "set lstYear 2024\nclick lblMonth(0)\nclick lblMonth(5)\n"
                                        "show cmbMonthYear\n"),
              "open: frmSelMonth|Select Month Year\nbox: information|MONTHYEAR|Please Select The "
              "year|OK|OK\nerror: line 4: lblMonth(0) takes no click now\nclose: "
              "frmSelMonth\ncmbMonthYear: Jun/2024 |  | Yes | Yes\n");
}

}  // namespace
}  // namespace owb
