// Times of day and datetime2 values as counts of 100 nanoseconds: since midnight, or since
// 0001-01-01. Their texts and their way to and from datetime.
#pragma once

#include <cstdint>
#include <string>

#include "base/date_time.h"
#include "base/sql_type.h"

namespace owb::tsql {

constexpr int64_t kUnitsPerSecond = 10'000'000;
constexpr int64_t kUnitsPerDay = 86400 * kUnitsPerSecond;
constexpr int32_t kFirstDay = -693595;  // 0001-01-01 as a day number

inline int64_t datetime2Of(int32_t day, int64_t units) {
    return (static_cast<int64_t>(day) - kFirstDay) * kUnitsPerDay + units;
}
inline int32_t dayOfDatetime2(int64_t count) {
    return static_cast<int32_t>(count / kUnitsPerDay) + kFirstDay;
}
int64_t unitsOf(const DateTime& value);
DateTime datetimeOfDatetime2(int64_t count);
// Rounded to the places of that type; a time of day wraps at midnight, a datetime2 does not.
int64_t roundToPlaces(int64_t count, const SqlType& type);
// "10:30:00.0000000", "2014-01-05 10:30:00.0000000", with the places of the type.
std::string datetime2Text(int64_t count, const SqlType& type);
// By a CONVERT style; -1 is the type's own.
std::string datetime2ByStyle(int64_t count, const SqlType& type, int style);

}  // namespace owb::tsql
