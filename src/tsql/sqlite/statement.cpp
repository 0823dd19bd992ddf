#include "tsql/sqlite/statement.h"

#include <sqlite3.h>

namespace owb::tsql {

void SqliteStatement::Finalize::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

void SqliteStatement::bind(int parameter, const Value& v) {
    sqlite3_stmt* const s = statement_.get();
    if (v.isNull()) {
        sqlite3_bind_null(s, parameter);
    } else if (v.isInt()) {
        sqlite3_bind_int64(s, parameter, v.asInt());
    } else if (v.isDouble()) {
        sqlite3_bind_double(s, parameter, v.asDouble());
    } else if (v.isDecimal()) {
        const int128 n = v.asDecimal().unscaled();
        if (n >= INT64_MIN && n <= INT64_MAX) {
            sqlite3_bind_int64(s, parameter, static_cast<int64_t>(n));
        } else {
            unsigned char bytes[16];
            packWide(n, bytes);
            sqlite3_bind_blob(s, parameter, bytes, 16, SQLITE_TRANSIENT);
        }
    } else if (v.isText()) {
        const std::string& text = v.asText();
        sqlite3_bind_text64(s, parameter, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    } else if (v.asDate().hasTime()) {
        sqlite3_bind_double(s, parameter, v.asDate().toDays());
    } else {
        sqlite3_bind_int64(s, parameter, v.asDate().day);
    }
}

void SqliteStatement::bind(int parameter, SqliteValue value) {
    sqlite3_bind_value(statement_.get(), parameter, value.value_);
}

void SqliteStatement::bindPointer(int parameter, void* pointer, const char* kind) {
    sqlite3_bind_pointer(statement_.get(), parameter, pointer, kind, nullptr);
}

int SqliteStatement::columnCount() const {
    return sqlite3_column_count(statement_.get());
}

Value SqliteStatement::value(int column, const SqlType& type) const {
    sqlite3_stmt* const s = statement_.get();
    const int held = sqlite3_column_type(s, column);
    if (held == SQLITE_NULL) return {};
    if (held == SQLITE_INTEGER) {
        const int64_t n = sqlite3_column_int64(s, column);
        if (type.isDecimal()) return Value(Decimal(n, type.scale));
        if (type.isFloating()) return Value(static_cast<double>(n));
        if (type.isDate()) return Value(DateTime{static_cast<int32_t>(n), 0});
        if (!type.isText()) return Value(n);
    }
    if (held == SQLITE_TEXT) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(s, column));
        return Value(std::string_view(text ? text : "", sqlite3_column_bytes(s, column)));
    }
    return SqliteValue(sqlite3_column_value(s, column)).as(type);
}

int64_t SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::string SqliteStatement::text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    return text ? std::string(text, sqlite3_column_bytes(statement_.get(), column)) : "";
}

KeptValue SqliteStatement::kept(int column) const {
    return KeptValue(SqliteValue(sqlite3_column_value(statement_.get(), column)));
}

void SqliteStatement::rewind() {
    sqlite3_reset(statement_.get());
}

}  // namespace owb::tsql
