#include "qt/grid_editor.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QToolTip>

#include "qt/cell_colors.h"
#include "qt/grid_model.h"
#include "qt/key_names.h"
#include "qt/qt_text.h"

namespace owb {

namespace {
constexpr int kListRows = 10;
const QColor kRefusal(200, 0, 0);
}  // namespace

GridEditor::GridEditor(const Grid& grid, Owner& owner, QWidget* parent)
    : QLineEdit(parent), grid_(grid), owner_(owner) {
    setFrame(false);
    setObjectName("cellEditor");
    connect(this, &QLineEdit::textEdited, this,
            [this](const QString& text) { owner_.textEdited(fromQt(text)); });
}

GridEditor::~GridEditor() {
    delete list_;
    delete bubble_;
}

void GridEditor::sync(const QRect& cell) {
    const GridEntry& entry = grid_.entry;
    const QSignalBlocker quiet(this);
    const CellType type = grid_.cellType(entry.row(), entry.column());
    setAlignment(alignmentOf(grid_.column(entry.column()), type));
    setAccessibleName(toQt(grid_.column(entry.column()).caption));
    // A narrow column shows the whole text all the same.
    QRect room = cell;
    const int wanted = fontMetrics().horizontalAdvance(toQt(entry.text()) + "00") + 8;
    room.setWidth(std::max(room.width(), std::min(wanted, parentWidget()->width() - room.left())));
    setGeometry(room);
    if (text() != toQt(entry.text())) setText(toQt(entry.text()));
    const bool refused = !entry.refusal().empty();
    if (refused != refused_ || styleSheet().isEmpty()) {
        refused_ = refused;
        const QColor frame = standingOut(refused ? kRefusal : palette().color(QPalette::Highlight),
                                         {palette().color(QPalette::Base)}, kMarkContrast);
        setStyleSheet("QLineEdit { border: 2px solid " + frame.name() + "; padding: 0px 1px; }");
    }
    show();
    raise();
    if (!hasFocus()) {
        setFocus(Qt::OtherFocusReason);
        end(false);
    }
    syncList();
    syncBubble();
}

void GridEditor::away() {
    hide();
    if (list_ != nullptr) list_->hide();
    if (bubble_ != nullptr) bubble_->hide();
}

void GridEditor::placeBelow(QWidget& popup, const QSize& size) {
    QPoint at = mapTo(window(), QPoint(0, height()));
    if (at.y() + size.height() > window()->height())
        at.setY(std::max(0, at.y() - height() - size.height()));
    at.setX(std::max(0, std::min(at.x(), window()->width() - size.width())));
    popup.setGeometry(QRect(at, size));
    popup.show();
    popup.raise();
}

void GridEditor::syncList() {
    const GridEntry& entry = grid_.entry;
    if (!entry.listOpen()) {
        if (list_ != nullptr) list_->hide();
        return;
    }
    if (list_ == nullptr) {
        list_ = new QListWidget(window());
        list_->setObjectName("cellChoices");
        list_->setFocusPolicy(Qt::NoFocus);
        connect(list_, &QListWidget::itemClicked, this,
                [this](QListWidgetItem* item) { owner_.candidateClicked(list_->row(item)); });
    }
    list_->clear();
    for (const std::string& code : entry.candidates()) {
        QString line = toQt(code);
        if (grid_.choiceNote)
            line += "   " + toQt(grid_.choiceNote(entry.row(), entry.column(), code));
        list_->addItem(line);
    }
    list_->setCurrentRow(entry.chosen());
    const int rows = std::min(std::max(list_->count(), 1), kListRows);
    placeBelow(*list_, {std::max(width(), list_->sizeHintForColumn(0) + 28),
                        rows * list_->sizeHintForRow(0) + 2 * list_->frameWidth() + 2});
}

void GridEditor::syncBubble() {
    if (grid_.entry.refusal().empty()) {
        if (bubble_ != nullptr) bubble_->hide();
        return;
    }
    if (bubble_ == nullptr) {
        bubble_ = new QLabel(window());
        bubble_->setObjectName("cellRefusal");
        bubble_->setTextFormat(Qt::PlainText);
        bubble_->setMargin(4);
        bubble_->setPalette(QToolTip::palette());
        bubble_->setAutoFillBackground(true);
        bubble_->setBackgroundRole(QPalette::ToolTipBase);
        bubble_->setForegroundRole(QPalette::ToolTipText);
        bubble_->setFrameStyle(QFrame::Box | QFrame::Plain);
    }
    bubble_->setText(toQt(grid_.entry.refusal()));
    placeBelow(*bubble_, bubble_->sizeHint());
    if (list_ == nullptr || !list_->isVisible()) return;
    bubble_->move(bubble_->x(), list_->geometry().bottom() + bubble_->height() < window()->height()
                                    ? list_->geometry().bottom() + 1
                                    : list_->y() - bubble_->height());
}

// --- keys ---

bool GridEditor::route(const QKeyEvent& event) {
    std::string name = keyName(event);
    if (name == "Shift+Backtab") name = "Shift+Tab";
    if (name == "Ctrl+Shift+Backtab") name = "Ctrl+Shift+Tab";
    if (name.empty()) return false;
    if (owner_.pressed(name)) return true;
    if (name.ends_with("Tab") || name.ends_with("F6")) {
        owner_.focusLeaves(name.find("Shift+") == std::string::npos);
        return true;
    }
    return false;
}

// The toolkit would take Tab, and a shortcut of the window, before the key comes here.
bool GridEditor::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if (tab && route(*key)) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void GridEditor::keyPressEvent(QKeyEvent* event) {
    if (route(*event)) return event->accept();
    QLineEdit::keyPressEvent(event);
}

void GridEditor::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason)
        return;
    owner_.editorLeft();
}

}  // namespace owb
