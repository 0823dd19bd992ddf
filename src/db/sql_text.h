// How T-SQL text is written. Texts of the program go in as they are, numbers and dates as literals,
// and whatever comes from outside through literal() or sqlName():
//
//     Sql() << "SELECT LEVID FROM " << sqlName(table) << " WHERE LEVNAME = " << literal(typed)
#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "base/value.h"

namespace owb {

// A value as a T-SQL literal: NULL, number, 'text' with quotes doubled (N'text' where a character
// is beyond ASCII), 'yyyy-MM-dd' with ' hh:mm:ss.mmm' behind when there is a time.
std::string sqlLiteral(const Value& v);
// A name in brackets.
std::string sqlName(std::string_view name);

inline std::string literal(const Value& v) {
    return sqlLiteral(v);
}

class Sql {
  public:
    Sql& operator<<(std::string_view sql) {
        text_ += sql;
        return *this;
    }
    template <std::integral Number>  // true is 1
    Sql& operator<<(Number number) {
        text_ += std::to_string(number);
        return *this;
    }
    Sql& operator<<(const DateTime& date) { return *this << sqlLiteral(Value(date)); }
    Sql& operator<<(const Sql& sql) { return *this << std::string_view(sql.text_); }

    const std::string& text() const { return text_; }
    operator const std::string&() const { return text_; }

  private:
    std::string text_;
};

}  // namespace owb
