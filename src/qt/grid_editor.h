// What is typed into a cell, shown over it: the text with its caret, the list of codes below, and
// the reason of a refusal in a bubble. The grid's entry is the truth; keys go there first, and what
// the caret does to the text is told to it.
#pragma once

#include <QLineEdit>

class QLabel;
class QListWidget;

namespace owb {

class Grid;

class GridEditor final : public QLineEdit {
  public:
    // What the editor hands on.
    class Owner {
      public:
        virtual ~Owner() = default;
        virtual bool pressed(const std::string& key) = 0;
        virtual void textEdited(const std::string& text) = 0;
        virtual void candidateClicked(int candidate) = 0;
        // The focus has gone elsewhere with something typed.
        virtual void editorLeft() = 0;
        virtual void focusLeaves(bool forward) = 0;
    };
    GridEditor(const Grid& grid, Owner& owner, QWidget* parent);
    ~GridEditor() override;

    // In step with the entry, over this rectangle of its parent.
    void sync(const QRect& cell);
    void away();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    bool route(const QKeyEvent& event);
    void syncList();
    void syncBubble();
    // At the editor's foot, or above it where the window ends.
    void placeBelow(QWidget& popup, const QSize& size);

    const Grid& grid_;
    Owner& owner_;
    QListWidget* list_ = nullptr;
    QLabel* bubble_ = nullptr;
    bool refused_ = false;
};

}  // namespace owb
