#include "sample/calendar.h"

#include <algorithm>

#include "sample/rows.h"

namespace owb::sample {

namespace {

constexpr SampleHoliday kGazetted[] = {
    {2024, 1, 26, "Republic Day", true},
    {2024, 3, 8, "Maha Shivaratri"},
    {2024, 3, 25, "Holi"},
    {2024, 3, 29, "Good Friday"},
    {2024, 4, 11, "Id-ul-Fitr"},
    {2024, 4, 17, "Ram Navami"},
    {2024, 4, 21, "Mahavir Jayanti"},
    {2024, 5, 23, "Buddha Purnima"},
    {2024, 6, 17, "Id-ul-Zuha"},
    {2024, 7, 17, "Muharram"},
    {2024, 8, 15, "Independence Day", true},
    {2024, 8, 26, "Janmashtami"},
    {2024, 9, 16, "Milad-un-Nabi"},
    {2024, 10, 2, "Mahatma Gandhi's Birthday", true},
    {2024, 10, 12, "Dussehra"},
    {2024, 10, 31, "Diwali"},
    {2024, 11, 15, "Guru Nanak's Birthday"},
    {2024, 12, 25, "Christmas"},
    {2025, 1, 26, "Republic Day", true},
    {2025, 2, 26, "Maha Shivaratri"},
    {2025, 3, 14, "Holi"},
    {2025, 3, 31, "Id-ul-Fitr"},
    {2025, 4, 10, "Mahavir Jayanti"},
    {2025, 4, 18, "Good Friday"},
    {2025, 5, 12, "Buddha Purnima"},
    {2025, 6, 7, "Id-ul-Zuha"},
    {2025, 7, 6, "Muharram"},
    {2025, 8, 15, "Independence Day", true},
    {2025, 8, 16, "Janmashtami"},
    {2025, 9, 5, "Milad-un-Nabi"},
    {2025, 10, 2, "Mahatma Gandhi's Birthday, Dussehra", true},
    {2025, 10, 20, "Diwali"},
    {2025, 11, 5, "Guru Nanak's Birthday"},
    {2025, 12, 25, "Christmas"},
    {2026, 1, 26, "Republic Day", true},
    {2026, 3, 4, "Holi"},
    {2026, 3, 21, "Id-ul-Fitr"},
    {2026, 3, 26, "Ram Navami"},
    {2026, 3, 31, "Mahavir Jayanti"},
    {2026, 4, 3, "Good Friday"},
    {2026, 5, 1, "Buddha Purnima"},
    {2026, 5, 27, "Id-ul-Zuha"},
    {2026, 6, 26, "Muharram"},
    {2026, 8, 15, "Independence Day", true},
    {2026, 8, 26, "Milad-un-Nabi"},
    {2026, 9, 4, "Janmashtami"},
    {2026, 10, 2, "Mahatma Gandhi's Birthday", true},
    {2026, 10, 20, "Dussehra"},
    {2026, 11, 8, "Diwali"},
    {2026, 11, 24, "Guru Nanak's Birthday"},
    {2026, 12, 25, "Christmas"},
};

constexpr int kFirstListed = 2024, kLastListed = 2026;

// Those of a fixed date, for the years of which the others are not known.
constexpr SampleHoliday kEveryYear[] = {{0, 1, 26, "Republic Day", true},
                                        {0, 8, 15, "Independence Day", true},
                                        {0, 10, 2, "Mahatma Gandhi's Birthday", true},
                                        {0, 12, 25, "Christmas"}};

constexpr SampleHoliday kRestrictedEveryYear[] = {{0, 1, 1, "New Year's Day"},
                                                  {0, 12, 24, "Christmas Eve"}};

constexpr SampleHoliday kRestricted[] = {
    {2024, 1, 1, "New Year's Day"},    {2024, 1, 15, "Makar Sankranti"},
    {2024, 2, 14, "Basant Panchami"},  {2024, 4, 13, "Vaisakhi"},
    {2024, 8, 19, "Raksha Bandhan"},   {2024, 9, 7, "Ganesh Chaturthi"},
    {2024, 10, 20, "Karva Chauth"},    {2024, 11, 3, "Bhai Duj"},
    {2024, 12, 24, "Christmas Eve"},   {2025, 1, 1, "New Year's Day"},
    {2025, 1, 14, "Makar Sankranti"},  {2025, 2, 2, "Basant Panchami"},
    {2025, 4, 14, "Ambedkar Jayanti"}, {2025, 8, 9, "Raksha Bandhan"},
    {2025, 8, 27, "Ganesh Chaturthi"}, {2025, 10, 10, "Karva Chauth"},
    {2025, 10, 23, "Bhai Duj"},        {2025, 12, 24, "Christmas Eve"},
    {2026, 1, 1, "New Year's Day"},    {2026, 1, 14, "Makar Sankranti"},
    {2026, 1, 23, "Basant Panchami"},  {2026, 4, 14, "Ambedkar Jayanti"},
    {2026, 8, 28, "Raksha Bandhan"},   {2026, 9, 14, "Ganesh Chaturthi"},
    {2026, 10, 29, "Karva Chauth"},    {2026, 11, 11, "Bhai Duj"},
    {2026, 12, 24, "Christmas Eve"},
};

// New year of the calendar: restricted, under the name of each branch's region.
constexpr SampleHoliday kRegionalNewYear[] = {
    {2024, 4, 9, ""}, {2025, 3, 30, ""}, {2026, 3, 19, ""}};

DateTime dateOf(const SampleHoliday& h) {
    return DateTime::fromCivil(h.year, h.month, h.day);
}

bool listed(const std::vector<SampleHoliday>& list, const DateTime& day) {
    return std::any_of(list.begin(), list.end(),
                       [&](const SampleHoliday& h) { return dateOf(h) == day; });
}

// Holidays of one branch and of one head, each year.
constexpr struct {
    int branch, month, day;
    const char* name;
} kOfBranch[] = {{kPune, 5, 1, "Maharashtra Day"}, {kBengaluru, 11, 1, "Kannada Rajyotsava"}};
constexpr int kWorkshopMonth = 9, kWorkshopDay = 17;  // Vishwakarma Puja

int yearOf(int32_t monthKey) {
    return (monthKey - 1) / 12;
}

// The list, and of the options' other years what is the same each year.
template <size_t N, size_t M>
std::vector<SampleHoliday> listOf(const SampleHoliday (&list)[N],
                                  const SampleHoliday (&everyYear)[M],
                                  const SampleOptions& options) {
    std::vector<SampleHoliday> all(std::begin(list), std::end(list));
    for (int year = yearOf(options.fromMonth); year <= yearOf(options.lastMonth()); ++year)
        for (SampleHoliday holiday : everyYear) {
            holiday.year = year;
            if (year < kFirstListed || year > kLastListed) all.push_back(holiday);
        }
    return all;
}

constexpr int kSunday = 1, kSaturday = 7;

// Which Saturdays are off, by head: F full, S second half, P first half, - none, for weeks 1 to 5.
constexpr const char* kSaturdays[kHeads + 1] = {"SFSFS", "SFSFS", "SSSSS", "-----",
                                                "-F-F-", "P-P-P", "-----"};

OffHalves saturdayOff(int head, int week) {
    const char kind = kSaturdays[head][week - 1];
    return {kind == 'F' || kind == 'P', kind == 'F' || kind == 'S'};
}

// The security staff's day off moves on by one weekday each week; every fourth week half a day
// more.
OffHalves rotatingOff(int group, const DateTime& day) {
    const int week = day.day / 7;
    if (day.weekday() == (week + group) % 7 + 1) return {true, true};
    return {false, week % 4 == 0 && day.weekday() == (week + group + 3) % 7 + 1};
}

}  // namespace

SampleCalendar::SampleCalendar(const SampleOptions& options)
    : options_(options),
      gazetted_(listOf(kGazetted, kEveryYear, options)),
      restricted_(listOf(kRestricted, kRestrictedEveryYear, options)) {}

bool SampleCalendar::ownRotation(const SampleEmployee& employee) {
    return employee.id % 3 != 0 &&
           std::any_of(employee.versions.begin(), employee.versions.end(),
                       [](const SampleVersion& v) { return v.head == kSecurity; });
}

OffHalves SampleCalendar::weeklyOff(int employee, int head, const DateTime& day) const {
    if (head == kSecurity) return rotatingOff(employee % 3 == 0 ? 0 : employee, day);
    if (day.weekday() == kSunday) return {true, true};
    if (day.weekday() == kSaturday) return saturdayOff(head, (day.civil().day + 6) / 7);
    return {};
}

bool SampleCalendar::holiday(int head, int branch, const DateTime& day) const {
    const CivilDate c = day.civil();
    if (!options_.branchHolidays && head == kWorkshop && c.month == kWorkshopMonth &&
        c.day == kWorkshopDay && day < firstDayOf(options_.firstOpenMonth()))
        return true;
    for (const auto& h : kOfBranch)
        if (options_.branchHolidays && h.branch == branch && h.month == c.month && h.day == c.day)
            return true;
    return listed(gazetted_, day);
}

bool SampleCalendar::restricted(const DateTime& day) const {
    return listed(restricted_, day);
}

void SampleCalendar::writeRules(Connection& connection) const {
    writeHolidays(connection);
    writeWeeklyOffs(connection);
}

void SampleCalendar::writeHolidays(Connection& connection) const {
    RowWriter holidays(connection, "ATT_HOLIDAY",
                       "HOLIDAYID, HOLIDAYDATE, HOLIDAYDESC, HOLIDAYTYPE, GENERALYN, ATTHEADID, "
                       "BRANCHID");
    RowWriter exceptions(connection, "ATT_HOLEX", "HOLIDAYID, ATTHEADID, BRANCHID");
    int id = 0;
    auto add = [&](const DateTime& day, const char* name, bool national, std::optional<int> head,
                   std::optional<int> branch) {
        holidays.add(++id, day, name, national, !head && !branch, head, branch);
    };
    for (const SampleHoliday& h : gazetted_) {
        add(dateOf(h), h.name, h.national, std::nullopt, std::nullopt);
        // The gates stand open on Good Friday, and the south works on Holi.
        if (std::string_view(h.name) == "Good Friday")
            exceptions.add(id, int{kSecurity}, std::nullopt);
        if (std::string_view(h.name) == "Holi") exceptions.add(id, std::nullopt, int{kBengaluru});
    }
    // A head's holiday refuses those of branches before it, and a branch's those of heads behind
    // it: the open months and the next year stay free for both.
    const int first = yearOf(options_.fromMonth), last = yearOf(options_.lastMonth());
    const DateTime firstOpen = firstDayOf(options_.firstOpenMonth());
    for (int year = first; year <= last + 2; ++year) {
        for (const auto& h : kOfBranch)
            if (options_.branchHolidays || year == last + 2)
                add(DateTime::fromCivil(year, h.month, h.day), h.name, false, std::nullopt,
                    h.branch);
        const DateTime puja = DateTime::fromCivil(year, kWorkshopMonth, kWorkshopDay);
        if (puja < firstOpen) add(puja, "Vishwakarma Puja", false, int{kWorkshop}, std::nullopt);
    }
    holidays.flush();
    exceptions.flush();

    RowWriter restricted(connection, "ATT_RESTRICTHOLIDAY",
                         "HOLIDAYID, HOLIDAYDATE, HOLIDAYDESC, HOLIDAYTYPE, ATTHEADID, BRANCHID, "
                         "RESTRICTYN");
    id = 0;
    auto addRestricted = [&](const DateTime& day, const char* name, std::optional<int> branch) {
        restricted.add(++id, day, name, false, std::nullopt, branch, true);
    };
    for (const SampleHoliday& h : restricted_) addRestricted(dateOf(h), h.name, std::nullopt);
    for (const SampleHoliday& h : kRegionalNewYear) {
        addRestricted(dateOf(h), "Gudi Padwa", int{kPune});
        addRestricted(dateOf(h), "Ugadi", int{kBengaluru});
    }
    restricted.flush();
    connection.Execute(
        "UPDATE MAS_OPTSET SET BRGHEFROM = (SELECT MIN(HOLIDAYDATE) FROM ATT_HOLIDAY where "
        "BRANCHID>0)");
}

void SampleCalendar::writeWeeklyOffs(Connection& connection) const {
    const std::string columns =
        "EFFFROM, WEEKID, FH1YN, SH1YN, FH2YN, SH2YN, FH3YN, SH3YN, FH4YN, SH4YN, FH5YN, SH5YN, "
        "EDITEDYN";
    RowWriter heads(connection, "LEV_WEEKLYHLD", "WHID, ATTHEADID, " + columns);
    RowWriter branches(connection, "LEV_WEEKLYHLDBRANCH", "WHID, BRANCHID, " + columns);
    int id = 0;
    auto row = [&](RowWriter& table, int owner, int head, int weekday) {
        table.beginRow();
        table.cell(++id);
        table.cell(owner);
        table.cell(options_.fromMonth);
        table.cell(weekday);
        bool differs = false;
        for (int week = 1; week <= 5; ++week) {
            OffHalves off{true, true};
            if (weekday == kSaturday) {
                off = saturdayOff(head, week);
                const OffHalves company = saturdayOff(0, week);
                differs |= off.first != company.first || off.second != company.second;
            }
            table.cell(off.first);
            table.cell(off.second);
        }
        table.cell(differs);
        table.endRow();
    };
    for (int head = 0; head <= kHeads; ++head)
        for (const int weekday : {kSunday, kSaturday}) row(heads, head, head, weekday);
    id = 0;
    for (const int branch : {kPune, kBengaluru})
        for (const int weekday : {kSunday, kSaturday}) row(branches, branch, 0, weekday);
    heads.flush();
    branches.flush();

    RowWriter rotation(connection, "ATT_WKLYROT",
                       "ATTHEADID, EMPID, WEEKDATE, FIRSTHALFYN, SECONDHALFYN");
    RowWriter special(connection, "ATT_EXTRAOT", "ATTHEADID, WEEKDATE");
    const DateTime end = lastDayOf(options_.lastMonth());
    for (DateTime day = firstDayOf(options_.fromMonth); day <= end; day = day.plusDays(1)) {
        const OffHalves off = rotatingOff(0, day);
        if (off.any()) rotation.add(int{kSecurity}, 0, day, off.first, off.second);
        // Stock-taking on the last day of each quarter.
        const CivilDate c = day.civil();
        if (c.month % 3 == 0 && c.day == daysInMonth(c.year, c.month))
            special.add(int{kWorkshop}, day);
    }
    rotation.flush();
    special.flush();
}

}  // namespace owb::sample
