#include "sample/people.h"

#include <algorithm>
#include <array>

#include "sample/random.h"

namespace owb::sample {

namespace {

constexpr std::array kMen = {
    "Aarav",  "Abhishek", "Ajay",    "Akash",   "Amit",   "Anand",  "Anil",   "Arjun",
    "Arun",   "Ashok",    "Deepak",  "Dinesh",  "Ganesh", "Gaurav", "Harish", "Imran",
    "Karan",  "Kiran",    "Mahesh",  "Manish",  "Manoj",  "Mohan",  "Mukesh", "Naveen",
    "Nikhil", "Pradeep",  "Prakash", "Rahul",   "Rajesh", "Rakesh", "Ramesh", "Ravi",
    "Rohit",  "Sachin",   "Salim",   "Sandeep", "Sanjay", "Suresh", "Thomas", "Vijay"};
constexpr std::array kWomen = {"Aishwarya", "Anita", "Anjali", "Asha",   "Deepa",   "Divya",
                               "Farida",    "Geeta", "Jyoti",  "Kavita", "Lakshmi", "Latha",
                               "Mary",      "Meena", "Neha",   "Nisha",  "Pooja",   "Preeti",
                               "Priya",     "Radha", "Rekha",  "Ritu",   "Sarita",  "Savita",
                               "Shilpa",    "Sneha", "Sunita", "Swati",  "Usha",    "Vidya"};
constexpr std::array kSurnames = {
    "Agarwal",  "Bhat",  "Chauhan", "Das",    "Deshmukh", "Fernandes", "Ghosh",  "Gowda",
    "Gupta",    "Hegde", "Iyer",    "Jadhav", "Jain",     "Joshi",     "Kale",   "Khan",
    "Kulkarni", "Kumar", "Mehta",   "Mishra", "More",     "Naik",      "Nair",   "Pandey",
    "Patel",    "Patil", "Pawar",   "Pillai", "Rao",      "Reddy",     "Sharma", "Shetty",
    "Shinde",   "Singh", "Thakur",  "Varma",  "Verma",    "Yadav"};

// Ten employees share out over the heads like this.
constexpr std::array kHeadOf = {kPlant,  kWorkshop, kOffice, kPlant,    kSales,
                                kStores, kSecurity, kPlant,  kWorkshop, kOffice};

template <size_t N>
const char* oneOf(const std::array<const char*, N>& list, Chance& chance) {
    return list[chance.next() % N];
}

// A day in the middle of a month, from low to high; none when there is no room.
std::optional<DateTime> midMonth(const DateTime& low, const DateTime& high, Chance& chance) {
    if (low.day >= high.day) return std::nullopt;
    DateTime day{chance.between(low.day, high.day)};
    const CivilDate c = day.civil();
    const DateTime moved = DateTime::fromCivil(c.year, c.month, std::clamp(c.day, 6, 24));
    return moved >= low && moved <= high ? moved : day;
}

}  // namespace

DateTime firstDayOf(int32_t monthKey) {
    return DateTime::fromCivil((monthKey - 1) / 12, (monthKey - 1) % 12 + 1, 1);
}

DateTime lastDayOf(int32_t monthKey) {
    return firstDayOf(monthKey + 1).plusDays(-1);
}

SampleEmployee makeEmployee(int id, const SampleOptions& options) {
    Chance chance(options.seed, static_cast<uint64_t>(id));
    const DateTime start = firstDayOf(options.fromMonth);
    const DateTime end = lastDayOf(options.lastMonth());

    SampleEmployee e;
    e.id = id;
    e.female = chance.perMille(350);
    e.name = std::string(e.female ? oneOf(kWomen, chance) : oneOf(kMen, chance)) + " " +
             oneOf(kSurnames, chance);
    e.basic = chance.between(24, 120) * 500;
    e.joined = start.plusDays(-chance.between(200, 4400));
    if (id % 7 == 3)
        if (const auto day = midMonth(start.plusDays(5), end.plusDays(-40), chance))
            e.joined = *day;
    e.born = e.joined.plusMonths(-12 * chance.between(20, 40)).plusDays(-chance.between(0, 360));
    const DateTime from = std::max(start, e.joined);
    if (id % 9 == 5) e.left = midMonth(from.plusDays(45), end.plusDays(-1), chance);

    const DateTime to = e.lastDay(end);
    e.versions.push_back({1, e.joined, std::nullopt, kHeadOf[static_cast<size_t>(id) % 10],
                          id % 5 < 3 ? kPune : kBengaluru});
    std::vector<std::pair<DateTime, bool>> changes;  // true: of head
    if (id % 8 == 6)
        if (const auto day = midMonth(from.plusDays(10), to.plusDays(-10), chance))
            changes.emplace_back(*day, true);
    if (id % 10 == 7)
        if (const auto day = midMonth(from.plusDays(10), to.plusDays(-10), chance))
            if (changes.empty() || changes[0].first != *day) changes.emplace_back(*day, false);
    std::sort(changes.begin(), changes.end());
    for (const auto& [day, ofHead] : changes) {
        SampleVersion next = e.versions.back();
        e.versions.back().to = day.plusDays(-1);
        ++next.detId;
        next.from = day;
        if (ofHead)
            next.head = next.head % kHeads + 1;
        else
            next.branch = next.branch == kPune ? kBengaluru : kPune;
        e.versions.push_back(next);
    }
    return e;
}

}  // namespace owb::sample
