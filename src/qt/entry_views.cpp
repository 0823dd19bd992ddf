#include "qt/entry_views.h"

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSignalBlocker>

#include "qt/qt_text.h"
#include "qt/screen_window.h"
#include "screen/lists.h"
#include "screen/text_box.h"

namespace owb {

namespace {

constexpr int kPickedChars = 14;    // a date or a month
constexpr int kUsualChars = 24;     // where the box does not say how much it holds
constexpr size_t kLongLength = 40;  // takes the room that there is
constexpr int kListRows = 8;
constexpr int kListSpacing = 2;

int widthOf(const QWidget& widget, int chars) {
    return widget.fontMetrics().horizontalAdvance(QString(chars, '0')) + 24;
}

// A small table of days in the palette's own colour.
QIcon pickerIcon(const QWidget& widget) {
    constexpr int kSide = 16, kInset = 2, kHead = 4, kDay = 2, kStep = 4;
    QPixmap picture(QSize(kSide, kSide) * widget.devicePixelRatioF());
    picture.setDevicePixelRatio(widget.devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    const QColor ink = widget.palette().color(QPalette::Text);
    painter.setPen(ink);
    painter.drawRect(kInset, kInset, kSide - 2 * kInset - 1, kSide - 2 * kInset - 1);
    painter.fillRect(kInset, kInset, kSide - 2 * kInset, kHead, ink);
    for (int y = kInset + kHead + kDay; y < kSide - kInset - kDay; y += kStep)
        for (int x = kInset + kDay; x < kSide - kInset - kDay; x += kStep)
            painter.fillRect(x, y, kDay, kDay, ink);
    return picture;
}

// Asks the model of each typed character; what comes otherwise (pasted, dropped) is filtered whole.
class FilteredLine final : public QLineEdit {
  public:
    explicit FilteredLine(const TextBox& box) : box_(box) {}

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const QString typed = event->text();
        const bool command =
            (event->modifiers() & Qt::ControlModifier) && !(event->modifiers() & Qt::AltModifier);
        if (isReadOnly() || command || typed.isEmpty() || !typed.at(0).isPrint())
            return QLineEdit::keyPressEvent(event);
        QString before = text();
        if (hasSelectedText()) before.remove(selectionStart(), selectionLength());
        const char32_t kept = box_.accepted(typed.toUcs4().front(), fromQt(before));
        if (kept != 0) insert(QString::fromUcs4(&kept, 1));
        event->accept();
    }
    void focusInEvent(QFocusEvent* event) override {
        QLineEdit::focusInEvent(event);
        const Qt::FocusReason reason = event->reason();
        if (!box_.focusSelects && reason != Qt::MouseFocusReason) {
            deselect();
            end(false);
        } else if (box_.focusSelects && reason == Qt::OtherFocusReason) {
            selectAll();
        }
    }

  private:
    const TextBox& box_;
};

class LineView final : public ControlView {
  public:
    LineView(ScreenWindow& window, TextBox& box)
        : ControlView(window, box), box_(box), line_(new FilteredLine(box)) {
        attach(line_);
        if (box.alignRight) line_->setAlignment(Qt::AlignRight);
        const bool grows = box.maxLength >= kLongLength;
        const int chars = box.onPick           ? kPickedChars
                          : box.maxLength == 0 ? kUsualChars
                                               : std::min(static_cast<int>(box.maxLength) + 2, 40);
        line_->setMinimumWidth(widthOf(*line_, std::min(chars, kUsualChars)));
        if (!grows) line_->setMaximumWidth(widthOf(*line_, std::max(chars, kPickedChars)));
        connect(line_, &QLineEdit::textChanged, this, [this](const QString& text) { typed(text); });
        if (!box.onPick) return;
        picker_ = line_->addAction(pickerIcon(*line_), QLineEdit::TrailingPosition);
        picker_->setToolTip("F2");
        connect(picker_, &QAction::triggered, this, [this] {
            line_->setFocus();
            this->window().act(box_, [this] { box_.key("F2"); });
        });
    }

  private:
    void typed(const QString& text) {
        const std::string kept = box_.filtered(fromQt(text));
        if (toQt(kept) != text) {
            const QSignalBlocker quiet(line_);
            line_->setText(toQt(kept));
        }
        if (!window().act(box_, [&] { box_.edit(kept); })) show();
    }
    void show() override {
        const QSignalBlocker quiet(line_);
        const QString text = toQt(box_.value);
        if (line_->text() != text) line_->setText(text);
        if (line_->isReadOnly() != box_.locked) line_->setReadOnly(box_.locked);
        if (picker_ != nullptr) picker_->setVisible(!box_.locked);
    }
    bool enterGoesOn() const override { return true; }

    TextBox& box_;
    FilteredLine* line_;
    QAction* picker_ = nullptr;  // the mouse's way to what F2 opens
};

class MultiLineView final : public ControlView {
  public:
    MultiLineView(ScreenWindow& window, TextBox& box)
        : ControlView(window, box), box_(box), edit_(new QPlainTextEdit) {
        edit_->setTabChangesFocus(true);
        attach(edit_, edit_->viewport());
        connect(edit_, &QPlainTextEdit::textChanged, this, [this] { typed(); });
    }

  private:
    void typed() {
        const std::string text = fromQt(edit_->toPlainText());
        const std::string kept = box_.filtered(text);
        if (!window().act(box_, [&] { box_.edit(kept); }) || kept != text) show();
    }
    void show() override {
        const QSignalBlocker quiet(edit_);
        const QString text = toQt(box_.value);
        if (edit_->toPlainText() != text) {
            edit_->setPlainText(text);
            edit_->moveCursor(QTextCursor::End);
        }
        edit_->setReadOnly(box_.locked);
    }

    TextBox& box_;
    QPlainTextEdit* edit_;
};

// Free text reaches the model when the user has finished it, an entry of the list at once.
class ComboView final : public ControlView {
  public:
    ComboView(ScreenWindow& window, Combo& combo)
        : ControlView(window, combo), combo_(combo), box_(new QComboBox) {
        // Typing an entry's first letters finds it in either kind; text that may not stand goes
        // back to what stood there.
        box_->setEditable(combo.editable);
        box_->setInsertPolicy(QComboBox::NoInsert);
        box_->setMaxVisibleItems(16);
        box_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        box_->setMinimumWidth(widthOf(*box_, kPickedChars));
        box_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
        box_->setFocusPolicy(Qt::StrongFocus);  // the wheel does not bring the focus
        attach(box_, box_->lineEdit());
        box_->view()->installEventFilter(this);
        connect(box_, &QComboBox::activated, this, [this](int index) {
            if (index < 0) return;
            tell([&] { combo_.choose(static_cast<size_t>(index)); });
        });
    }
    void commit() override {
        if (box_->isEditable() && box_->currentText() != shown_)
            tell([&] { combo_.edit(fromQt(box_->currentText())); });
    }

  private:
    void tell(const std::function<void()>& deed) {
        forced_ = true;
        if (!window().act(combo_, deed)) show();
    }
    void show() override {
        const QSignalBlocker quiet(box_);
        if (!sameItems()) {
            box_->clear();
            items_.clear();
            for (const ListItem& item : combo_.items) {
                items_.push_back(item.text);
                box_->addItem(toQt(item.text));
            }
            forced_ = true;
        }
        const QString text = toQt(combo_.value);
        if (!forced_ && text == shown_) return;  // what is being typed stays
        forced_ = false;
        shown_ = text;
        const int at = combo_.selected();
        if (box_->currentIndex() != at) box_->setCurrentIndex(at);
        if (box_->view()->isVisible())
            box_->view()->setCurrentIndex(box_->model()->index(at, box_->modelColumn()));
        if (box_->isEditable() && box_->currentText() != text) box_->setEditText(text);
    }
    bool sameItems() const {
        return std::equal(
            combo_.items.begin(), combo_.items.end(), items_.begin(), items_.end(),
            [](const ListItem& item, const std::string& text) { return item.text == text; });
    }
    bool enterGoesOn() const override { return true; }
    bool wheelChanges() const override { return true; }
    bool abandon() override {
        if (!box_->isEditable() || box_->currentText() == shown_) return false;
        box_->setEditText(shown_);
        return true;
    }
    // Letters are the model's where nothing but entries may stand, in the open list too.
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && !box_->isEditable()) {
            const auto* key = static_cast<QKeyEvent*>(event);
            const bool plain =
                !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
            const QString text = key->text();
            if (plain && !text.isEmpty() && text.at(0).isPrint() && combo_.takesKey(fromQt(text))) {
                window().act(combo_, [&] { combo_.key(fromQt(text)); });
                return true;
            }
        }
        return object != box_->view() && ControlView::eventFilter(object, event);
    }

    Combo& combo_;
    QComboBox* box_;
    std::vector<std::string> items_;
    QString shown_;
    bool forced_ = true;
};

class ListView final : public ControlView {
  public:
    ListView(ScreenWindow& window, ListBox& list)
        : ControlView(window, list), list_(list), widget_(new QListWidget) {
        widget_->setSpacing(kListSpacing);
        widget_->setMinimumHeight(widget_->fontMetrics().height() * kListRows);
        widget_->setMinimumWidth(widthOf(*widget_, 8));
        attach(widget_, widget_->viewport());
        connect(widget_, &QListWidget::currentRowChanged, this, [this](int row) {
            if (row >= 0)
                this->window().act(list_, [&] { list_.choose(static_cast<size_t>(row)); });
        });
        connect(widget_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
            const auto row = static_cast<size_t>(widget_->row(item));
            const bool on = item->checkState() == Qt::Checked;
            if (!this->window().act(list_, [&] { list_.check(row, on); })) show();
        });
        connect(widget_, &QListWidget::itemClicked, this, [this] {
            if (list_.onClick) this->window().act(list_, [&] { list_.click(); });
        });
    }

  private:
    void show() override {
        const QSignalBlocker quiet(widget_);
        const auto count = static_cast<int>(list_.items.size());
        while (widget_->count() > count) delete widget_->takeItem(count);
        for (int i = 0; i < count; ++i) {
            const ListItem& model = list_.items[static_cast<size_t>(i)];
            if (i == widget_->count()) widget_->addItem("");
            QListWidgetItem* item = widget_->item(i);
            const QString text = toQt(model.text);
            if (item->text() != text) item->setText(text);
            if (!list_.checkable) continue;
            const Qt::CheckState state = model.checked ? Qt::Checked : Qt::Unchecked;
            if (!item->data(Qt::CheckStateRole).isValid() || item->checkState() != state)
                item->setCheckState(state);
        }
        if (widget_->currentRow() != list_.current) widget_->setCurrentRow(list_.current);
    }

    bool enterGoesOn() const override { return true; }

    ListBox& list_;
    QListWidget* widget_;
};

}  // namespace

std::unique_ptr<ControlView> makeTextView(ScreenWindow& window, TextBox& box) {
    if (box.multiLine) return std::make_unique<MultiLineView>(window, box);
    return std::make_unique<LineView>(window, box);
}

std::unique_ptr<ControlView> makeComboView(ScreenWindow& window, Combo& combo) {
    return std::make_unique<ComboView>(window, combo);
}

std::unique_ptr<ControlView> makeListView(ScreenWindow& window, ListBox& list) {
    return std::make_unique<ListView>(window, list);
}

}  // namespace owb
