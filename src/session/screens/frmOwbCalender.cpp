#include "session/screens/frmOwbCalender.h"

#include "db/recordset.h"
#include "db/sql_text.h"

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
    for (const Label* head : {&lblsunday, &lblMonday, &lblTuesday, &lblWednesday, &lblThrusday,
                              &lblFriday, &lblSaturday})
        monDays.heads.push_back(head->caption);
    monDays.caption = "Days";
    monDays.onPickCell = [this](size_t place) { lblDate_Click(place); };
    monDays.onTurn = [this](int year, int month, int day) { return turnTo(year, month, day); };
    for (size_t i = 0; i < lblDate.size(); ++i)
        lblDate[i].onClick = [this, i] { lblDate_Click(i); };
    lbltoady.onClick = [this] { lbltoady_Click(); };
    lblclose.onClick = [this] { close(); };
}

Layout frmOwbCalender::layout() {
    return column({row({item(cmbMonth, 1), item(cmbYear, 1)}), item(monDays, 1),
                   row({item(lbltoady), space(), item(lblclose)})});
}

void frmOwbCalender::SetTarget(TextBox& target) {
    SetTarget(target.value, [&target](const std::string& date) {
        target.value = date;
        if (target.onChange) target.onChange();
    });
}

void frmOwbCalender::SetTarget(const std::string& text,
                               std::function<void(const std::string&)> picked) {
    text_ = text;
    picked_ = std::move(picked);
}

void frmOwbCalender::onLoad() {
    LoadMonthYear();
    loadCalender();
    setFocus(monDays);
}

void frmOwbCalender::LoadMonthYear() {
    const DateTime today = session_.now();
    monDays.today = {today.day, 0};
    monDays.chosen = parseEntryDate(text_, entryDay());
    const CivilDate shown = monDays.chosen.value_or(today).civil();
    day_ = shown.day;
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
    monDays.show(static_cast<int>(cmbYear.key()), static_cast<int>(cmbMonth.key()), day_);
    tintHolidays();
}

// Within the years that can be chosen.
bool frmOwbCalender::turnTo(int year, int month, int day) {
    if (!cmbYear.selectKey(year) || !cmbMonth.selectKey(month)) return false;
    day_ = day;
    loadCalender();
    return true;
}

// The company's holidays; where they cannot be read, the days are without a tint, that is all.
void frmOwbCalender::tintHolidays() {
    const DateTime first =
        DateTime::fromCivil(static_cast<int>(cmbYear.key()), static_cast<int>(cmbMonth.key()), 1);
    try {
        Recordset rs(session_.gConn,
                     Sql() << "SELECT HOLIDAYDATE, HOLIDAYDESC FROM ATT_HOLIDAY WHERE "
                              "ISNULL(ATTHEADID,0) = 0 AND ISNULL(BRANCHID,0) = 0 AND HOLIDAYDATE "
                              ">= "
                           << first << " AND HOLIDAYDATE < " << first.plusMonths(1));
        for (; !rs.IsEOF(); rs.MoveNext()) {
            const int day = rs.Fields("HOLIDAYDATE").toDate().civil().day;
            BoardCell& cell = monDays.cellOf(day);
            cell.holiday = true;
            cell.tip = rs.Fields("HOLIDAYDESC").toText();
            lblDate[monDays.placeOf(day)].toolTip = cell.tip;
        }
    } catch (const std::exception&) {
    }
}

void frmOwbCalender::ClearAll() {
    for (Label& label : lblDate) {
        label.caption.clear();
        label.toolTip.clear();
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
    close();
    picked_(dateText(date, "dd/mm/yyyy"));
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
