#include "session/screens/entry_boxes.h"

#include "base/number_text.h"
#include "base/utf8.h"
#include "family/modCommon.h"
#include "session/screens/SessionScreen.h"
#include "session/screens/frmOwbCalender.h"

namespace owb {

DateBox::DateBox(SessionScreen& screen, std::string name, std::string caption)
    : TextBox(screen, std::move(name), std::move(caption)) {
    toolTip = "dd/mm/yyyy,Press F2 or Double click";
    filter = [&screen](int key, const std::string&) {
        return key == '+' ? key : screen.session().gGenCmn.FnIntAllowDateOnlyWithAlpha(key);
    };
    onLeave = [this, &screen] { complete(screen.entryDay()); };
    onPick = [this, &screen] {
        frmOwbCalender picker(screen.session(), screen.frontEnd());
        picker.SetTarget(*this);
        picker.showModal();
    };
}

void DateBox::complete(const DateTime& entryDay) {
    if (trim(value).empty()) return;
    const auto typed = parseEntryDate(value, entryDay);
    if (!typed) return refuse("\"" + value + "\" is no date.");
    const std::string whole = FnStrCleanDateCentury(dateText(*typed, "dd/mm/yyyy"));
    if (whole == value) return;
    value = whole;
    if (onChange) onChange();
}

std::vector<KeyHelp> DateBox::keyHelp() const {
    std::vector<KeyHelp> help = TextBox::keyHelp();
    help.push_back(
        {"5, 5/3, 5 Mar, +1", "the 5th of the month, of March, tomorrow: in a date box"});
    return help;
}

std::optional<DateTime> DateBox::date() const {
    return parseTypedDate(FnStrCleanDateCentury(value));
}

void DateBox::setDate(const DateTime& date) {
    value = date == DateTime{} ? "" : dateText(date, "dd/mm/yyyy");
}

NumberBox::NumberBox(SessionScreen& screen, std::string name, std::string caption, int decimals)
    : TextBox(screen, std::move(name), std::move(caption)), decimals_(decimals) {
    alignRight = true;
    filter = [&screen](int key, const std::string& before) {
        return screen.session().gGenCmn.FnIntAllowDoubleOnly(key, before);
    };
}

double NumberBox::number() const {
    return roundHalfAway(textToNumber(value), decimals_);
}

void NumberBox::setNumber(double number) {
    value = numberText(number);
}

}  // namespace owb
