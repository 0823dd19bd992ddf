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
        return screen.session().gGenCmn.FnIntAllowDateOnlyWithAlpha(key);
    };
    onLeave = [this] { value = FnStrCleanDateCentury(value); };
    onPick = [this, &screen] {
        frmOwbCalender picker(screen.session(), screen.frontEnd());
        picker.SetTarget(*this);
        picker.showModal();
    };
}

std::optional<DateTime> DateBox::date() const {
    return parseTypedDate(FnStrCleanDateCentury(value));
}

void DateBox::setDate(const DateTime& date) {
    value = date == DateTime{} ? "" : dateText(date, "dd/mm/yyyy");
}

NumberBox::NumberBox(SessionScreen& screen, std::string name, std::string caption, int decimals)
    : TextBox(screen, std::move(name), std::move(caption)), decimals_(decimals) {
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
