#include "session/screens/frmSelMonth.h"

#include <algorithm>

#include "db/recordset.h"
#include "family/modCommon.h"

namespace owb {

namespace {

std::string arrayName(const char* name, size_t index) {
    return std::string(name) + "(" + std::to_string(index) + ")";
}

template <size_t... I>
std::array<Label, sizeof...(I)> monthLabels(Screen& screen, std::index_sequence<I...>) {
    return {Label(screen, arrayName("lblMonth", I), monthAbbreviation(static_cast<int>(I) + 1))...};
}

}  // namespace

frmSelMonth::frmSelMonth(Session& session, FrontEnd& frontEnd)
    : Screen(frontEnd, "frmSelMonth", "Select Month Year"),
      lblMonth(monthLabels(*this, std::make_index_sequence<12>())),
      session_(session) {
    popup = true;
    lstYear.onChange = [this] { lstYear_Click(); };
    for (int i = 0; i < 12; ++i)
        lblMonth[static_cast<size_t>(i)].onClick = [this, i] { lblMonth_Click(i); };
    lblClose.onClick = [this] { close(); };
    lstYear.caption = "Years";
    monMonths.caption = "Months";
    monMonths.onPickCell = [this](size_t place) { lblMonth_Click(static_cast<int>(place)); };
    monMonths.onPage = [this](int step) { stepYear(step); };
}

Layout frmSelMonth::layout() {
    return column({row({item(lstYear, 1), item(monMonths, 2)}, 1), row({space(), item(lblClose)})});
}

void frmSelMonth::onLoad() {
    ClearAll();
    LoadYear();
    // It opens on the month that the combo holds.
    const std::string held = target_ ? target_->value : "";
    for (size_t i = 0; i < lstYear.items.size(); ++i)
        if (held.ends_with(lstYear.items[i].text)) lstYear.current = static_cast<int>(i);
    LoadMonths();
    if (lstYear.current >= 0) setFocus(monMonths);
}

void frmSelMonth::stepYear(int step) {
    const int to = lstYear.current + step;
    if (to >= 0) lstYear.choose(static_cast<size_t>(to));
}

void frmSelMonth::ClearAll() {
    lstYear.clear();
    months_.fill(0);
    Monthdisable();
}

void frmSelMonth::LoadYear() {
    Recordset rs(session_.gConn,
                 "SELECT DISTINCT RIGHT(MONTHNAME,4) LYEARS FROM QryMonth ORDER BY "
                 "RIGHT(MONTHNAME,4)");
    for (; !rs.IsEOF(); rs.MoveNext()) lstYear.add(rs.Fields(0).toText());
}

void frmSelMonth::LoadMonths() {
    months_.fill(0);
    if (lstYear.current >= 0) {
        Recordset rs(session_.gConn,
                     "SELECT MONTHNAME,MONTHYEAR FROM QryMonth WHERE RIGHT(MONTHNAME,4)=" +
                         lstYear.text() + " ORDER BY MONTHYEAR ASC");
        for (; !rs.IsEOF(); rs.MoveNext()) {
            const auto key = static_cast<int32_t>(rs.Fields("MONTHYEAR").toInt());
            if (offered(key)) months_[static_cast<size_t>((key + 11) % 12)] = key;
        }
    }
    Monthdisable();
}

// Without a year every month may be clicked: the click then asks for the year.
void frmSelMonth::Monthdisable() {
    const int32_t held = target_ == nullptr ? 0 : static_cast<int32_t>(target_->key());
    int current = -1;
    for (size_t i = 0; i < 12; ++i) {
        lblMonth[i].enabled = lstYear.current < 0 || months_[i] != 0;
        BoardCell& cell = monMonths.cells[i];
        cell = {.text = lblMonth[i].caption, .enabled = lblMonth[i].enabled};
        cell.ringed = months_[i] != 0 && months_[i] == FnLngMonthYearOfDate(session_.now());
        cell.chosen = months_[i] != 0 && months_[i] == held;
        const bool kept = monMonths.current == static_cast<int>(i);
        if (cell.enabled && (current < 0 || kept || cell.chosen)) current = static_cast<int>(i);
    }
    monMonths.current = current;
}

void frmSelMonth::lstYear_Click() {
    LoadMonths();
}

bool frmSelMonth::offered(int32_t lngMonthYear) const {
    return std::any_of(target_->items.begin(), target_->items.end(),
                       [&](const ListItem& item) { return item.key == lngMonthYear; });
}

std::string frmSelMonth::fetchmonthname(int index) const {
    return FnStrMonthYearText(fetchmonthyear(index));
}

int32_t frmSelMonth::fetchmonthyear(int index) const {
    return months_[static_cast<size_t>(index)];
}

void frmSelMonth::lblMonth_Click(int index) {
    if (lstYear.current < 0) {
        frontEnd().information("Please Select The year", "MONTHYEAR");
        setFocus(lstYear);
        return;
    }
    target_->selectKey(fetchmonthyear(index));
    target_->value = fetchmonthname(index);
    close();
    if (target_->onChange) target_->onChange();
}

}  // namespace owb
