// Months as numbers and texts, and dates as users write them.
#include "base/db_error.h"
#include "family/modCommon.h"

namespace owb {

DateTime FnDteFirstOfMonth(int32_t lngMonthYear) {
    if (lngMonthYear <= 0) throw DbError(13, 16, 1, 0, "Type mismatch");
    return DateTime::fromCivil((lngMonthYear - 1) / 12, (lngMonthYear - 1) % 12 + 1, 1);
}

int32_t FnLngMonthYearOfDate(const DateTime& date) {
    const CivilDate c = date.civil();
    return c.year * 12 + c.month;
}

int32_t FnLngMonthYearOfDate(const std::string& text) {
    const auto date = parseTypedDate(text);
    return date ? FnLngMonthYearOfDate(*date) : 0;
}

int32_t FnLngMonthYearOfText(const std::string& monthText) {
    return FnLngMonthYearOfDate("01/" + monthText);
}

std::string FnStrMonthYearText(int32_t lngMonthYear) {
    return lngMonthYear <= 0 ? "" : dateText(FnDteFirstOfMonth(lngMonthYear), "MMM/yyyy");
}

std::string FnStrCleanDate(const std::string& text) {
    const auto date = parseTypedDate(text);
    return date ? dateText(*date, "dd/MM/yyyy") : "";
}

std::string FnStrCleanDateCentury(const std::string& text) {
    const auto date = parseTypedDate(text);
    if (!date) return "";
    const bool ancient = date->civil().year < 1900;
    return dateText(ancient ? date->plusMonths(2000 * 12) : *date, "dd/MM/yyyy");
}

}  // namespace owb
