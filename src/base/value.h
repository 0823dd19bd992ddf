// One field value: null, whole number, floating number, exact decimal, text or date.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "base/date_time.h"
#include "base/decimal.h"

namespace owb {

class Value {
  public:
    Value() = default;
    Value(int v) : v_(static_cast<int64_t>(v)) {}
    Value(int64_t v) : v_(v) {}
    Value(bool v) : v_(static_cast<int64_t>(v ? 1 : 0)) {}
    Value(double v) : v_(v) {}
    Value(Decimal v) : v_(v) {}
    Value(std::string v) : v_(std::move(v)) {}
    Value(const char* v) : v_(std::in_place_type<std::string>, v) {}
    explicit Value(std::string_view v) : v_(std::in_place_type<std::string>, v) {}
    Value(DateTime v) : v_(v) {}

    bool isNull() const { return v_.index() == 0; }
    bool isInt() const { return v_.index() == 1; }
    bool isDouble() const { return v_.index() == 2; }
    bool isDecimal() const { return v_.index() == 3; }
    bool isText() const { return v_.index() == 4; }
    bool isDate() const { return v_.index() == 5; }
    bool isNumber() const { return isInt() || isDouble() || isDecimal(); }

    int64_t asInt() const { return std::get<int64_t>(v_); }
    double asDouble() const { return std::get<double>(v_); }
    const Decimal& asDecimal() const { return std::get<Decimal>(v_); }
    const std::string& asText() const { return std::get<std::string>(v_); }
    const DateTime& asDate() const { return std::get<DateTime>(v_); }

    // Lenient reading, as the screens read fields: NULL is 0, "" or day 0; a text gives its
    // leading number; a date gives its day number; a number rounds halves to even to a whole one.
    double toDouble() const;
    int64_t toInt() const;
    bool toBool() const { return toDouble() != 0; }
    DateTime toDate() const;
    // The value as text: shortest number, a decimal with exactly its places, a date as
    // YYYY-MM-DD [HH:MM:SS.mmm]; NULL is "".
    std::string toText() const;

    bool operator==(const Value&) const = default;

  private:
    std::variant<std::monostate, int64_t, double, Decimal, std::string, DateTime> v_;
};

}  // namespace owb
