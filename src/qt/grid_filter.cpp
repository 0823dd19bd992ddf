#include "qt/grid_filter.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/number_text.h"
#include "qt/qt_text.h"
#include "screen/grid.h"

namespace owb {

GridFilter::GridFilter(const Grid& grid, size_t column, QWidget* parent)
    : QDialog(parent), list_(new QListWidget) {
    setWindowTitle(toQt(grid.column(column).caption));
    setObjectName("gridFilter");
    auto* all = new QVBoxLayout(this);
    auto* find = new QLineEdit;
    find->setAccessibleName("Find");
    find->setPlaceholderText("Find");
    all->addWidget(find);
    all->addWidget(list_);
    list_->setAccessibleName(windowTitle());
    const auto& filters = grid.sight.filters();
    const auto held = filters.find(column);
    for (const auto& [text, count] : grid.sight.values(column)) {
        auto* item = new QListWidgetItem(
            toQt((text.empty() ? "(empty)" : text) + "   " + groupIndian(std::to_string(count))),
            list_);
        item->setData(Qt::UserRole, toQt(text));
        const bool on = held == filters.end() || held->second.contains(text);
        item->setCheckState(on ? Qt::Checked : Qt::Unchecked);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* every = buttons->addButton("&All", QDialogButtonBox::ActionRole);
    auto* none = buttons->addButton("&None", QDialogButtonBox::ActionRole);
    all->addWidget(buttons);
    connect(find, &QLineEdit::textChanged, this, [this](const QString& text) { narrow(text); });
    connect(every, &QPushButton::clicked, this, [this] { setShown(true); });
    connect(none, &QPushButton::clicked, this, [this] { setShown(false); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void GridFilter::narrow(const QString& text) {
    for (int i = 0; i < list_->count(); ++i) {
        QListWidgetItem* item = list_->item(i);
        item->setHidden(!item->data(Qt::UserRole).toString().contains(text, Qt::CaseInsensitive));
    }
}

void GridFilter::setShown(bool on) {
    for (int i = 0; i < list_->count(); ++i)
        if (!list_->item(i)->isHidden())
            list_->item(i)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
}

std::optional<std::set<std::string>> GridFilter::chosen() const {
    std::set<std::string> texts;
    for (int i = 0; i < list_->count(); ++i)
        if (!list_->item(i)->isHidden() && list_->item(i)->checkState() == Qt::Checked)
            texts.insert(fromQt(list_->item(i)->data(Qt::UserRole).toString()));
    if (static_cast<int>(texts.size()) == list_->count()) return std::nullopt;
    return texts;
}

}  // namespace owb
