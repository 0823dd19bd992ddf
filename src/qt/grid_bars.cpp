#include "qt/grid_bars.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>

#include "base/number_text.h"
#include "qt/cell_colors.h"
#include "qt/grid_delegate.h"
#include "qt/grid_table.h"
#include "qt/qt_text.h"

namespace owb {

namespace {

constexpr int kBarMargin = 2, kBarSpacing = 6, kFindWidth = 220, kTotalsRoom = 8;

QHBoxLayout* barLayout(QWidget* bar) {
    auto* line = new QHBoxLayout(bar);
    line->setContentsMargins(kBarMargin, kBarMargin, kBarMargin, kBarMargin);
    line->setSpacing(kBarSpacing);
    return line;
}

QToolButton* chip(const QString& text, const QString& name) {
    auto* button = new QToolButton;
    button->setText(text);
    button->setAccessibleName(text);
    button->setObjectName(name);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

}  // namespace

// --- legend and filters ---

GridChips::GridChips(Grid& grid, GridDeed act)
    : grid_(grid), act_(std::move(act)), line_(barLayout(this)) {
    hide();
}

void GridChips::addLegend() {
    for (const LegendEntry& entry : grid_.legend) {
        const CellColors colors = cellColors(entry.color, kDefaultColor, palette());
        QToolButton* button = chip(toQt(entry.caption), "legendChip");
        button->setStyleSheet(
            QString("QToolButton { background: %1; color: %2; border: 1px solid "
                    "%3; padding: 2px 6px; }")
                .arg(colors.back.name(), colors.fore.name(), lineColor(palette()).name()));
        button->setToolTip("To the next such cell");
        connect(button, &QToolButton::clicked, this,
                [this, color = entry.color] { act_([&] { grid_.cursor.nextOfColor(color); }); });
        line_->addWidget(button);
    }
}

void GridChips::addFilters() {
    for (const auto& [column, texts] : grid_.sight.filters()) {
        const std::string what =
            texts.size() == 1 ? *texts.begin() : std::to_string(texts.size()) + " texts";
        QToolButton* button = chip(toQt(grid_.column(column).caption + ": " +
                                        (what.empty() ? "(empty)" : what) + "  \u00d7"),
                                   "filterChip");
        button->setToolTip("Takes this filter away");
        connect(button, &QToolButton::clicked, this,
                [this, c = column] { act_([&] { grid_.sight.clearFilter(c); }); });
        line_->addWidget(button);
    }
    if (grid_.sight.filters().empty()) return;
    line_->addWidget(new QLabel(toQt(grid_.sight.summary())));
}

void GridChips::sync() {
    QString shown = palette().color(QPalette::Base).name();
    for (const LegendEntry& entry : grid_.legend)
        shown += toQt(entry.caption) + QString::number(entry.color);
    for (const auto& [column, texts] : grid_.sight.filters()) {
        shown += "|" + QString::number(column) + toQt(grid_.sight.summary());
        for (const std::string& text : texts) shown += ";" + toQt(text);
    }
    if (shown == shown_) return;
    shown_ = shown;
    while (QLayoutItem* old = line_->takeAt(0)) {
        if (old->widget() != nullptr) old->widget()->deleteLater();
        delete old;
    }
    addLegend();
    addFilters();
    line_->addStretch(1);
    setVisible(!grid_.legend.empty() || !grid_.sight.filters().empty());
}

// --- find ---

GridFindBar::GridFindBar(Grid& grid, GridDeed act, std::function<void()> done)
    : grid_(grid),
      act_(std::move(act)),
      done_(std::move(done)),
      text_(new QLineEdit),
      count_(new QLabel) {
    QHBoxLayout* line = barLayout(this);
    auto* caption = new QLabel("Find");
    caption->setBuddy(text_);
    text_->setObjectName("findText");
    text_->setAccessibleName("Find");
    text_->setFixedWidth(kFindWidth);
    text_->installEventFilter(this);
    line->addWidget(caption);
    line->addWidget(text_);
    line->addWidget(count_);
    line->addStretch(1);
    connect(text_, &QLineEdit::textEdited, this,
            [this](const QString& text) { act_([&] { grid_.find.setText(fromQt(text)); }); });
    hide();
}

void GridFindBar::sync() {
    const bool opens = grid_.find.isOpen() && !isVisibleTo(parentWidget());
    const bool closes = !grid_.find.isOpen() && isVisibleTo(parentWidget());
    if (text_->text() != toQt(grid_.find.text())) text_->setText(toQt(grid_.find.text()));
    count_->setText(grid_.find.text().empty()
                        ? QString()
                        : toQt(groupIndian(std::to_string(grid_.find.count())) + " found"));
    if (closes) {
        const bool had = text_->hasFocus();
        hide();
        if (had) done_();
    } else if (opens) {
        show();
        text_->setFocus(Qt::ShortcutFocusReason);
        text_->selectAll();
    }
}

bool GridFindBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(object, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool back = key->modifiers() & Qt::ShiftModifier;
    switch (key->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_F3:
            act_([&] { grid_.find.next(!back); });
            return true;
        case Qt::Key_Escape:
            act_([&] { grid_.find.close(); });
            return true;
        default:
            return false;
    }
}

// --- totals ---

GridTotals::GridTotals(Grid& grid, GridTable& table) : grid_(grid), table_(table) {
    hide();
}

void GridTotals::sync() {
    bool any = false;
    for (const size_t c : grid_.sight.columns()) any = any || grid_.column(c).total;
    setVisible(any);
    setFont(table_.font());
    setFixedHeight(table_.fontMetrics().height() + kTotalsRoom);
    update();
}

void GridTotals::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    painter.setPen(lineColor(palette()));
    painter.drawLine(0, 0, width(), 0);
    painter.setPen(palette().color(QPalette::ButtonText));
    const size_t frozen = grid_.sight.frozen();
    const auto paint = [&](bool fixed) {
        for (size_t place = 0; place < grid_.sight.columns().size(); ++place) {
            const size_t c = grid_.sight.columns()[place];
            if ((place < frozen) != fixed || !grid_.column(c).total) continue;
            const int column = static_cast<int>(place);
            GridTable* table = table_.shower(column);
            const int left = table->columnViewportPosition(column) + table_.frameWidth();
            const QRect room(left, 0, table->columnWidth(column), height());
            painter.drawText(room.adjusted(GridDelegate::kPadding, 0, -GridDelegate::kPadding, 0),
                             Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                             toQt(grid_.totalText(c)));
        }
    };
    paint(false);
    // What has been scrolled below the columns that stay is not seen.
    if (frozen > 0) {
        painter.fillRect(QRect(0, 1, table_.frozen()->width(), height() - 1),
                         palette().color(QPalette::Button));
        paint(true);
    }
}

}  // namespace owb
