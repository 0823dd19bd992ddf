#include "ctl/known_keys.h"

#include "base/number_text.h"
#include "ctl/command.h"
#include "db/connection.h"
#include "db/sql_text.h"
#include "family/modCommon.h"

namespace owb::ctl {

namespace {

constexpr size_t kNamed = 20;

ResultSet rowsOf(Connection& connection, const Sql& query) {
    return connection.Run(query).sets.front();
}

bool isNumber(const std::string& text) {
    return !text.empty() && text.size() < 10 &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

// The row of a master by its number or its name; an error names the first of those that there are.
struct Master {
    const char *what, *table, *key, *name;
};

std::pair<int32_t, std::string> rowNamed(Connection& connection, const Master& master,
                                         const std::string& text) {
    const ResultSet all =
        rowsOf(connection, Sql() << "SELECT " << master.key << ", " << master.name << " FROM "
                                 << master.table << " ORDER BY " << master.key);
    const ResultSet found = rowsOf(
        connection, Sql() << "SELECT " << master.key << ", " << master.name << " FROM "
                          << master.table << " WHERE "
                          << (isNumber(text) ? master.key : master.name) << " = " << literal(text));
    if (found.rows > 0)
        return {static_cast<int32_t>(found.at(0, 0).toInt()), found.at(0, 1).toText()};
    std::string names;
    for (size_t r = 0; r < std::min(all.rows, kNamed); ++r)
        names += (r > 0 ? ", " : "") + all.at(r, 1).toText() + " (" + all.at(r, 0).toText() + ")";
    if (all.rows > kNamed) names += " and " + std::to_string(all.rows - kNamed) + " more";
    throw CommandError(std::string("there is no ") + master.what + " \"" + text + "\"; there " +
                       (all.rows == 0 ? "are none" : "are " + names));
}

// "; there are Apr/2024 to Mar/2026".
std::string monthsThereAre(Connection& connection) {
    const ResultSet span =
        rowsOf(connection, Sql() << "SELECT MIN(MONTHYEAR), MAX(MONTHYEAR) FROM MAS_MONTHYEAR");
    if (span.at(0, 0).isNull()) return "; there are none";
    const auto text = [&](size_t c) {
        return FnStrMonthYearText(static_cast<int32_t>(span.at(0, c).toInt()));
    };
    return "; there are " + text(0) + " to " + text(1);
}

}  // namespace

void requireEmployee(Connection& connection, int64_t id) {
    if (rowsOf(connection, Sql() << "SELECT EMPID FROM MAS_EMPLOYEE WHERE EMPID = " << id).rows > 0)
        return;
    const ResultSet all =
        rowsOf(connection, Sql() << "SELECT COUNT(*), MIN(EMPID), MAX(EMPID) FROM MAS_EMPLOYEE");
    const auto text = [&](size_t c) { return all.at(0, c).toText(); };
    throw CommandError("there is no employee " + std::to_string(id) + "; there are " +
                       (all.at(0, 0).toInt() == 0
                            ? "none"
                            : text(0) + ", numbered from " + text(1) + " to " + text(2)));
}

NamedLeave leaveNamed(Connection& connection, const std::string& text) {
    const auto [id, name] =
        rowNamed(connection, {"leave", "ATT_DEFINITION", "LEVID", "LEVSHORT"}, text);
    return {id, name};
}

int32_t headNamed(Connection& connection, const std::string& text) {
    if (isNumber(text) && textToNumber(text) == 0) return 0;
    return rowNamed(connection, {"attendance head", "MAS_ATTHEAD", "ATTHEADID", "ATTHEADNAME"},
                    text)
        .first;
}

int32_t monthNamed(Connection& connection, const std::string& text) {
    const int32_t month =
        isNumber(text) ? static_cast<int32_t>(textToNumber(text)) : FnLngMonthYearOfText(text);
    if (month <= 0) throw CommandError("\"" + text + "\" is no month (Mmm/YYYY)");
    if (rowsOf(connection,
               Sql() << "SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE MONTHYEAR = " << month)
            .rows == 0)
        throw CommandError("there is no month " + FnStrMonthYearText(month) +
                           monthsThereAre(connection));
    return month;
}

void requireMonthOfDay(Connection& connection, const std::string& isoDate) {
    if (rowsOf(connection, Sql() << "SELECT MONTHYEAR FROM MAS_MONTHYEAR WHERE " << literal(isoDate)
                                 << " BETWEEN CALCSTARTDATE AND CALCENDDATE")
            .rows == 0)
        throw CommandError("no month holds " + isoDate + monthsThereAre(connection));
}

}  // namespace owb::ctl
