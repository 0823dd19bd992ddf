#include "session/screens/frmOwbCalender.h"

namespace owb {

namespace {

constexpr int kYearsAround = 10;

template <size_t... I>
std::array<Label, sizeof...(I)> dateLabels(Screen& screen, std::index_sequence<I...>) {
    return {Label(screen, "lblDate(" + std::to_string(I) + ")", "")...};
}

}  // namespace

frmOwbCalender::frmOwbCalender(Session& session, FrontEnd& frontEnd)
    : Screen(frontEnd, "frmOwbCalender", "Calendar"),
      lblDate(dateLabels(*this, std::make_index_sequence<42>())),
      session_(session) {
    popup = true;
    cmbMonth.editable = cmbYear.editable = false;
    cmbMonth.onChange = cmbYear.onChange = [this] { loadCalender(); };
    for (size_t i = 0; i < lblDate.size(); ++i)
        lblDate[i].onClick = [this, i] { lblDate_Click(i); };
    lbltoady.onClick = [this] { lbltoady_Click(); };
    lblclose.onClick = [this] { close(); };
}

Layout frmOwbCalender::layout() {
    std::vector<Layout> weeks;
    weeks.push_back(
        row({item(lblsunday, 1), item(lblMonday, 1), item(lblTuesday, 1), item(lblWednesday, 1),
             item(lblThrusday, 1), item(lblFriday, 1), item(lblSaturday, 1)}));
    for (size_t week = 0; week < 6; ++week) {
        std::vector<Layout> days;
        for (size_t day = 0; day < 7; ++day) days.push_back(item(lblDate[week * 7 + day], 1));
        weeks.push_back(row(std::move(days)));
    }
    return column({row({item(cmbMonth, 1), item(cmbYear, 1)}), column(std::move(weeks), 1),
                   row({item(lbltoady), space(), item(lblclose)})});
}

void frmOwbCalender::onLoad() {
    LoadMonthYear();
    loadCalender();
}

void frmOwbCalender::LoadMonthYear() {
    const DateTime today = session_.now();
    const CivilDate shown = parseTypedDate(target_ ? target_->value : "").value_or(today).civil();
    cmbMonth.clear();
    for (int month = 1; month <= 12; ++month) cmbMonth.add(monthFullName(month), month);
    cmbYear.clear();
    const int thisYear = today.civil().year;
    const int first = std::min(thisYear - kYearsAround, shown.year);
    const int last = std::max(thisYear + kYearsAround, shown.year);
    for (int year = first; year <= last; ++year) cmbYear.add(std::to_string(year), year);
    cmbMonth.selectKey(shown.month);
    cmbYear.selectKey(shown.year);
}

void frmOwbCalender::loadCalender() {
    ClearAll();
    FillDatesNew();
}

void frmOwbCalender::ClearAll() {
    for (Label& label : lblDate) {
        label.caption.clear();
        label.enabled = false;
    }
}

// The first of the month stands below its weekday.
void frmOwbCalender::FillDatesNew() {
    const auto year = static_cast<int>(cmbYear.key());
    const auto month = static_cast<int>(cmbMonth.key());
    const int before = DateTime::fromCivil(year, month, 1).weekday() - 1;
    for (int day = 1; day <= daysInMonth(year, month); ++day) {
        Label& label = lblDate[static_cast<size_t>(before + day - 1)];
        label.caption = std::to_string(day);
        label.enabled = true;
    }
}

void frmOwbCalender::filldates(const DateTime& date) {
    target_->value = dateText(date, "dd/mm/yyyy");
    close();
    if (target_->onChange) target_->onChange();
}

void frmOwbCalender::lblDate_Click(size_t index) {
    const int day = std::stoi(lblDate[index].caption);
    filldates(DateTime::fromCivil(static_cast<int>(cmbYear.key()), static_cast<int>(cmbMonth.key()),
                                  day));
}

void frmOwbCalender::lbltoady_Click() {
    filldates({session_.now().day, 0});
}

}  // namespace owb
