#include "qt/button_views.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

#include "qt/qt_text.h"
#include "qt/screen_window.h"
#include "screen/screen.h"

namespace owb {

namespace {

constexpr int kCommandWidth = 92;

// A small padlock in the palette's own colour: the user's rights deny the command.
QIcon padlock(const QWidget& widget) {
    constexpr int kSide = 16;
    QPixmap picture(QSize(kSide, kSide) * widget.devicePixelRatioF());
    picture.setDevicePixelRatio(widget.devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    const QColor ink = widget.palette().color(QPalette::ButtonText);
    constexpr int kLine = 2;
    painter.setPen(QPen(ink, kLine));
    painter.drawArc(QRect(5, 2, 6, 9), 0, 180 * kSide);
    painter.fillRect(QRect(3, 7, 10, 7), ink);
    return picture;
}

// Enter presses a command that has the focus, as the space bar does; from what is ticked or chosen
// it goes on.
class ButtonView : public ControlView {
  public:
    ButtonView(ScreenWindow& window, Control& control, QAbstractButton* button)
        : ControlView(window, control), button_(button) {
        attach(button);
        connect(button, &QAbstractButton::clicked, this, [this] { clicked(); });
    }

  protected:
    void show() override {
        const QString caption = signedCaption();
        if (button_->text() != caption) button_->setText(caption);
        const bool denied = control().tag == "NA";
        if (denied == button_->icon().isNull())
            button_->setIcon(denied ? padlock(*button_) : QIcon());
    }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (ControlView::eventFilter(object, event)) return true;
        // At once, not after a while in which typing would still go to the field before.
        if (event->type() == QEvent::Shortcut) {
            button_->click();
            return true;
        }
        if (event->type() != QEvent::KeyPress || enterGoesOn()) return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
        button_->click();
        return true;
    }
    QAbstractButton* button_;

  private:
    // The field that had the focus is left first; a handler that holds it there stops the click.
    void clicked() {
        if (button_->focusPolicy() != Qt::NoFocus && !button_->hasFocus()) {
            button_->setFocus(Qt::MouseFocusReason);
            if (!button_->hasFocus() && button_->isActiveWindow()) return show();
        }
        window().act(control(), [this] { control().click(); });
        show();
    }
};

class CheckView final : public ButtonView {
  public:
    CheckView(ScreenWindow& window, CheckBox& box)
        : ButtonView(window, box, new QCheckBox), box_(box) {}

  private:
    void show() override {
        ButtonView::show();
        button_->setChecked(box_.value);
    }
    bool enterGoesOn() const override { return true; }
    CheckBox& box_;
};

class OptionView final : public ButtonView {
  public:
    OptionView(ScreenWindow& window, OptionButton& option)
        : ButtonView(window, option, new QRadioButton), option_(option) {
        button_->setAutoExclusive(false);  // the model's group sees to it
    }

  private:
    void show() override {
        ButtonView::show();
        button_->setChecked(option_.value());
        const bool stops = option_.group().tabStop() == &option_;
        button_->setFocusPolicy(stops ? Qt::StrongFocus : Qt::ClickFocus);
    }
    bool enterGoesOn() const override { return true; }
    bool signsChange() const override { return option_.value(); }
    OptionButton& option_;
};

class TextLabelView final : public ControlView {
  public:
    TextLabelView(ScreenWindow& window, Label& label)
        : ControlView(window, label), text_(new QLabel) {
        text_->setTextFormat(Qt::PlainText);
        attach(text_);
    }

  private:
    void show() override {
        const QString caption = toQt(control().caption);
        if (text_->text() == caption) return;
        text_->setText(caption);
        text_->setAccessibleName(caption);
    }
    QLabel* text_;
};

class ProgressView final : public ControlView {
  public:
    ProgressView(ScreenWindow& window, ProgressBar& bar)
        : ControlView(window, bar), bar_(bar), widget_(new QProgressBar) {
        attach(widget_);
    }

  private:
    // Far more rows than an int's worth never come, but a percentage is all that can be seen.
    void show() override {
        widget_->setFormat(toQt(bar_.progress()));
        widget_->setRange(0, 100);
        widget_->setValue(bar_.maximum == 0 ? 0
                                            : static_cast<int>(bar_.value * 100 / bar_.maximum));
    }
    ProgressBar& bar_;
    QProgressBar* widget_;
};

}  // namespace

std::unique_ptr<ControlView> makeCommandView(ScreenWindow& window, Command& command) {
    auto* button = new QPushButton;
    button->setMinimumWidth(kCommandWidth);
    return std::make_unique<ButtonView>(window, command, button);
}

// A label that can be clicked is a button in a label's clothes, so that keys reach it.
std::unique_ptr<ControlView> makeLabelView(ScreenWindow& window, Label& label) {
    if (!label.onClick && !window.hasMenu(label))
        return std::make_unique<TextLabelView>(window, label);
    auto* button = new QToolButton;
    button->setAutoRaise(window.screen().popup);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance("00000"));
    return std::make_unique<ButtonView>(window, label, button);
}

std::unique_ptr<ControlView> makeCheckView(ScreenWindow& window, CheckBox& box) {
    return std::make_unique<CheckView>(window, box);
}

std::unique_ptr<ControlView> makeOptionView(ScreenWindow& window, OptionButton& option) {
    return std::make_unique<OptionView>(window, option);
}

std::unique_ptr<ControlView> makeProgressView(ScreenWindow& window, ProgressBar& bar) {
    return std::make_unique<ProgressView>(window, bar);
}

}  // namespace owb
