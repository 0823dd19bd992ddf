// How screens write: one save or deletion is one batch that the database does whole or not at all.
// It holds, in this order, what must still be true when it runs, the rows, and the marks that the
// rows bring (marks/marks.h). Its audit line follows as a statement of its own once the batch is
// done, since no save fails for the trail's sake.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/value.h"
#include "session/modAuditTrail.h"

namespace owb {

struct Lock;
struct Session;

// Columns of one row with what is written into them. Every statement begins with a blank.
class RowText {
  public:
    RowText& set(const std::string& column, const Value& value);
    // T-SQL instead of a value: a variable, a sub-query.
    RowText& setSql(const std::string& column, const std::string& expression);

    RowText& join(const RowText& further);  // its columns behind these

    std::string insertInto(const std::string& table) const;
    std::string update(const std::string& table, const std::string& where) const;
    // The row of the key is changed, or added with the key's columns where there is none.
    std::string updateOrInsert(const std::string& table, const RowText& key) const;
    std::string condition() const;  // "a = 1 AND b IS NULL"

  private:
    std::string list(const char* between, bool asCondition) const;

    std::vector<std::pair<std::string, std::string>> cells_;
};

// A row as it stood when a screen read it, so that a save can tell whether somebody else has
// changed or deleted it since. Without a row it tells whether one has come.
class ShownRow {
  public:
    ShownRow() = default;  // nothing was read
    // `columns` as in a SELECT, names alone; `key` names at most one row. Throws DbError.
    ShownRow(Session& session, const std::string& table, const std::string& columns,
             const std::string& key);

    bool isRead() const { return !table_.empty(); }
    bool found() const { return !cells_.empty(); }
    const std::string& key() const { return key_; }
    // Of a column by name, in any letter case; NULL without a row.
    Value value(const std::string& column) const;
    // Whether the table still holds it to the letter. Throws DbError.
    bool standsNow(Session& session) const;
    // The same as a condition within a batch, which holds the row until the batch has ended.
    std::string stands() const;

  private:
    std::string table_, columns_, key_;
    std::vector<std::pair<std::string, Value>> cells_;
};

// The database did not do a save, since what it rests on is no longer so; the text says what.
struct SaveRefused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class SaveBatch {
  public:
    // Statements; each begins with a blank.
    SaveBatch& add(const std::string& statements);
    // When the condition does not hold at this place of the batch, nothing of it is done.
    SaveBatch& refuseUnless(const std::string& condition, const std::string& text);
    // The lock does not hold.
    SaveBatch& requireOpen(const Lock& lock);
    // The shown row is as it was; `what` begins the text: "<what> has been changed by another user
    // meanwhile.".
    SaveBatch& requireShown(const ShownRow& row, const std::string& what);
    // A variable that holds the table's next key (MAX + 1). Nobody else can take it before the
    // batch has ended.
    std::string newKey(const std::string& table, const std::string& column);

    // The line of the trail for the save, where the trail is kept.
    SaveBatch& audit(AuditLine line);

    // Throws SaveRefused, or DbError; in both cases nothing is done.
    void run(Session& session) const;

  private:
    std::string sql_;
    std::vector<std::string> refusals_;
    std::vector<AuditLine> auditLines_;
    int keys_ = 0;
};

// "<what> has been changed by another user meanwhile."
std::string FnStrChangedMeanwhile(const std::string& what);

}  // namespace owb
