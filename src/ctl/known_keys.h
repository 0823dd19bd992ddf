// Employees, leaves, heads and months as people name them on a command line. A name that the
// company has not is a CommandError that tells what there is.
#pragma once

#include <cstdint>
#include <string>

namespace owb {
class Connection;
}

namespace owb::ctl {

void requireEmployee(Connection& connection, int64_t id);
struct NamedLeave {
    int32_t id = 0;
    std::string shortName;
};
// By short name, in any letter case, or by LEVID.
NamedLeave leaveNamed(Connection& connection, const std::string& text);
// ATTHEADID by name, in any letter case, or by number; 0 is no head.
int32_t headNamed(Connection& connection, const std::string& text);
// The key of "Mmm/YYYY"; a key itself is taken, too.
int32_t monthNamed(Connection& connection, const std::string& text);
// The key of the month that holds a day of the company ("YYYY-MM-DD").
void requireMonthOfDay(Connection& connection, const std::string& isoDate);

}  // namespace owb::ctl
