#include "tsql/sqlite/value.h"

#include <sqlite3.h>

namespace owb::tsql {

static_assert(SqliteValue::Integer == SQLITE_INTEGER && SqliteValue::Null == SQLITE_NULL);

void packWide(int128 value, unsigned char* out) {
    auto bits = static_cast<unsigned __int128>(value) ^ (static_cast<unsigned __int128>(1) << 127);
    for (int i = 15; i >= 0; --i) {
        out[i] = static_cast<unsigned char>(bits & 0xFF);
        bits >>= 8;
    }
}

namespace {

int128 unpackWide(const unsigned char* in) {
    unsigned __int128 bits = 0;
    for (int i = 0; i < 16; ++i) bits = (bits << 8) | in[i];
    return static_cast<int128>(bits ^ (static_cast<unsigned __int128>(1) << 127));
}

}  // namespace

SqliteValue::Kind SqliteValue::kind() const {
    return static_cast<Kind>(sqlite3_value_type(value_));
}

int64_t SqliteValue::integer() const {
    return sqlite3_value_int64(value_);
}

int SqliteValue::int32() const {
    return sqlite3_value_int(value_);
}

double SqliteValue::real() const {
    return sqlite3_value_double(value_);
}

std::string_view SqliteValue::text() const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value_));
    return text ? std::string_view(text, sqlite3_value_bytes(value_)) : std::string_view();
}

int128 SqliteValue::wide() const {
    if (sqlite3_value_type(value_) == SQLITE_BLOB && sqlite3_value_bytes(value_) == 16)
        return unpackWide(static_cast<const unsigned char*>(sqlite3_value_blob(value_)));
    return sqlite3_value_int64(value_);
}

Value SqliteValue::as(const SqlType& type) const {
    const Kind held = kind();
    if (held == Null) return {};
    if (type.isText() || held == Text) return Value(text());
    if (type.isDecimal()) return Value(Decimal(wide(), type.scale));
    if (type.isFloating()) return Value(real());
    if (type.isDate()) {
        if (held == Integer) return Value(DateTime{static_cast<int32_t>(integer()), 0});
        return Value(DateTime::fromDays(real()));
    }
    if (held == Real) return Value(real());
    return Value(integer());
}

void* SqliteValue::pointer(const char* kind) const {
    return sqlite3_value_pointer(value_, kind);
}

KeptValue::KeptValue(SqliteValue value) : value_(sqlite3_value_dup(value.value_)) {}

void KeptValue::Free::operator()(sqlite3_value* value) const {
    sqlite3_value_free(value);
}

bool SqliteArguments::anyNull(int count) const {
    for (int i = 0; i < count; ++i)
        if (sqlite3_value_type(values_[i]) == SQLITE_NULL) return true;
    return false;
}

void SqliteResult::giveNull() const {
    sqlite3_result_null(context_);
}

void SqliteResult::giveInteger(int64_t value) const {
    sqlite3_result_int64(context_, value);
}

void SqliteResult::giveReal(double value) const {
    sqlite3_result_double(context_, value);
}

void SqliteResult::giveText(std::string_view text) const {
    sqlite3_result_text64(context_, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void SqliteResult::giveWide(int128 value) const {
    if (value >= INT64_MIN && value <= INT64_MAX) {
        sqlite3_result_int64(context_, static_cast<int64_t>(value));
    } else {
        unsigned char bytes[16];
        packWide(value, bytes);
        sqlite3_result_blob(context_, bytes, 16, SQLITE_TRANSIENT);
    }
}

void SqliteResult::give(const Value& v) const {
    if (v.isNull())
        giveNull();
    else if (v.isInt())
        giveInteger(v.asInt());
    else if (v.isDouble())
        giveReal(v.asDouble());
    else if (v.isDecimal())
        giveWide(v.asDecimal().unscaled());
    else if (v.isText())
        giveText(v.asText());
    else if (v.asDate().hasTime())
        giveReal(v.asDate().toDays());
    else
        giveInteger(v.asDate().day);
}

void SqliteResult::giveCopy(SqliteValue value) const {
    sqlite3_result_value(context_, value.value_);
}

void* SqliteResult::stateBytes(int size) const {
    return sqlite3_aggregate_context(context_, size);
}

}  // namespace owb::tsql
