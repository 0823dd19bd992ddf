#include "script/script_front_end.h"

#include <gtest/gtest.h>

#include <sstream>

#include "screen/grid.h"
#include "screen/lists.h"
#include "screen/text_box.h"

namespace owb {
namespace {

class Asking final : public Screen {
  public:
    explicit Asking(FrontEnd& frontEnd) : Screen(frontEnd, "Asking", "Ask\nme") {
        cmdAsk.onClick = [this] {
            Box box{"Delete\nit ?", "Confirm", BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::No};
            lblAnswer.caption = this->frontEnd().show(box) == BoxAnswer::Yes ? "yes" : "no";
        };
        cmdClose.onClick = [this] { close(); };
        cmdHidden.visible = false;
    }
    Label lblAnswer{*this, "lblAnswer"};
    Command cmdAsk{*this, "cmdAsk", "&Ask"};
    Command cmdHidden{*this, "cmdHidden", "Hidden"};
    Command cmdClose{*this, "cmdClose", "Cl&ose"};
};

struct Driven {
    std::string out, errors;
    bool failed;
};

template <class S = Asking>
Driven drive(const std::string& script) {
    std::istringstream in(script);
    std::ostringstream out, errors;
    ScriptFrontEnd frontEnd(in, out, errors);
    S(frontEnd).showModal();
    return {out.str(), errors.str(), frontEnd.failed()};
}

TEST(Script, DrivesAScreen) {
    struct Case {
        const char* what;
        const char* script;
        const char* out;  // between open and close
        const char* errors;
    };
    const char* asked = "box: question|Confirm|Delete\\nit ?|YesNo|";
    for (const Case& c :
         {Case{"a question takes its default", "click cmdAsk\nshow lblAnswer\n",
               "No\nlblAnswer: no | no | Yes | Yes\n", ""},
          {"or the queued answer", "answer yes\n\n# a comment\n  click CMDASK \nshow lblAnswer\n",
           "Yes\nlblAnswer: yes | yes | Yes | Yes\n", ""},
          {"an answer that the box does not offer", "answer Cancel\nclick cmdAsk\n", "No\n",
           "error: line 2: the box has no button Cancel\n"}}) {
        const Driven run = drive(c.script);
        EXPECT_EQ(run.out,
                  std::string("open: Asking|Ask\\nme\n") + asked + c.out + "close: Asking\n")
            << c.what;
        EXPECT_EQ(run.errors, c.errors) << c.what;
        EXPECT_EQ(run.failed, *c.errors != 0) << c.what;
    }
}

TEST(Script, TellsWhatItCannotDoAndGoesOn) {
    const Driven run = drive(
        "press cmdAsk\nclick cmdNone\nclick cmdHidden\nanswer Perhaps\nclick cmdClose\nclick "
        "cmdAsk\n");
    EXPECT_EQ(run.out, "open: Asking|Ask\\nme\nclose: Asking\n") << "nothing after the close";
    const std::string listed = "there are set, click, menu, ";
    EXPECT_EQ(run.errors.find("error: line 1: no such command: press: " + listed), 0U);
    EXPECT_EQ(
        run.errors.substr(run.errors.find('\n') + 1),
        "error: line 2: no control cmdNone on Asking: there are lblAnswer, cmdAsk, cmdHidden, "
        "cmdClose\n"
        "error: line 3: cmdHidden takes no click now\n"
        "error: line 4: no such answer: Perhaps: there are Yes, No, Cancel, OK\n");
}

// One of each kind, and a grid with a hidden row and a hidden column.
class Showing : public Screen {
  public:
    explicit Showing(FrontEnd& frontEnd) : Screen(frontEnd, "Showing", "All kinds") {
        txtName.value = "Asha";
        txtName.toolTip = "Her\nname";
        txtNote.locked = true;
        for (const char* entry : {"CL", "EL"}) {
            cmbLeave.add(entry);
            lstHeads.add(entry);
        }
        cmbLeave.editable = false;
        lstHeads.checkable = true;
        mnuHalf.checkable = true;
        mnuDay.onClick = mnuHalf.onClick = [] {};
        mnuGone.visible = false;
        cmdGo.onClick = [this] { setFocus(txtName); };
        fillGrid();
    }

    TextBox txtName{*this, "txtName"};
    TextBox txtNote{*this, "txtNote", "Remark"};
    Combo cmbLeave{*this, "cmbLeave"};
    ListBox lstHeads{*this, "lstHeads"};
    CheckBox chkAll{*this, "chkAll", "&All, always"};
    Label lblCount{*this, "lblCount", "3"};
    Command cmdGo{*this, "cmdGo", "&Go"};
    Tabs tabPages{*this, "tabPages", {"One", "Two"}};
    Grid fpgDays{*this, "fpgDays"};
    MenuItem mnuDay{*this, fpgDays, "mnuDay", "Day"};
    MenuItem mnuHalf{*this, fpgDays, "mnuHalf(0)", "Half", &mnuDay};
    MenuItem mnuGone{*this, fpgDays, "mnuGone", "Gone"};

  private:
    void fillGrid() {
        fpgDays.setColumns({{"ID", 5, CellType::Number, 0, Align::Left, true},
                            {"Date", 10, CellType::Date},
                            {"Kind", 10, CellType::Combo, 0, Align::Left, false, false},
                            {"Off", 3, CellType::Check, 0, Align::Left, false, false}});
        for (const char* day : {"1", "2", "3"})
            fpgDays.addRow({day, std::string("0") + day + "/01/2026", "CL", "0"});
        fpgDays.setRowHidden(1, true);
        fpgDays.changeColumn(2).choices = {"CL", "EL"};
        fpgDays.changeColumn(3).toolTip = "Day off";
        fpgDays.setBackColor(2, 1, 0x80C0FF);
        fpgDays.legend = {{0x80C0FF, "Weekly off"}};
        fpgDays.setForeColor(2, 1, kToolTipColor);
        fpgDays.setLocked(0, 2, true);
        fpgDays.setCellTag(0, 2, "old");
        fpgDays.cellToolTip = [](size_t row, size_t column) {
            return row == Grid::kHeader ? "header" : "cell " + std::to_string(row * 10 + column);
        };
        fpgDays.onCellDoubleClick = [this](size_t row, size_t) {
            lblCount.caption = "twice " + std::to_string(row);
        };
        fpgDays.onKey = [this](const std::string& key) {
            lblCount.caption = "key " + key;
            return key == "F5";
        };
    }
};

// What a script prints on a screen between its opening and its end, and what it could not do.
template <class S = Showing>
std::string printed(const std::string& script) {
    const Driven run = drive<S>(script);
    const size_t from = run.out.find('\n') + 1;
    return run.out.substr(from, run.out.rfind("close: ") - from) + run.errors;
}

TEST(Script, TellsWhatAUserSees) {
    const struct {
        const char* script;
        const char* printed;
    } cases[] = {
        {"show txtName", "txtName: Asha |  | Yes | Yes | tip=Her\\nname\n"},
        {"show txtNote", "txtNote:  | Remark | Yes | Yes | locked=Yes\n"},
        {"show tabPages", "tabPages: One |  | Yes | Yes\n"},
        {"show mnuGone", "mnuGone: Gone | Gone | Yes | No\n"},
        {"menu mnuHalf(0)\nshow mnuHalf(0)", "mnuHalf(0): Half | Half | Yes | Yes | checked=Yes\n"},
        {"show fpgDays", "fpgDays:  |  | Yes | Yes | status=2 of 3 shown\n"},
        {"cell fpgDays 2 Date\nshow fpgDays",
         "fpgDays: 03/01/2026 |  | Yes | Yes | current=2 Date | status=Row 2/2  (2 of 3 shown)\n"},
        {"show fpgDays 1 2",
         "fpgDays 1 Kind: CL | type=Combo | locked=Yes | back=default | fore=default | tag=old | "
         "choices=CL;EL | tip=cell 2\n"},
        {"show fpgDays 2 date",
         "fpgDays 2 Date: 03/01/2026 | type=Date | locked=Yes | back=80C0FF | fore=tooltip | tag= "
         "| "
         "choices= | tip=cell 21\n"},
        {"show fpgDays 2 ID",
         "fpgDays 2 ID: 3 | type=Number | locked=Yes | back=default | fore=default | tag= | "
         "choices= | tip=cell 20\n"},
        {"tip txtName\ntip fpgDays\ntip fpgDays 2 1\ntip fpgDays 0 Kind\ntip fpgDays 0 Off",
         "tip: Her\\nname\ntip: \ntip: cell 21\ntip: header\ntip: Day off\n"},
        {"dump fpgDays", "Date,Kind,Off\n01/01/2026,CL,0\n03/01/2026,CL,0\n"},
        {"dump fpgDays --hidden --colors",
         "ID,Date,Kind,Off\n1,01/01/2026,CL,0\n3,03/01/2026,CL,0\n"
         "fpgDays 1 Kind: locked=Yes\nfpgDays 2 Date: back=80C0FF | fore=tooltip\n"},
        {"check lstHeads EL Yes\ndump lstHeads\ndump cmbLeave", "CL,No\nEL,Yes\nCL\nEL\n"},
        {"menus fpgDays",
         "mnuDay: Day | enabled=Yes\nmnuHalf(0): Half | enabled=Yes | checked=No | below=mnuDay\n"},
        {"caption", "caption: All kinds\n"},
        {"controls",
         "name,kind,caption,value,enabled,visible\n"
         "txtName,text box,,Asha,Yes,Yes\ntxtNote,text box,Remark,,Yes,Yes\n"
         "cmbLeave,combo box,,,Yes,Yes\nlstHeads,list,,,Yes,Yes\n"
         "chkAll,check box,\"&All, always\",No,Yes,Yes\nlblCount,label,3,,Yes,Yes\n"
         "cmdGo,command,&Go,,Yes,Yes\ntabPages,tabs,,One,Yes,Yes\nfpgDays,grid,,,Yes,Yes\n"
         "mnuDay,menu,Day,,Yes,Yes\nmnuHalf(0),menu,Half,No,Yes,Yes\nmnuGone,menu,Gone,,Yes,No\n"}};
    for (const auto& c : cases) EXPECT_EQ(printed(c.script), c.printed) << c.script;
}

TEST(Script, TheFocusIsWhereTheUserOrTheScreenPutIt) {
    const struct {
        const char* script;
        const char* focus;
    } cases[] = {{"show txtNote", "none"},
                 {"set cmbLeave EL", "cmbLeave"},
                 {"key fpgDays Down\nclick lblCount", "fpgDays"},
                 {"cell fpgDays 1 1\nmenu mnuDay", "fpgDays"},
                 {"set chkAll Yes\nclick cmdGo", "txtName"}};
    for (const auto& c : cases) {
        const std::string all = printed(std::string(c.script) + "\nfocus");
        EXPECT_EQ(all.substr(0, all.find("error")).substr(all.find("focus:")),
                  std::string("focus: ") + c.focus + "\n")
            << c.script;
    }
}

// Keys that mean something wherever the focus is.
TEST(Script, PressesTheKeysOfTheScreen) {
    class Keys final : public Showing {
      public:
        explicit Keys(FrontEnd& frontEnd) : Showing(frontEnd) {
            txtName.onLeave = [this] {
                log += "left ";
                if (txtName.value == "held") setFocus(txtName);
            };
            cmdSave.onClick = [this] { log += "saved "; };
            mnuDay.onClick = [this] { log += "day "; };
            mnuDay.shortcut = "F5";
            mnuLog.onClick = [this] { this->frontEnd().information(log); };
        }
        Command cmdSave{*this, "cmdSave", "&Save"};
        Command mnuLog{*this, "cmdLog", "Log"};
        std::string log;
    };
    struct Case {
        const char* script;
        const char* log;
    };
    for (const Case& c : {Case{"key txtName Ctrl+S", "left saved "},
                          {"key txtName F5", "left day "},
                          {"key fpgDays F5", ""},  // the grid has taken it
                          {"set txtName held\nkey txtName Ctrl+S", "left left "}}) {
        const Driven run = drive<Keys>(std::string(c.script) + "\nclick cmdLog\n");
        EXPECT_NE(run.out.find(std::string("|Orvane Wagebook|") + c.log + "|OK"), std::string::npos)
            << c.script << ": " << run.out << run.errors;
    }
    EXPECT_EQ(printed<Keys>("key txtName Ctrl+PgDown\nshow tabPages"),
              "tabPages: Two |  | Yes | Yes\n");
    EXPECT_EQ(printed<Keys>("key txtName Ctrl+PgDown\nkey txtName Ctrl+PgDown\nkey txtName "
                            "Ctrl+PgDown\nset tabPages one\nshow tabPages"),
              "tabPages: One |  | Yes | Yes\n");
    EXPECT_EQ(printed<Keys>("key txtName Ctrl+N"),
              "error: line 1: txtName takes no key Ctrl+N now\n");
    const std::string sheet =
        printed<Keys>("key txtName F1\ndump fpgKeys\nkey fpgKeys Esc\ncaption");
    EXPECT_EQ(
        sheet.find("Key,Does\nAlt+A,\"All, always\"\nAlt+G,Go\nF5,Day\n\"Ctrl+S, Alt+S\",Save\n"),
        sheet.find("Key,Does"));
    EXPECT_NE(sheet.find("Space,turns the tick\n"), std::string::npos) << sheet;
    EXPECT_TRUE(sheet.ends_with("caption: All kinds\n")) << sheet;
}

TEST(Script, KeysAndHeadersMoveInAGrid) {
    const struct {
        const char* keys;     // one after the other, from no current cell
        const char* current;  // "" for none
    } cases[] = {{"Down", "1 Date"},
                 {"Down Down", "2 Date"},
                 {"Down Down Down Right", "2 Kind"},
                 {"Down Right Right Right Left", "1 Kind"},
                 {"Down End Down Up", "1 Off"},
                 {"Down Ctrl+End Home", "2 Kind"},  // the first of the row that can be edited
                 {"Down Ctrl+End Ctrl+Home", "1 Date"},
                 {"Enter", "1 Off"},  // the first that can be edited
                 {"Tab Tab Tab Shift+Tab", "2 Kind"},
                 {"F5", ""}};
    for (const auto& c : cases) {
        std::istringstream keys(c.keys);
        std::string script, key;
        while (keys >> key) script += "key fpgDays " + key + "\n";
        const std::string all = printed(script + "show fpgDays");
        const size_t from = all.find("current=");
        EXPECT_EQ(
            from == std::string::npos ? "" : all.substr(from + 8, all.rfind(" | ") - from - 8),
            c.current)
            << c.keys;
    }
    EXPECT_EQ(printed("key fpgDays F5\nshow lblCount"), "lblCount: key F5 | key F5 | Yes | Yes\n");
    EXPECT_EQ(
        printed("cell fpgDays 2 Off\nkey fpgDays Space\nkey fpgDays Enter\nshow fpgDays 2 Off")
            .substr(0, 14),
        "fpgDays 2 Off:")
        << "behind the last cell that can be edited there is nothing to go to";
    EXPECT_EQ(printed("cell fpgDays 1 Date\ndblclick fpgDays 1 Date\nshow lblCount"),
              "lblCount: twice 0 | twice 0 | Yes | Yes\n");
}

TEST(Script, AGridIsSortedFilteredFoundAndFilled) {
    const struct {
        const char* script;
        const char* printed;
    } cases[] = {
        {"header fpgDays Date\nheader fpgDays Date\ndump fpgDays",
         "Date,Kind,Off\n03/01/2026,CL,0\n01/01/2026,CL,0\n"},
        {"filter fpgDays Date = 03/01/2026; 04/01/2026\ndump fpgDays\nfilter fpgDays\nshow fpgDays",
         "Date,Kind,Off\n03/01/2026,CL,0\nfpgDays:  |  | Yes | Yes | status=2 of 3 shown\n"},
        {"find fpgDays 03/\nkey fpgDays Esc\nshow fpgDays",
         "says: 1 found\nfpgDays: 03/01/2026 |  | Yes | Yes | current=2 Date | status=Row 2/2  (2 "
         "of "
         "3 shown)\n"},
        {"cell fpgDays 2 Kind\ntype fpgDays e\nshow fpgDays",
         "fpgDays: CL |  | Yes | Yes | current=2 Kind | typing=e | status=Row 2/2  (2 of 3 "
         "shown)\n"},
        {"cell fpgDays 2 Kind\ntype fpgDays x\nkey fpgDays Esc\nshow fpgDays 2 Off",
         "says: No code begins with \"x\".\nfpgDays 2 Off: 0 | type=Check | locked=No | "
         "back=default | "
         "fore=default | tag= | choices= | tip=cell 23\n"},
        {"select fpgDays 1 Kind 2 Kind\npaste fpgDays EL\ndump fpgDays",
         "says: 1 set, 1 skipped (locked)\nDate,Kind,Off\n01/01/2026,CL,0\n03/01/2026,EL,0\n"},
        {"check fpgDays 1 Off Yes\ncell fpgDays 1 Off\nfill fpgDays 2 Off\nkey fpgDays Ctrl+Z\n"
         "dump fpgDays",
         "says: Undone: row 2, \"Off\"\nDate,Kind,Off\n01/01/2026,CL,1\n03/01/2026,CL,0\n"},
        {"item fpgDays Columns/Kind\nitem fpgDays Enter goes/Down\ndump fpgDays",
         "Date,Off\n01/01/2026,0\n03/01/2026,0\n"},
        {"cell fpgDays 2 Kind\ntype fpgDays x\nkey fpgDays Esc\ntype fpgDays x\nkey fpgDays Esc",
         "says: No code begins with \"x\".\nsays: No code begins with \"x\".\n"},
        {"item fpgDays Undo", "error: line 1: fpgDays takes no choice of Undo now\n"},
        {"hide fpgDays Kind Yes\nmove fpgDays Off Date\ndump fpgDays",
         "Off,Date\n0,01/01/2026\n0,03/01/2026\n"},
        {"legend fpgDays Weekly off\nshow fpgDays",
         "fpgDays: 03/01/2026 |  | Yes | Yes | current=2 Date | status=Row 2/2  (2 of 3 shown)\n"}};
    for (const auto& c : cases) EXPECT_EQ(printed(c.script), c.printed) << c.script;
}

class Popup final : public Showing {
  public:
    explicit Popup(FrontEnd& frontEnd) : Showing(frontEnd) {
        popup = true;
        fpgDays.singleRows = true;
    }
};

TEST(Script, NamesWhatThereIsInsteadOfWhatIsNot) {
    const struct {
        const char* line;
        const char* error;
    } cases[] = {{"cell fpgDays 3 1", "fpgDays has no row 3: there are 2"},
                 {"cell fpgDays one 1", "no row number: one"},
                 {"cell fpgDays 1 4", "fpgDays has no column 4: there are Date, Kind, Off"},
                 {"cell fpgDays 1 ID", "fpgDays has no column ID: there are Date, Kind, Off"},
                 {"cell fpgDays 1", "usage: cell GRID ROW COL [= TEXT]"},
                 {"cell fpgDays 2 Kind = SL", "\"SL\" is no entry of the list: row 2, \"Kind\"."},
                 {"controls fpgDays", "usage: controls"},
                 {"dump chkAll", "chkAll is no grid: there are fpgDays"},
                 {"dump fpgDays --all", "dump has no --all: there are --colors, --hidden"},
                 {"set cmbLeave SL", "cmbLeave has no entry SL: there are CL, EL"},
                 {"set lstHeads SL", "lstHeads has no entry SL: there are CL, EL"},
                 {"set tabPages Three", "tabPages has no page Three: there are One, Two"},
                 {"set chkAll Maybe", "not Yes or No: Maybe"},
                 {"set lblCount 3", "lblCount holds no value"},
                 {"key fpgDays F9", "fpgDays takes no key F9 now"},
                 {"key txtName F9", "txtName takes no key F9 now"},
                 {"menus txtName", "txtName has no menu"}};
    for (const auto& c : cases)
        EXPECT_EQ(printed(c.line), std::string("error: line 1: ") + c.error + "\n");
    EXPECT_EQ(printed<Popup>("key txtName Esc\nbut it has closed"), "");
}

TEST(Script, PrintsAGridWhereTheProgramCan) {
    class Lists final : public Screen {
      public:
        explicit Lists(FrontEnd& frontEnd) : Screen(frontEnd, "Lists", "Lists") {}
        Grid fpgList{*this, "fpgList", {{.caption = "Name"}}};
    };
    struct Case {
        const char *line, *out, *errors;
    };
    for (const Case& c : {Case{"print fpgList a b.pdf", "print: a b.pdf|2 pages\n", ""},
                          {"print fpgList a.pdf a3", "print: a.pdf|1 page\n", ""},
                          {"print fpgList a.pdf B5", "",
                           "error: line 1: print wants a file whose name ends in .pdf, and A4 or "
                           "A3 behind it\n"},
                          {"print fpgList a3", "",
                           "error: line 1: print wants a file whose name ends in .pdf, and A4 or "
                           "A3 behind it\n"},
                          {"print fpgList full.pdf", "", "error: line 1: no room\n"}}) {
        std::istringstream in(c.line);
        std::ostringstream out, errors;
        ScriptFrontEnd frontEnd(in, out, errors);
        frontEnd.printToPdf = [](const Grid&, const PrintHeading& heading, PaperSize paper,
                                 const std::string& path) -> size_t {
            EXPECT_EQ(heading.title, "Lists");
            if (path == "full.pdf") throw std::runtime_error("no room");
            return paper == PaperSize::A3 ? 1 : 2;
        };
        Lists(frontEnd).showModal();
        EXPECT_EQ(out.str(), std::string("open: Lists|Lists\n") + c.out + "close: Lists\n");
        EXPECT_EQ(errors.str(), c.errors) << c.line;
    }
    EXPECT_EQ(drive<Lists>("print fpgList a.pdf").errors,
              "error: line 1: this program does not print\n");
}

}  // namespace
}  // namespace owb
