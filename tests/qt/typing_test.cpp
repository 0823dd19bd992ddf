// A clerk types into every kind of box, with pauses between the keys, and goes on by Enter.
#include <gtest/gtest.h>

#include "qt/desk.h"
#include "qt/qt_text.h"
#include "session/screens/RowScreen.h"
#include "session/screens/family_combos.h"
#include "support/company.h"

namespace owb::test {
namespace {

class Boxes final : public SessionScreen {
  public:
    Boxes(Session& session, FrontEnd& frontEnd)
        : SessionScreen(session, frontEnd, "Boxes", "Boxes") {
        txtShort.maxLength = 4;
        cmbLeave.editable = false;
        for (const char* leave : {"Casual", "Comp Off", "Loss of Pay"}) cmbLeave.add(leave);
        for (const char* city : {"Pune", "Patna"}) cmbCity.add(city);
        optDaily.choose();
    }
    TextBox txtShort{*this, "txtShort"};
    NumberBox txtRate{*this, "txtRate"};
    DateBox txtFrom{*this, "txtFrom"};
    Combo cmbLeave{*this, "cmbLeave"};
    Combo cmbCity{*this, "cmbCity"};
    CheckBox chkOn{*this, "chkOn", "On"};
    OptionGroup optKind;
    OptionButton optDaily{*this, optKind, "optDaily", "Daily"};
    OptionButton optMonthly{*this, optKind, "optMonthly", "Monthly"};
    TextBox txtNote{*this, "txtNote"};
};

// Today is 2024-08-15. Keys: a character is typed; <Name> is a key.
struct Case {
    const char* box;
    const char* keys;
    const char* holds;  // the box, when the focus has gone on
    const char* refusal;
};
constexpr Case kCases[] = {
    {"txtShort", "Asha<Enter>", "Asha", ""},
    {"txtShort", "Ramesh<Enter>", "Rame", ""},
    {"txtShort", "ab<Backspace>c<Enter>", "ac", ""},
    {"txtShort", "ab<Esc>d<Enter>", "d", ""},
    {"txtRate", "12.5<Enter>", "12.5", ""},
    {"txtRate", "1x2..5<Enter>", "12.5", ""},
    {"txtFrom", "5<Enter>", "05/08/2024", ""},
    {"txtFrom", "5/3<Enter>", "05/03/2024", ""},
    {"txtFrom", "+1<Enter>", "16/08/2024", ""},
    {"txtFrom", "05-Mar-2026<Enter>", "05/03/2026", ""},
    {"txtFrom", "05/mar/26<Tab>", "05/03/2026", ""},
    {"txtFrom", "31/2/24<Enter>", "31/2/24", "\"31/2/24\" is no date."},
    {"cmbLeave", "c<Enter>", "Casual", ""},
    {"cmbLeave", "co<Enter>", "Comp Off", ""},
    {"cmbLeave", "cl<Enter>", "Casual", ""},
    {"cmbLeave", "<F4>co<Enter><Enter>", "Comp Off", ""},
    {"cmbLeave", "l<Down><Up><Enter>", "Comp Off", ""},
    {"cmbCity", "patna<Enter>", "Patna", ""},
    {"cmbCity", "Nasik<Tab>", "Nasik", ""},
    {"chkOn", "<Enter>", "No", ""},
    {"chkOn", "<Space><Enter>", "Yes", ""},
    {"optDaily", "<Enter>", "Yes", ""},
    {"optDaily", "<Down><Enter>", "No", ""},
    {"txtNote", "two  words<Enter>", "two  words", ""},
};

TEST(Typing, IntoEveryKindOfBoxWithPauses) {
    Company company;
    // Whatever the toolkit forgets after a while it forgets between two keys here.
    const int interval = QApplication::keyboardInputInterval();
    QApplication::setKeyboardInputInterval(1);
    for (const Case& c : kCases) {
        Desk desk;
        Boxes screen(company.session, desk.frontEnd);
        std::deque<std::string> keys;
        for (const char* at = c.keys; *at != 0; ++at) {
            const char* end = *at == '<' ? std::strchr(at, '>') : at;
            keys.emplace_back(at, end + 1);
            at = end;
        }
        desk.then([&] { desk.widget(c.box)->setFocus(Qt::TabFocusReason); });
        for (const std::string& key : keys)
            desk.then([key] {
                constexpr int kPause = 8;  // milliseconds
                QTest::qSleep(kPause);
                QWidget* focus = QApplication::focusWidget();
                if (key.size() == 1)
                    QTest::keyClicks(focus, QString::fromStdString(key));
                else
                    QTest::keyClick(focus, static_cast<Qt::Key>(QKeySequence(QString::fromStdString(
                                               key.substr(1, key.size() - 2)))[0]
                                                                    .key()));
            });
        desk.then([&] {
            Control* box = screen.find(c.box);
            EXPECT_EQ(box->text(), c.holds) << c.box << " " << c.keys;
            EXPECT_EQ(box->refusal(), c.refusal) << c.box << " " << c.keys;
            EXPECT_FALSE(desk.widget(c.box)->hasFocus() && std::string(c.box) != "optDaily")
                << c.box << " " << c.keys;
        });
        screen.showModal();
    }
    QApplication::setKeyboardInputInterval(interval);
}

}  // namespace
}  // namespace owb::test
