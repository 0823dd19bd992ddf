// Where windows stood, how wide columns were and what was printed on, kept in the user's settings
// store between sessions (section LeaveMgmt, keys "Window <screen>", "Columns <screen>.<grid>",
// "Order <screen>.<grid>", "Print paper" and those of habits).
#pragma once

#include <string>
#include <vector>

#include "family/SettingsStore.h"

class QWidget;

namespace owb {

class WindowMemory {
  public:
    explicit WindowMemory(SettingsStore& settings) : settings_(settings) {}

    void restoreWindow(const std::string& screen, QWidget& window) const;
    void rememberWindow(const std::string& screen, const QWidget& window);

    // Widths in pixels, negative for a column that the user has hidden; empty when nothing is
    // known for a grid of this many columns.
    std::vector<int> columns(const std::string& grid, size_t count) const;
    void rememberColumns(const std::string& grid, const std::vector<int>& widths);
    // In which order the user has put the columns; empty where he has not.
    std::vector<size_t> order(const std::string& grid, size_t count) const;
    void rememberOrder(const std::string& grid, const std::vector<size_t>& order);
    // Another habit of the user's with a grid, such as its zoom; `otherwise` where none is known.
    int habit(const std::string& grid, const std::string& name, int otherwise) const;
    void rememberHabit(const std::string& grid, const std::string& name, int value, int otherwise);

    // That was printed on last, by its name; "" at first.
    std::string paper() const;
    void rememberPaper(const std::string& name) { save("Print paper", name); }

  private:
    void save(const std::string& key, const std::string& value);
    std::vector<int> numbers(const std::string& key, size_t count) const;
    void saveNumbers(const std::string& key, const std::vector<int>& numbers);

    SettingsStore& settings_;
};

}  // namespace owb
