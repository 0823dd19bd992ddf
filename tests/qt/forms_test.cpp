// Forms as hands and eyes meet them: the focus, the wheel, groups of options, refusals, keys of the
// screen, what is typed and not saved.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QWheelEvent>

#include "qt/contrast.h"
#include "qt/desk.h"
#include "qt/field_frame.h"
#include "qt/qt_text.h"
#include "screen/lists.h"
#include "screen/text_box.h"

namespace owb::test {
namespace {

class Form final : public Screen {
  public:
    explicit Form(FrontEnd& frontEnd) : Screen(frontEnd, "Form", "Form") {
        txtName.value = "Asha";
        txtRate.alignRight = true;
        for (const char* kind : {"Casual", "Sick", "Earned"}) cmbKind.add(kind);
        cmbKind.select(0);
        cmbFree.add("Pune");
        optMonthly.choose();
        cmdSave.onClick = [this] { log += "save;"; };
        txtRate.onLeave = [this] {
            if (txtRate.value == "x") txtRate.refuse("No number.");
        };
        mnuShow.shortcut = "F5";
        mnuShow.onClick = [this] { log += "show;"; };
    }
    TextBox txtName{*this, "txtName"};
    TextBox txtRate{*this, "txtRate"};
    Combo cmbKind{*this, "cmbKind"};
    Combo cmbFree{*this, "cmbFree"};
    CheckBox chkOn{*this, "chkOn", "On"};
    OptionGroup optKind;
    OptionButton optDaily{*this, optKind, "optDaily", "Daily"};
    OptionButton optMonthly{*this, optKind, "optMonthly", "Monthly"};
    OptionButton optHourly{*this, optKind, "optHourly", "Hourly"};
    Tabs tabPages{*this, "tabPages", {"&One", "&Two"}};
    TextBox txtDeep{*this, "txtDeep"};
    Command cmdSave{*this, "cmdSave", "&Save"};
    CloseCommand cmdClose{*this};
    MenuItem mnuShow{*this, txtName, "mnuShow", "Show"};
    std::string log;
    Control* changed = nullptr;
    bool mayGo = true;

    bool isChanged(const Control& control) const override { return &control == changed; }
    bool mayClose() override {
        log += "close?;";
        return mayGo;
    }
    Layout layout() override {
        return column({form({item("Name", txtName), item("Rate", txtRate, "days"),
                             item("Kind", cmbKind), item("City", cmbFree), item("", chkOn)}),
                       row({item(optDaily), item(optMonthly), item(optHourly)}),
                       tabs(tabPages, {column({}), form({item("Deep", txtDeep)})}),
                       row({space(), item(cmdSave), item(cmdClose)})});
    }
};

struct Forms : ::testing::Test {
    Desk desk;
    Form screen{desk.frontEnd};
    QObject life;  // of what a test leaves to the event loop

    QWidget* focus() { return QApplication::focusWidget(); }
    void key(int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QTest::keyClick(focus(), static_cast<Qt::Key>(key), with);
    }
    QWidget* framed() {
        auto* frame = dynamic_cast<FieldFrame*>(desk.widget("focusFrame"));
        return frame != nullptr && frame->isVisible() ? frame->surrounded() : nullptr;
    }
};

TEST_F(Forms, EnterGoesThroughEveryFieldAndChangesNone) {
    std::string way;
    desk.then([&] {
        EXPECT_TRUE(desk.widget("txtName")->hasFocus());
        EXPECT_EQ(desk.widget<QLineEdit>("txtName")->selectedText(), "Asha");
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(framed(), desk.frontEnd.top()->viewAround(focus())->widget());
            key(Qt::Key_Return);
            way += fromQt(desk.frontEnd.top()->viewAround(focus()) == nullptr
                              ? QString("tabs")
                              : desk.frontEnd.top()->viewAround(focus())->widget()->objectName()) +
                   " ";
        }
    });
    screen.showModal();
    EXPECT_EQ(way, "txtRate cmbKind cmbFree chkOn optMonthly tabs ");
    EXPECT_FALSE(screen.chkOn.value);
    EXPECT_TRUE(screen.optMonthly.value());
}

TEST_F(Forms, SpaceTicksAndArrowsChoose) {
    desk.then([&] {
        desk.widget("chkOn")->setFocus();
        key(Qt::Key_Space);
        desk.widget("optMonthly")->setFocus();
        key(Qt::Key_Right);
    });
    desk.then([&] {
        EXPECT_TRUE(screen.chkOn.value);
        EXPECT_TRUE(screen.optHourly.value());
        EXPECT_TRUE(desk.widget("optHourly")->hasFocus());
        EXPECT_EQ(framed(), desk.widget("optHourly"));
    });
    screen.showModal();
}

TEST_F(Forms, TheWheelChangesABoxOnlyWithTheFocus) {
    const auto wheel = [&](const char* name) {
        QWidget* box = desk.widget(name);
        const QPointF at = box->rect().center();
        QWheelEvent turn(at, box->mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(box, &turn);
    };
    desk.then([&] {
        desk.widget("txtName")->setFocus();
        wheel("cmbKind");
        EXPECT_EQ(screen.cmbKind.value, "Casual");
        desk.widget("cmbKind")->setFocus();
        wheel("cmbKind");
        EXPECT_EQ(screen.cmbKind.value, "Sick");
    });
    screen.showModal();
}

TEST_F(Forms, EscEndsTheInnermostFirst) {
    screen.mayGo = false;
    desk.then([&] {
        desk.widget("txtName")->setFocus();
        QTest::keyClicks(focus(), "Ravi");
        key(Qt::Key_Escape);
        EXPECT_EQ(screen.txtName.value, "Asha");
        desk.widget("cmbFree")->setFocus();
        QTest::keyClicks(focus(), "Nas");
        key(Qt::Key_Escape);
        EXPECT_EQ(desk.widget<QComboBox>("cmbFree")->currentText(), "");
        EXPECT_EQ(screen.log, "");
        key(Qt::Key_Escape);
        desk.widget<QPushButton>("cmdClose")->click();
        desk.frontEnd.top()->close();
        EXPECT_EQ(screen.log, "close?;close?;close?;");
        EXPECT_TRUE(screen.isOpen());
        screen.mayGo = true;
    });
    screen.showModal();
}

TEST_F(Forms, KeysOfTheScreenWorkFromEveryField) {
    desk.then([&] {
        for (const char* name : {"txtName", "cmbKind", "cmbFree", "chkOn", "optMonthly"}) {
            desk.widget(name)->setFocus();
            key(Qt::Key_S, Qt::ControlModifier);
            key(Qt::Key_F5);
            EXPECT_EQ(screen.log, "save;show;") << name;
            screen.log.clear();
            key(Qt::Key_PageDown, Qt::ControlModifier);
            EXPECT_EQ(desk.widget<QTabWidget>("tabPages")->currentIndex(), 1) << name;
            key(Qt::Key_PageUp, Qt::ControlModifier);
            EXPECT_EQ(screen.tabPages.page, 0U) << name;
        }
        EXPECT_EQ(screen.cmbKind.value, "Casual");
        EXPECT_EQ(desk.widget("cmdSave")->toolTip(), "(Ctrl+S)");
    });
    screen.showModal();
}

TEST_F(Forms, WhatIsRefusedStaysWithItsReason) {
    desk.then([&] {
        desk.widget("txtRate")->setFocus();
        QTest::keyClicks(focus(), "x");
        EXPECT_EQ(desk.widget("refusal"), nullptr) << "not while it is typed";
        key(Qt::Key_Tab);
    });
    desk.then([&] {
        auto* bubble = desk.widget<QLabel>("refusal");
        ASSERT_NE(bubble, nullptr);
        EXPECT_TRUE(bubble->isVisible());
        EXPECT_EQ(bubble->text(), "No number.");
        EXPECT_EQ(desk.widget<QLineEdit>("txtRate")->text(), "x");
        const QPalette& colors = bubble->palette();
        EXPECT_GE(contrast(colors.color(QPalette::WindowText), colors.color(QPalette::Window)),
                  kTextContrast);
        desk.widget("txtRate")->setFocus();
        key(Qt::Key_Backspace);
        EXPECT_EQ(desk.widget("refusal"), nullptr);
    });
    screen.showModal();
}

TEST_F(Forms, ChangesAreSignedAtTheFieldAndItsPage) {
    screen.status = "Saved 14:02";
    desk.then([&] {
        EXPECT_EQ(desk.widget<QLabel>("status")->text(), "Saved 14:02");
        screen.changed = &screen.txtDeep;
        desk.frontEnd.top()->sync();
        EXPECT_EQ(desk.widget<QTabWidget>("tabPages")->tabText(1), "&Two" + kChangedSign);
        screen.optHourly.choose();
        screen.changed = &screen.optHourly;
        desk.frontEnd.top()->sync();
        EXPECT_EQ(desk.widget<QTabWidget>("tabPages")->tabText(1), "&Two");
        EXPECT_EQ(desk.widget<QRadioButton>("optHourly")->text(), "Hourly" + kChangedSign);
    });
    screen.showModal();
}

TEST_F(Forms, ALetterPressesAtOnceAndShiftF10OpensTheMenu) {
    QStringList items;
    desk.then([&] {
        desk.widget("txtName")->setFocus();
        key(Qt::Key_S, Qt::AltModifier);
        EXPECT_EQ(screen.log, "save;") << "not after a while in which typing goes elsewhere";
        desk.widget("txtName")->setFocus();
        QTimer::singleShot(50, &life, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (const QAction* action : menu->actions()) items << action->text();
            menu->close();
        });
        key(Qt::Key_F10, Qt::ShiftModifier);
    });
    screen.showModal();
    EXPECT_EQ(items.join(';'), "Show\tF5");
}

TEST_F(Forms, ADeniedCommandBearsASign) {
    desk.then([&] {
        EXPECT_TRUE(desk.widget<QPushButton>("cmdSave")->icon().isNull());
        screen.cmdSave.tag = "NA";
        desk.frontEnd.top()->sync();
        EXPECT_FALSE(desk.widget<QPushButton>("cmdSave")->icon().isNull());
    });
    screen.showModal();
}

TEST_F(Forms, AFileThatNothingShowsIsNamed) {
    QString told;
    desk.then([&] {
        QTimer::singleShot(50, &life, [&] {
            auto* box = dynamic_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            told = box->text();
            box->accept();
        });
        desk.frontEnd.openFile("/nowhere/list.xlsx");
    });
    screen.showModal();
    EXPECT_TRUE(told.contains("/nowhere/list.xlsx")) << fromQt(told);
}

// What a widget draws stands out from its ground: the strongest pixel of its outline, measured.
double outlineContrast(QWidget& widget, const QRect& outline) {
    QWidget& window = *widget.window();
    const QImage picture = window.grab().toImage();
    const QColor ground = window.palette().color(QPalette::Window);
    double best = 1;
    const QPoint from = widget.mapTo(&window, outline.topLeft());
    for (int y = 0; y < outline.height(); ++y)
        for (int x = 0; x < std::min(outline.width(), 3); ++x)
            best = std::max(best, contrast(picture.pixelColor(from + QPoint(x, y)), ground));
    return best;
}

TEST_F(Forms, BordersAndTheFocusStandOutInBothPalettes) {
    const QPalette before = QApplication::palette();
    const QPalette dark(QColor(53, 53, 53), QColor(42, 42, 42));
    for (const QPalette& palette : {before, dark}) {
        desk.then([&, palette] {
            QApplication::setPalette(palette);
            desk.widget("cmbKind")->setFocus();
            for (const char* name :
                 {"txtName", "cmbFree", "chkOn", "optDaily", "cmdSave", "cmbKind", "txtRate"}) {
                QWidget& widget = *desk.widget(name);
                EXPECT_GE(outlineContrast(widget, widget.rect()), kMarkContrast) << name;
            }
            const QPalette colors = desk.widget("txtName")->palette();
            struct Pair {
                QPalette::ColorRole text, ground;
            };
            for (const Pair& pair : {Pair{QPalette::Text, QPalette::Base},
                                     {QPalette::WindowText, QPalette::Window},
                                     {QPalette::ButtonText, QPalette::Button},
                                     {QPalette::HighlightedText, QPalette::Highlight}})
                EXPECT_GE(contrast(colors.color(pair.text), colors.color(pair.ground)),
                          kTextContrast)
                    << pair.text;
            QWidget& frame = *desk.widget("focusFrame");
            ASSERT_TRUE(frame.isVisible());
            EXPECT_GE(outlineContrast(frame, frame.rect()), kMarkContrast);
        });
    }
    screen.showModal();
    QApplication::setPalette(before);
}

}  // namespace
}  // namespace owb::test
