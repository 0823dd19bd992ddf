#include "session/modSave.h"

#include <algorithm>

#include "base/utf8.h"
#include "db/recordset.h"
#include "db/sql_text.h"
#include "session/Session.h"
#include "session/locks.h"

namespace owb {

namespace {

// What a refused batch throws; its state is the place of the text among the refusals, from 1.
constexpr int kRefused = 51917;

std::string equals(const std::string& column, const std::string& literal) {
    return column + (literal == "NULL" ? " IS NULL" : " = " + literal);
}

}  // namespace

// --- RowText ---

RowText& RowText::set(const std::string& column, const Value& value) {
    return setSql(column, sqlLiteral(value));
}

RowText& RowText::setSql(const std::string& column, const std::string& expression) {
    cells_.emplace_back(column, expression);
    return *this;
}

RowText& RowText::join(const RowText& further) {
    cells_.insert(cells_.end(), further.cells_.begin(), further.cells_.end());
    return *this;
}

std::string RowText::list(const char* between, bool asCondition) const {
    std::string out;
    for (const auto& [column, expression] : cells_)
        out += (out.empty() ? "" : between) +
               (asCondition ? equals(column, expression) : column + " = " + expression);
    return out;
}

std::string RowText::insertInto(const std::string& table) const {
    std::string columns, values;
    for (const auto& [column, expression] : cells_) {
        columns += (columns.empty() ? "" : ", ") + column;
        values += (values.empty() ? "" : ", ") + expression;
    }
    return Sql() << " INSERT INTO " << table << " (" << columns << ") VALUES (" << values << ")";
}

std::string RowText::update(const std::string& table, const std::string& where) const {
    return Sql() << " UPDATE " << table << " SET " << list(", ", false) << " WHERE " << where;
}

std::string RowText::updateOrInsert(const std::string& table, const RowText& key) const {
    RowText row = key;
    row.join(*this);
    return update(table, key.condition()) + " IF @@ROWCOUNT = 0" + row.insertInto(table);
}

std::string RowText::condition() const {
    return list(" AND ", true);
}

// --- ShownRow ---

ShownRow::ShownRow(Session& session, const std::string& table, const std::string& columns,
                   const std::string& key)
    : table_(table), columns_(columns), key_(key) {
    Recordset rs(session.gConn,
                 Sql() << "SELECT " << columns << " FROM " << table << " WHERE " << key);
    if (rs.IsEOF()) return;
    for (size_t i = 0; i < rs.FieldCount(); ++i)
        cells_.emplace_back(rs.Fields(i).name(), rs.Fields(i).value());
}

Value ShownRow::value(const std::string& column) const {
    for (const auto& [name, value] : cells_)
        if (equalsIgnoreCaseAscii(name, column)) return value;
    return {};
}

bool ShownRow::standsNow(Session& session) const {
    return ShownRow(session, table_, columns_, key_).cells_ == cells_;
}

std::string ShownRow::stands() const {
    std::string row = "EXISTS (SELECT * FROM " + table_ + " WITH (UPDLOCK, HOLDLOCK) WHERE " + key_;
    if (!found()) return "NOT " + row + ")";
    for (const auto& [name, value] : cells_) row += " AND " + equals(name, sqlLiteral(value));
    return row + ")";
}

// --- SaveBatch ---

SaveBatch& SaveBatch::add(const std::string& statements) {
    sql_ += statements;
    return *this;
}

SaveBatch& SaveBatch::refuseUnless(const std::string& condition, const std::string& text) {
    auto known = std::find(refusals_.begin(), refusals_.end(), text);
    if (known == refusals_.end()) known = refusals_.insert(known, text);
    return add(Sql() << " IF NOT (" << condition << ") BEGIN; THROW " << kRefused
                     << ", 'The save was refused.', " << known - refusals_.begin() + 1 << "; END");
}

SaveBatch& SaveBatch::requireOpen(const Lock& lock) {
    return refuseUnless(lock.open(), lock.text);
}

SaveBatch& SaveBatch::audit(AuditLine line) {
    auditLines_.push_back(std::move(line));
    return *this;
}

SaveBatch& SaveBatch::requireShown(const ShownRow& row, const std::string& what) {
    return refuseUnless(row.stands(), FnStrChangedMeanwhile(what));
}

std::string SaveBatch::newKey(const std::string& table, const std::string& column) {
    const std::string key = "@KEY" + std::to_string(++keys_);
    add(Sql() << " DECLARE " << key << " int SELECT " << key << " = ISNULL(MAX(" << column
              << "), 0) + 1 FROM " << table << " WITH (TABLOCKX, HOLDLOCK)");
    return key;
}

void SaveBatch::run(Session& session) const {
    try {
        session.gConn.ExecuteAtomic(sql_);
    } catch (const DbError& e) {
        if (e.number != kRefused) throw;
        throw SaveRefused(refusals_.at(static_cast<size_t>(e.state) - 1));
    }
    if (auditLines_.empty() || !FnBlnAuditTrailOn(session)) return;
    for (const AuditLine& line : auditLines_)
        UpdateAuditTrail(session, kAuditModule, line.empId, line.action, line.detail.text(),
                         line.extra);
}

std::string FnStrChangedMeanwhile(const std::string& what) {
    return what + " has been changed by another user meanwhile.";
}

}  // namespace owb
