// A client-side snapshot of a query, walked by rows; updatable ones write back row by row in T-SQL
// text that they build themselves, one statement for one row.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "db/connection.h"
#include "db/sql_text.h"

namespace owb {

enum CursorType { adOpenForwardOnly = 0, adOpenKeyset = 1, adOpenDynamic = 2 };
enum LockType { adLockReadOnly = 1, adLockPessimistic = 2, adLockOptimistic = 3 };

class Recordset;

// One column at the current row. Assigning keeps the value for the next Update.
class Field {
  public:
    const Value& value() const;
    Field& operator=(const Value& v);
    Field& operator=(const Field& other) { return *this = other.value(); }
    const std::string& name() const;
    const SqlType& type() const;

    // Lenient reading (see Value): NULL is 0, "" or false.
    bool isNull() const { return value().isNull(); }
    int64_t toInt() const { return value().toInt(); }
    double toDouble() const { return value().toDouble(); }
    bool toBool() const { return value().toBool(); }
    std::string toText() const { return value().toText(); }
    DateTime toDate() const { return value().toDate(); }

  private:
    friend class Recordset;
    Field(Recordset& rs, size_t column) : rs_(rs), column_(column) {}
    Recordset& rs_;
    size_t column_;
};

class Recordset {
  public:
    Recordset() = default;
    // Shorthand for a forward-only, read-only Open.
    Recordset(Connection& connection, const std::string& sql) { Open(sql, connection); }

    // Takes the first result set of the batch. A batch without one leaves a closed recordset.
    void Open(const std::string& sql, Connection& connection, CursorType cursor = adOpenForwardOnly,
              LockType lock = adLockReadOnly);
    void Close();
    int State() const { return open_ ? 1 : 0; }
    void Requery();

    bool IsEOF() const { return !deleted_ && !before_ && position_ >= visible_.size(); }
    bool IsBOF() const { return before_ || (!deleted_ && visible_.empty()); }
    void MoveNext();
    void MovePrevious();
    void MoveFirst();
    void MoveLast();
    size_t RecordCount() const { return visible_.size(); }
    size_t AbsolutePosition() const { return position_ + 1; }  // from 1
    void setAbsolutePosition(size_t position);

    size_t FieldCount() const { return set_.columns.size(); }
    Field Fields(std::string_view name);  // throws DbError 3265 when there is none
    Field Fields(size_t index);
    bool HasField(std::string_view name) const;
    // Adds a column to an unconnected recordset, before its first AddNew.
    void Append(const std::string& name, SqlType type);
    // Opens an unconnected recordset, which lives in memory alone.
    void OpenUnconnected();

    // A new row becomes current; its fields are NULL until assigned and are written by Update.
    void AddNew();
    // Writes the assigned fields of the current row: one INSERT, or one UPDATE of the row that
    // still holds the values last read. Throws DbError when that row has gone or changed.
    void Update();
    void CancelUpdate();
    void Delete();

    // Shows only rows that fit: "FIELD = value [AND ...] [OR ...]" with = <> < > <= >= LIKE,
    // values bare, in quotes or between #. "" shows all. Moves to the first row.
    void Filter(const std::string& criteria);
    // First row from the current one on that fits one comparison; at the end when none does.
    void Find(const std::string& criteria);
    // All cells from the current row on, as [column][row].
    std::vector<std::vector<Value>> GetRows();

  private:
    friend class Field;
    enum class Edit { None, Change, New };
    static constexpr size_t kNone = static_cast<size_t>(-1);

    size_t columnIndex(std::string_view name) const;  // kNone when absent
    const Value& cell(size_t column) const;
    void assign(size_t column, const Value& v);
    void requireOpen() const;
    void requireRow() const;
    void finishEdit();  // a move away from an edited row writes it
    void showAll();

    // Writing back (recordset_edit.cpp).
    void requireUpdatable() const;
    std::string tableName() const;
    const std::vector<char>& tableColumns();  // per column: the table's own
    std::string rowCondition(size_t row);
    void runForOneRow(const std::string& statement);
    void insertRow();
    void updateRow();
    void takePending(size_t row);

    Connection* connection_ = nullptr;  // null: unconnected
    std::string source_;
    LockType lock_ = adLockReadOnly;
    ResultSet set_;
    std::vector<size_t> visible_;        // rows of set_ that the filter lets through
    size_t position_ = 0;                // index into visible_
    std::unordered_set<size_t> erased_;  // rows of set_ that were deleted here
    bool open_ = false;
    bool before_ = false;   // stands before the first row
    bool deleted_ = false;  // the current row was deleted; position_ is already the next one
    Edit edit_ = Edit::None;
    std::vector<Value> pending_;
    std::vector<char> assigned_;
    std::vector<char> tableColumns_;  // empty until asked
    // Rows added here: which columns hold what was written. The rest holds the table's defaults,
    // which are not read back.
    std::unordered_map<size_t, std::vector<char>> added_;
};

// Closes the recordset, any error ignored.
void CloseRecordset(Recordset& rs);

}  // namespace owb
