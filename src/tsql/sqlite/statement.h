// A prepared statement of SQLite. Sqlite prepares it and steps through its rows.
#pragma once

#include <memory>
#include <string>

#include "tsql/sqlite/value.h"

struct sqlite3_stmt;

namespace owb::tsql {

class SqliteStatement {
  public:
    SqliteStatement() = default;  // none
    explicit SqliteStatement(sqlite3_stmt* statement) : statement_(statement) {}
    explicit operator bool() const { return statement_ != nullptr; }

    // Parameters count from 1 and keep their values when the statement runs again.
    void bind(int parameter, const Value& value);
    void bind(int parameter, SqliteValue value);
    // `kind` is a text that lives as long as the program; see SqliteValue::pointer.
    void bindPointer(int parameter, void* pointer, const char* kind);

    // Of the row that it stands on; columns count from 0.
    int columnCount() const;
    Value value(int column, const SqlType& type) const;
    int64_t integer(int column) const;
    std::string text(int column) const;
    KeptValue kept(int column) const;

    // Ends the run, so that the statement can run again. Until then it holds what it reads.
    void rewind();

  private:
    friend class Sqlite;
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

}  // namespace owb::tsql
