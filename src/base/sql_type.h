// The T-SQL types of columns, variables and expressions, as both drivers report them.
#pragma once

#include <cstdint>
#include <string>

namespace owb {

enum class SqlKind : uint8_t {
    Null,  // the bare NULL literal: fits every type
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    SmallMoney,
    Money,
    Numeric,
    Real,
    Float,
    Char,
    VarChar,
    NChar,
    NVarChar,
    Time,
    Date,
    SmallDateTime,
    DateTime,
    DateTime2,
};

struct SqlType {
    static constexpr int32_t kMax = -1;  // length of varchar(MAX)

    SqlKind kind = SqlKind::Null;
    uint8_t precision = 0;  // Numeric and the moneys
    uint8_t scale = 0;      // Numeric and the moneys; of Time and DateTime2 the places of a second
    int32_t length = 0;     // text only, in characters; kMax for (MAX)

    static SqlType of(SqlKind k) {
        if (k == SqlKind::Money) return {k, 19, 4};
        if (k == SqlKind::SmallMoney) return {k, 10, 4};
        if (k == SqlKind::Time || k == SqlKind::DateTime2) return {k, 0, 7};
        return {k};
    }
    static SqlType numeric(int precision, int scale) {
        return SqlType{SqlKind::Numeric, static_cast<uint8_t>(precision),
                       static_cast<uint8_t>(scale), 0};
    }
    static SqlType text(SqlKind k, int32_t length) { return SqlType{k, 0, 0, length}; }

    bool isText() const { return kind >= SqlKind::Char && kind <= SqlKind::NVarChar; }
    bool isUnicode() const { return kind == SqlKind::NChar || kind == SqlKind::NVarChar; }
    bool isFixedText() const { return kind == SqlKind::Char || kind == SqlKind::NChar; }
    bool isInteger() const { return kind >= SqlKind::Bit && kind <= SqlKind::BigInt; }
    bool isNumber() const { return kind >= SqlKind::Bit && kind <= SqlKind::Float; }
    bool isMoney() const { return kind == SqlKind::SmallMoney || kind == SqlKind::Money; }
    // A whole number of 10^-scale.
    bool isDecimal() const { return kind >= SqlKind::SmallMoney && kind <= SqlKind::Numeric; }
    bool isFloating() const { return kind == SqlKind::Real || kind == SqlKind::Float; }
    // Held as a DateTime value.
    bool isDate() const { return kind >= SqlKind::Date && kind <= SqlKind::DateTime; }
    // Held as a count of 100 nanoseconds: since midnight, or since 0001-01-01.
    bool isClock() const { return kind == SqlKind::Time || kind == SqlKind::DateTime2; }

    // The name without length, as messages and INFORMATION_SCHEMA show it: "varchar".
    const char* name() const;
    // The whole type as DDL writes it: "numeric(18,2)", "varchar(MAX)".
    std::string ddl() const;

    bool operator==(const SqlType&) const = default;
};

}  // namespace owb
