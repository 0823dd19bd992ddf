// Values between the two worlds: what a Value of the engine is in SQLite and the other way round
// (types.h says how each type lies there).
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "base/sql_type.h"
#include "base/value.h"

struct sqlite3_context;
struct sqlite3_value;

namespace owb::tsql {

// A value that SQLite holds, for as long as the call lasts that it came with.
class SqliteValue {
  public:
    enum Kind : uint8_t { Integer = 1, Real, Text, Blob, Null };  // numbered as SQLite does

    explicit SqliteValue(sqlite3_value* value) : value_(value) {}

    Kind kind() const;
    bool isNull() const { return kind() == Null; }
    int64_t integer() const;
    int int32() const;  // its lower 32 bits
    double real() const;
    std::string_view text() const;
    int128 wide() const;  // a scaled number: an INTEGER or the BLOB of a wide one
    Value as(const SqlType& type) const;
    void* pointer(const char* kind) const;  // bound as such; null for any other value

  private:
    friend class KeptValue;
    friend class SqliteResult;
    friend class SqliteStatement;
    sqlite3_value* value_;
};

// A copy of such a value, of one's own.
class KeptValue {
  public:
    explicit KeptValue(SqliteValue value);
    SqliteValue get() const { return SqliteValue(value_.get()); }

  private:
    struct Free {
        void operator()(sqlite3_value* value) const;
    };
    std::unique_ptr<sqlite3_value, Free> value_;
};

class SqliteArguments {
  public:
    SqliteArguments(int count, sqlite3_value** values) : count_(count), values_(values) {}

    int count() const { return count_; }
    SqliteValue operator[](int i) const { return SqliteValue(values_[i]); }
    SqliteArguments from(int first) const { return {count_ - first, values_ + first}; }
    // What most functions begin with: NULL among the first ones gives NULL.
    bool anyNull(int count) const;
    bool anyNull() const { return anyNull(count_); }

  private:
    int count_;
    sqlite3_value** values_;
};

// Where a function leaves its result; none given is NULL.
class SqliteResult {
  public:
    explicit SqliteResult(sqlite3_context* context) : context_(context) {}

    void giveNull() const;
    void giveInteger(int64_t value) const;
    void giveReal(double value) const;
    void giveText(std::string_view text) const;
    void giveWide(int128 value) const;
    void give(const Value& value) const;
    void giveCopy(SqliteValue value) const;

    // What an aggregate remembers of one group: zeros at its first row. Null when memory is out.
    template <class State>
    State* state() const {
        return static_cast<State*>(stateBytes(sizeof(State)));
    }
    // The same when the group ends: null for one without rows.
    template <class State>
    State* stateSoFar() const {
        return static_cast<State*>(stateBytes(0));
    }

  private:
    void* stateBytes(int size) const;
    sqlite3_context* context_;
};

// A number beyond 64 bits is 16 bytes, the sign bit flipped, most significant byte first: so such
// numbers stand in their order.
void packWide(int128 value, unsigned char* out);

}  // namespace owb::tsql
