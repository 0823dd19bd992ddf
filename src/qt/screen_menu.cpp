// The menu over a control: the screen's items with their keys, and below them what the kind of
// control offers by itself.
#include <QMenu>

#include "qt/qt_text.h"
#include "qt/screen_window.h"

namespace owb {

bool ScreenWindow::hasMenu(const Control& control) const {
    for (const Control* other : screen_.controls())
        if (const auto* item = dynamic_cast<const MenuItem*>(other))
            if (&item->over == &control && item->visible) return true;
    return false;
}

void ScreenWindow::fillMenu(QMenu& menu, const Control& control, MenuItem*& chosen) {
    std::map<const MenuItem*, QMenu*> below{{nullptr, &menu}};
    for (Control* other : screen_.controls()) {
        auto* item = dynamic_cast<MenuItem*>(other);
        if (item == nullptr || &item->over != &control || !item->visible) continue;
        const auto into = below.find(item->parent);
        if (into == below.end()) continue;  // below one that is hidden
        if (item->caption == "-") {
            into->second->addSeparator();
            continue;
        }
        const bool opens = std::any_of(
            screen_.controls().begin(), screen_.controls().end(), [&](const Control* candidate) {
                const auto* child = dynamic_cast<const MenuItem*>(candidate);
                return child != nullptr && child->parent == item;
            });
        if (opens) {
            below[item] = into->second->addMenu(toQt(item->caption));
            below[item]->setEnabled(item->enabled);
            continue;
        }
        QString text = toQt(item->caption);
        if (!item->shortcut.empty()) text += "\t" + toQt(item->shortcut);
        QAction* action = into->second->addAction(text);
        action->setEnabled(item->enabled);
        action->setCheckable(item->checkable);
        action->setChecked(item->checked);
        connect(action, &QAction::triggered, this, [&chosen, item] { chosen = item; });
    }
}

bool ScreenWindow::openMenu(const Control& control, const QPoint& at) {
    if (!idle_ || !control.takesInput()) return false;
    QMenu menu(this);
    MenuItem* chosen = nullptr;
    fillMenu(menu, control, chosen);
    const size_t items = static_cast<size_t>(menu.actions().size());
    viewOf_.at(&control)->addOwnItems(menu);
    if (menu.isEmpty()) return false;
    if (items > 0 && items < static_cast<size_t>(menu.actions().size()))
        menu.insertSeparator(menu.actions().at(static_cast<qsizetype>(items)));
    menu.exec(at);
    if (chosen != nullptr) act(*chosen, [&] { chosen->click(); });
    return true;
}

}  // namespace owb
