// Every screen on the sample company, in a window: what takes input there is reached by the Tab key
// and has a name to be read aloud. When OWB_PICTURES names a folder a picture of each goes there;
// with OWB_DARK set, on a dark palette.
#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "app/ProcessLauncher.h"
#include "app/frmMain.h"
#include "exchange/screens/frmImport.h"
#include "formula/screens/frmFormulacustom.h"
#include "leave/screens/frmConfiguring.h"
#include "leave/screens/frmLeaveRecalc.h"
#include "leave/screens/modLeaveProcess.h"
#include "qt/contrast.h"
#include "qt/desk.h"
#include "qt/picture_contrast.h"
#include "qt/qt_text.h"
#include "sample/sample.h"
#include "screen/grid.h"
#include "screen/progress.h"
#include "session/modEmployeeViews.h"
#include "session/modOWBSetting.h"
#include "session/screens/modExternal.h"
#include "siblings/frmCompany.h"
#include "siblings/frmFilter.h"
#include "siblings/frmShell.h"
#include "support/company.h"

namespace owb::test {
namespace {

// Takes a picture of each screen that opens; a screen that waits for input gets the next deed.
class Photographer {
  public:
    Photographer(Company& company, QtFrontEnd& frontEnd, const QString& folder)
        : company_(company), frontEnd_(frontEnd), folder_(folder) {
        wait();
    }
    using Deeds = std::deque<std::function<void(ScreenWindow&)>>;
    // A screen that no launch line opens.
    void show(Screen& screen, Deeds deeds = {}) {
        deeds_ = std::move(deeds);
        screen.showModal();
    }
    void open(int32_t menuId, Deeds deeds) {
        deeds_ = std::move(deeds);
        company_.session.gMenuId = menuId;
        frmMain(company_.session, frontEnd_)
            .RunOn("Provider=OWBEmbedded;Data Source=" + company_.folder.file("company.db"), menuId,
                   1);
    }

    size_t screens() const { return taken_.size(); }

  private:
    // A single shot each time: a repeating timer rests while its own work waits in a loop.
    void wait() {
        QTimer::singleShot(40, &life_, [this] { look(); });
    }
    void look() {
        wait();
        ScreenWindow* top = frontEnd_.top();
        if (top == nullptr) return;
        // A question of a screen that is told to close.
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            if (auto* yes = box->button(QMessageBox::Yes)) return yes->click();
        // Of one that works by itself, a picture while it does.
        const bool first = taken_[top->screen().name()]++ == 0;
        const bool works = !top->waitsForInput() && taken_[top->screen().name()] < 4;
        if (first || works) {
            take(*top);
            if (first) {
                const QPointer<QWidget> focus = top->focusWidget();
                checkReach(*top);
                checkTabs(*top);
                checkMnemonics(top->screen());
                checkSize(*top);
                if (focus) focus->setFocus(Qt::OtherFocusReason);
            }
            return;
        }
        if (!top->waitsForInput()) return;  // works by itself
        if (deeds_.empty()) {
            take(*top);  // as the deeds have left it
            top->close();
            return;
        }
        const auto deed = std::move(deeds_.front());
        deeds_.pop_front();
        deed(*top);
        if (ScreenWindow* now = frontEnd_.top()) now->sync();
    }

    void take(ScreenWindow& window) {
        if (!folder_.isEmpty()) window.grab().save(folder_ + "/" + window.objectName() + ".png");
    }
    static void checkReach(ScreenWindow& window) {
        const std::string screen = window.screen().name();
        for (const Control* control : window.screen().controls()) {
            const auto* widget = window.findChild<QWidget*>(toQt(control->name()));
            if (widget == nullptr || !widget->isVisible()) continue;
            const std::string where = screen + "." + control->name();
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << where;
            const bool read = dynamic_cast<const Label*>(control) && !control->onClick;
            const bool shown = dynamic_cast<const ProgressBar*>(control) != nullptr;
            // Of a group of options the Tab key comes to one.
            const auto* option = dynamic_cast<const OptionButton*>(control);
            const bool passed = option && option->group().tabStop() != option;
            EXPECT_EQ(!(read || shown || passed), bool(widget->focusPolicy() & Qt::TabFocus))
                << where;
        }
    }
    // The Tab key comes to each of them, one after the other, and round again.
    static void checkTabs(ScreenWindow& window) {
        if (!window.waitsForInput()) return;
        std::set<const Control*> reached;
        for (size_t i = 0; i < 2 * window.screen().controls().size(); ++i) {
            QWidget* now = window.focusWidget();
            const bool grid = dynamic_cast<QTableView*>(now) != nullptr;
            QTest::keyClick(now, grid ? Qt::Key_F6 : Qt::Key_Tab);
            if (const ControlView* at = window.viewAround(window.focusWidget()))
                reached.insert(&at->control());
        }
        for (const Control* control : window.screen().controls()) {
            const auto* widget = window.findChild<QWidget*>(toQt(control->name()));
            if (widget == nullptr || !widget->isVisible() || !widget->isEnabled()) continue;
            EXPECT_EQ(reached.contains(control), bool(widget->focusPolicy() & Qt::TabFocus))
                << window.screen().name() << "." << control->name();
        }
    }
    // No two controls of a screen are pressed by one letter.
    static void checkMnemonics(const Screen& screen) {
        std::map<char, std::string> held;
        const auto take = [&](const std::string& caption) {
            const char letter = mnemonicOf(caption);
            if (letter == 0) return;
            EXPECT_TRUE(held.emplace(letter, caption).second)
                << screen.name() << ": " << held[letter] << " and " << caption;
        };
        for (const Control* control : screen.controls()) {
            if (dynamic_cast<const MenuItem*>(control)) continue;
            take(control->caption);
            if (const auto* tabs = dynamic_cast<const Tabs*>(control))
                for (const std::string& page : tabs->pages) take(page);
        }
    }
    // On the desktop as a whole; on one of half its size everything is reached by scrolling.
    static void checkSize(ScreenWindow& window) {
        constexpr int kTitle = 30;  // pixels
        const QSize desktop = window.QWidget::screen()->size();
        EXPECT_EQ(desktop, QSize(1366, 768));
        const std::string screen = window.screen().name();
        EXPECT_LE(window.width(), desktop.width()) << screen;
        EXPECT_LE(window.height() + kTitle, desktop.height()) << screen;
        if (window.screen().popup || !window.waitsForInput()) return;
        const QSize before = window.size();
        window.resize(desktop.width() / 2, desktop.height() / 2 - kTitle);
        QApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        EXPECT_LE(window.height() + kTitle, desktop.height() / 2) << screen;
        for (const Control* control : window.screen().controls()) {
            auto* widget = window.findChild<QWidget*>(toQt(control->name()));
            if (widget == nullptr || !widget->isVisible() || !widget->isEnabled()) continue;
            if (!(widget->focusPolicy() & Qt::TabFocus)) continue;
            widget->setFocus(Qt::TabFocusReason);
            const QRect seen = widget->visibleRegion().boundingRect();
            const bool isGrid = dynamic_cast<const Grid*>(control) != nullptr;
            const int least = isGrid ? 6 * widget->fontMetrics().height() : widget->height();
            EXPECT_GE(seen.height(), std::min(least, widget->height()))
                << screen << "." << control->name();
            EXPECT_GT(seen.width(), 0) << screen << "." << control->name();
        }
        window.resize(before);
    }

    Company& company_;
    QtFrontEnd& frontEnd_;
    QString folder_;
    QObject life_;
    std::map<std::string, int> taken_;  // looks at each
    std::deque<std::function<void(ScreenWindow&)>> deeds_;
};

TEST(Qt, EveryScreenIsReachedByKeysAndNamed) {
    const char* folder = std::getenv("OWB_PICTURES");
    if (std::getenv("OWB_DARK") != nullptr) QApplication::setPalette(darkPalette());
    Company company;
    NoProgress quiet;
    sample::makeSample(company.session.gConn, {}, quiet);
    QtFrontEnd frontEnd(company.settings);
    Photographer photographer(company, frontEnd, folder ? folder : "");
    const auto f2 = [](const char* control) {
        return [control](ScreenWindow& top) {
            QTest::keyClick(top.findChild<QWidget*>(control), Qt::Key_F2);
        };
    };
    SetHostNames(company.session);
    LoadOptSet(company.session);
    LoadCaptions(company.session);
    company.session.gFirstLeaveMonth = static_cast<int32_t>(
        std::atoi(company.value("SELECT MIN(MONTHYEAR) FROM MAS_MONTHYEAR").c_str()));
    CreateFilterObjects(company.session);
    frmConfiguring configuring(company.session, frontEnd);
    photographer.show(configuring);
    modLeaveProcess process(company.session, frontEnd);
    photographer.show(process);
    bool ended = false;  // what the launcher has started: it asks before it closes over that
    frmShell shell(
        company.session, frontEnd, company.folder.file("shell"),
        [](const std::string&) { return 1; }, [&ended](int) { return ended; });
    photographer.show(shell, {[](ScreenWindow& top) {
                                  dynamic_cast<Grid*>(top.screen().find("fpgScreen"))->goTo(3, 0);
                                  top.screen().find("cmdOpen")->click();
                              },
                              [&ended](ScreenWindow& top) {
                                  ended = true;
                                  top.screen().tick();
                              }});
    company.settings.SaveSetting(
        "OWBShell", "Recent1",
        company.session.gGenCmn.FnStrEncryptWord(company.session.gConn.ConnectionString()));
    frmCompany chooser(company.session, frontEnd);
    photographer.show(chooser);
    frmFilter filter(company.session, frontEnd);
    photographer.show(filter);
    frmLeaveRecalc recalc(company.session, frontEnd);
    photographer.show(recalc);
    company.run(
        "INSERT INTO MAS_FORMULACUSTOM (FID, FNAME, FTYPE, FQUERY, MODULEID) SELECT COUNT(*) + 1, "
        "'Years of service', 'Leave', 'SELECT DATEDIFF(YEAR, DOJ, GETDATE()) FROM MAS_EMPLOYEE "
        "WHERE EMPID = $EMPID$', 2 FROM MAS_FORMULACUSTOM");
    frmFormulacustom queries(company.session, frontEnd);
    photographer.show(queries, {[](ScreenWindow& top) {
                          dynamic_cast<Grid*>(top.screen().find("fpgFormulaQry"))->goTo(0, 1);
                      }});
    frmImport import(
        frontEnd, "Import Holiday List", {"Date", "Description", "Type"},
        {{4, {"15/08/2026", "Independence Day", "National"}, "Holiday already available.", true},
         {5, {"09/11/2026", "Bhai Dooj", "General"}, "Add", false}});
    photographer.show(import);
    ProcessLauncher launcher(company.settings);
    company.session.siblings = &launcher;
    // Runs until the company's folder goes.
    std::ofstream(company.folder.file("OWBFilter"))
        << "#!/bin/sh\nwhile [ -e \"$0\" ]; do sleep 0.1; done\n";
    std::filesystem::permissions(company.folder.file("OWBFilter"),
                                 std::filesystem::perms::owner_all);
    ShowFilterProgram(company.session, frontEnd);
    photographer.open(1500, {[](ScreenWindow& top) { top.press("F1"); }});
    photographer.open(1503, {[](ScreenWindow& top) {
                          dynamic_cast<Grid*>(top.screen().find("fpgAtt"))->clickCell(2, 0);
                          top.screen().find("cmdSetting")->click();
                      }});
    photographer.open(1511, {f2("cmbMonthYear")});
    photographer.open(1512, {f2("txtHDate")});
    EXPECT_EQ(photographer.screens(), 17U);
}

}  // namespace
}  // namespace owb::test
