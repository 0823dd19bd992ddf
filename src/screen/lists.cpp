#include "screen/lists.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb {

void Combo::clear() {
    items.clear();
    select(-1);
}

void Combo::select(int index) {
    chosen_ = index;
    value = index < 0 ? "" : items[static_cast<size_t>(index)].text;
}

bool Combo::selectKey(int64_t key) {
    for (size_t i = 0; i < items.size(); ++i) {
        if (items[i].key != key) continue;
        select(static_cast<int>(i));
        return true;
    }
    return false;
}

bool Combo::selectText(const std::string& text) {
    const int at = find(text);
    if (at >= 0) select(at);
    return at >= 0;
}

int Combo::find(const std::string& text) const {
    for (size_t i = 0; i < items.size(); ++i)
        if (compareText(items[i].text, text) == 0) return static_cast<int>(i);
    return -1;
}

int Combo::selected() const {
    if (chosen_ >= 0 && static_cast<size_t>(chosen_) < items.size() &&
        items[static_cast<size_t>(chosen_)].text == value)
        return chosen_;
    return value.empty() ? -1 : find(value);
}

int64_t Combo::key() const {
    const int at = selected();
    return at < 0 ? 0 : items[static_cast<size_t>(at)].key;
}

bool Combo::choose(size_t index) {
    if (!takesInput() || index >= items.size()) return false;
    typed_.clear();
    if (selected() == static_cast<int>(index)) return true;
    if (!mayWrite()) return false;
    select(static_cast<int>(index));
    run(onChange);
    return true;
}

bool Combo::edit(const std::string& text) {
    if (!takesInput()) return false;
    const int at = find(text);
    if (at >= 0) return choose(static_cast<size_t>(at));
    if (!editable && !text.empty()) return false;
    if (value == text) return true;
    if (!mayWrite()) return false;
    chosen_ = -1;
    value = text;
    run(onChange);
    return true;
}

// A blank begins nothing: it opens the list.
bool Combo::takesLetter(const std::string& key) const {
    if (editable || utf8Length(key) != 1) return key == "Backspace" && !editable && !typed_.empty();
    return key != " " || !typed_.empty();
}

bool Combo::takesKey(const std::string& key) const {
    return takesLetter(key) || Control::takesKey(key);
}

bool Combo::key(const std::string& key) {
    if (!takesInput() || !takesLetter(key)) return Control::key(key);
    const std::string typed =
        key == "Backspace" ? utf8Substr(typed_, 0, utf8Length(typed_) - 1) : typed_ + key;
    const std::string wanted = foldText(typed);
    const auto at = std::find_if(items.begin(), items.end(), [&](const ListItem& item) {
        return foldText(item.text).starts_with(wanted);
    });
    if (at == items.end()) {
        refuse("No entry begins with \"" + typed + "\".");
        return true;
    }
    refuse("");
    choose(static_cast<size_t>(at - items.begin()));
    typed_ = typed;
    return true;
}

void Combo::leave() {
    typed_.clear();
    refuse("");
    Control::leave();
}

std::vector<KeyHelp> Combo::keyHelp() const {
    std::vector<KeyHelp> help = Control::keyHelp();
    help.push_back(
        {"Alt+Down, F4", "opens the list of a box; letters find an entry, slow or fast"});
    return help;
}

std::vector<KeyHelp> ListBox::keyHelp() const {
    if (!checkable) return {};
    return {{"Space", "turns the tick"}};
}

std::string ListBox::text() const {
    return current < 0 ? "" : items[static_cast<size_t>(current)].text;
}

void ListBox::clear() {
    items.clear();
    current = -1;
}

std::vector<int64_t> ListBox::checkedKeys() const {
    std::vector<int64_t> keys;
    for (const ListItem& item : items)
        if (item.checked) keys.push_back(item.key);
    return keys;
}

bool ListBox::choose(size_t index) {
    if (!takesInput() || index >= items.size()) return false;
    if (current == static_cast<int>(index)) return true;
    current = static_cast<int>(index);
    run(onChange);
    return true;
}

bool ListBox::check(size_t index, bool on) {
    if (!takesInput() || !checkable || index >= items.size()) return false;
    if (items[index].checked == on) return true;
    if (!mayWrite()) return false;
    items[index].checked = on;
    run(onChange);
    return true;
}

}  // namespace owb
