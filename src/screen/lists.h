// Lists of which the user picks: a combo box (one entry, or free text where it is editable) and a
// list box (one current entry, and ticks where it is checkable). Each entry may carry a key.
#pragma once

#include <cstdint>

#include "screen/control.h"

namespace owb {

struct ListItem {
    std::string text;
    int64_t key = 0;
    bool checked = false;
};

class Combo : public Control {
  public:
    using Control::Control;
    std::string text() const override { return value; }

    // --- the screen's side: no handler runs ---
    void clear();
    void add(const std::string& text, int64_t key = 0) { items.push_back({text, key}); }
    void select(int index);  // -1: none, and no text
    bool selectKey(int64_t key);
    bool selectText(const std::string& text);
    int selected() const;  // the entry whose text stands in the box; -1: none
    int64_t key() const;   // of the selected entry; 0: none
    bool isInList() const { return selected() >= 0; }

    // --- the user's side: onChange runs after a change ---
    bool choose(size_t index);
    // Free text, or the text of an entry in any letter case. False when neither may be.
    bool edit(const std::string& text);
    // Where only entries may stand, letters find one by its beginning, however slowly they come:
    // they count from the first that was typed since the user came here. Backspace takes the last
    // one back. Letters that no entry begins with are refused and change nothing.
    bool key(const std::string& key) override;
    bool takesKey(const std::string& key) const override;
    void leave() override;
    std::vector<KeyHelp> keyHelp() const override;

    std::vector<ListItem> items;
    std::string value;
    bool editable = true;
    std::function<void()> onChange;

  private:
    int find(const std::string& text) const;
    bool takesLetter(const std::string& key) const;

    int chosen_ = -1;    // tells entries of the same text apart
    std::string typed_;  // the letters that have found the entry
};

class ListBox : public Control {
  public:
    using Control::Control;
    std::string text() const override;  // of the current entry

    void clear();
    void add(const std::string& text, int64_t key = 0) { items.push_back({text, key}); }
    std::vector<int64_t> checkedKeys() const;

    bool choose(size_t index);
    bool check(size_t index, bool on);
    std::vector<KeyHelp> keyHelp() const override;

    std::vector<ListItem> items;
    int current = -1;
    bool checkable = false;
    std::function<void()> onChange;  // the current entry or a tick has changed
};

}  // namespace owb
