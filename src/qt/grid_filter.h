// Chooses the texts of a column whose rows are to be seen.
#pragma once

#include <QDialog>
#include <optional>
#include <set>
#include <string>

class QListWidget;

namespace owb {

class Grid;

class GridFilter final : public QDialog {
  public:
    GridFilter(const Grid& grid, size_t column, QWidget* parent);

    // The ticked texts that are shown; nothing where that is all of them.
    std::optional<std::set<std::string>> chosen() const;

  private:
    void narrow(const QString& text);
    void setShown(bool on);

    QListWidget* list_;
};

}  // namespace owb
