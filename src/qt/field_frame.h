// A frame around a widget that follows it, drawn over its surroundings: where the focus is, and
// what was refused, with the reason in a bubble beside it. Both can be seen in any palette.
#pragma once

#include <QPointer>
#include <QWidget>

class QLabel;

namespace owb {

class FieldFrame final : public QWidget {
  public:
    enum class Says { Focus, Refused };
    explicit FieldFrame(Says what);
    ~FieldFrame() override;

    // Around this widget from now on; null: nowhere.
    void surround(QWidget* widget);
    QWidget* surrounded() const { return widget_; }
    // The bubble's text; "" shows none.
    void setReason(const QString& reason);

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void follow();
    QColor color() const;

    Says what_;
    QPointer<QWidget> widget_;
    QPointer<QLabel> bubble_;
};

}  // namespace owb
