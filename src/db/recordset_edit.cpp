// Writing a recordset's rows back. Kept true:
//  1. One Update or Delete is one statement that touches at most one row (TOP (1)).
//  2. That row is told by what was read: every column equals its old value, except float columns,
//     whose text need not read back exactly, and (MAX) texts, which may be long.
//  3. @@ROWCOUNT 0 means that somebody else changed or removed the row: an error, nothing written.
#include <cctype>

#include "base/utf8.h"
#include "db/client_error.h"
#include "db/recordset.h"

namespace owb {

namespace {

// Cuts a source text into words, names in brackets, and single marks; strings count as one mark.
class SourceWords {
  public:
    explicit SourceWords(const std::string& text) : text_(text) {}

    // The next word, or "" at the end. `bracketed` tells a name that stood in brackets.
    std::string next(bool& bracketed) {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
        bracketed = false;
        if (at_ == text_.size()) return "";
        const char c = text_[at_];
        if (c == '[') {
            bracketed = true;
            const size_t end = std::min(text_.find(']', at_), text_.size());
            std::string name = text_.substr(at_ + 1, end - at_ - 1);
            at_ = std::min(end + 1, text_.size());
            return name;
        }
        if (c == '\'') {
            at_ = std::min(text_.find('\'', at_ + 1), text_.size() - 1) + 1;
            return "'";
        }
        if (!isWord(c)) return std::string(1, text_[at_++]);
        const size_t from = at_;
        while (at_ < text_.size() && isWord(text_[at_])) ++at_;
        return text_.substr(from, at_ - from);
    }

    static bool isWord(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '#' || c == '@' ||
               static_cast<unsigned char>(c) >= 0x80;
    }

  private:
    const std::string& text_;
    size_t at_ = 0;
};

struct SourceTable {
    std::string name;    // ready for SQL text; "" when the text does not name exactly one table
    bool plain = false;  // the select list is "*" alone
};

SourceTable readSource(const std::string& source) {
    SourceTable table;
    SourceWords words(source);
    bool bracketed = false;
    int depth = 0;
    size_t listWords = 0;
    bool star = false;
    std::string word;
    while (!(word = words.next(bracketed)).empty() || bracketed) {
        if (!bracketed && depth == 0 && equalsIgnoreCaseAscii(word, "FROM")) break;
        if (word == "(" && !bracketed) ++depth;
        if (word == ")" && !bracketed) --depth;
        ++listWords;  // SELECT itself is the first
        star = word == "*" && !bracketed;
    }
    table.plain = star && listWords == 2;
    std::string name;
    for (bool more = true; more;) {
        word = words.next(bracketed);
        if (word.empty() || (!bracketed && !SourceWords::isWord(word[0]))) return table;
        name += sqlName(word);
        word = words.next(bracketed);
        more = word == "." && !bracketed;
        if (more) name += '.';
    }
    // Behind the table: its alias, and then the clauses of a query on it alone.
    for (depth = 0; !word.empty() || bracketed; word = words.next(bracketed)) {
        if (bracketed) continue;
        if (word == "(") ++depth;
        if (word == ")") --depth;
        if (depth == 0 && (word == "," || equalsIgnoreCaseAscii(word, "JOIN"))) return table;
        if (equalsIgnoreCaseAscii(word, "WHERE") || equalsIgnoreCaseAscii(word, "ORDER")) break;
    }
    table.name = name;
    return table;
}

// The value as a column of that type holds it after the server has taken it.
Value fitted(const Value& v, const SqlType& type) {
    if (v.isNull()) return v;
    switch (type.kind) {
        case SqlKind::Bit:
            return Value(v.toBool());
        case SqlKind::TinyInt:
        case SqlKind::SmallInt:
        case SqlKind::Int:
        case SqlKind::BigInt:
            // The server cuts the places of a number off.
            if (v.isDouble()) return Value(static_cast<int64_t>(v.asDouble()));
            if (v.isDecimal())
                return Value(static_cast<int64_t>(v.asDecimal().truncated(0).unscaled()));
            return Value(v.toInt());
        case SqlKind::Numeric: {
            if (v.isDecimal()) return Value(v.asDecimal().rescaled(type.scale));
            Decimal exact;
            if (v.isText() && Decimal::parse(trim(v.asText()), exact))
                return Value(exact.rescaled(type.scale));
            return Value(Decimal::fromDouble(v.toDouble(), type.scale));
        }
        case SqlKind::Float:
            return Value(v.toDouble());
        case SqlKind::Date:
            return Value(DateTime{v.toDate().day, 0});
        case SqlKind::DateTime:
            return Value(v.toDate());
        case SqlKind::Null:
            return v;
        default:
            return Value(v.toText());
    }
}

bool identifiesRows(const SqlType& type) {
    return type.kind != SqlKind::Float && !(type.isText() && type.length == SqlType::kMax);
}

}  // namespace

void Recordset::requireUpdatable() const {
    requireOpen();
    if (lock_ == adLockReadOnly) throw clientError(ClientError::NotUpdatable);
}

void Recordset::assign(size_t column, const Value& v) {
    requireUpdatable();
    requireRow();
    if (edit_ == Edit::None) {
        edit_ = Edit::Change;
        pending_.assign(FieldCount(), Value());
        assigned_.assign(FieldCount(), 0);
    }
    pending_[column] = v;
    assigned_[column] = 1;
}

void Recordset::AddNew() {
    requireUpdatable();
    finishEdit();
    edit_ = Edit::New;
    pending_.assign(FieldCount(), Value());
    assigned_.assign(FieldCount(), 0);
}

void Recordset::Update() {
    requireUpdatable();
    if (edit_ == Edit::None) return;
    if (edit_ == Edit::New)
        insertRow();
    else
        updateRow();
    edit_ = Edit::None;
}

void Recordset::CancelUpdate() {
    edit_ = Edit::None;
}

void Recordset::finishEdit() {
    if (edit_ != Edit::None) Update();
}

void Recordset::insertRow() {
    if (connection_) {
        std::string columns, values;
        for (size_t i = 0; i < FieldCount(); ++i) {
            if (!assigned_[i]) continue;
            if (!tableColumns()[i])
                throw clientError(ClientError::NotUpdatable, set_.columns[i].name);
            columns += (columns.empty() ? "" : ", ") + sqlName(set_.columns[i].name);
            values += (values.empty() ? "" : ", ") + sqlLiteral(pending_[i]);
        }
        connection_->Execute("INSERT INTO " + tableName() +
                             (columns.empty() ? std::string(" DEFAULT VALUES")
                                              : " (" + columns + ") VALUES (" + values + ")"));
        added_[set_.rows] = assigned_;
    }
    set_.cells.resize(set_.cells.size() + FieldCount());
    takePending(set_.rows);
    visible_.push_back(set_.rows++);
    position_ = visible_.size() - 1;
    before_ = deleted_ = false;
}

void Recordset::updateRow() {
    const size_t row = visible_[position_];
    if (connection_) {
        std::string list;
        for (size_t i = 0; i < FieldCount(); ++i) {
            if (!assigned_[i]) continue;
            if (!tableColumns()[i])
                throw clientError(ClientError::NotUpdatable, set_.columns[i].name);
            list += (list.empty() ? "" : ", ") + sqlName(set_.columns[i].name) + " = " +
                    sqlLiteral(pending_[i]);
        }
        runForOneRow("UPDATE TOP (1) " + tableName() + " SET " + list + rowCondition(row));
        const auto added = added_.find(row);
        if (added != added_.end())
            for (size_t i = 0; i < FieldCount(); ++i)
                if (assigned_[i]) added->second[i] = 1;
    }
    takePending(row);
}

void Recordset::Delete() {
    requireUpdatable();
    requireRow();
    if (edit_ == Edit::New) return CancelUpdate();
    edit_ = Edit::None;
    if (connection_)
        runForOneRow("DELETE TOP (1) FROM " + tableName() + rowCondition(visible_[position_]));
    erased_.insert(visible_[position_]);
    visible_.erase(visible_.begin() + static_cast<std::ptrdiff_t>(position_));
    deleted_ = true;
}

void Recordset::takePending(size_t row) {
    for (size_t i = 0; i < FieldCount(); ++i)
        if (assigned_[i])
            set_.cells[row * FieldCount() + i] = fitted(pending_[i], set_.columns[i].type);
}

std::string Recordset::tableName() const {
    std::string name = readSource(source_).name;
    if (name.empty()) throw clientError(ClientError::NoBaseTable);
    return name;
}

const std::vector<char>& Recordset::tableColumns() {
    if (!tableColumns_.empty()) return tableColumns_;
    if (readSource(source_).plain) {
        tableColumns_.assign(FieldCount(), 1);
        return tableColumns_;
    }
    // The list may hold expressions and names of its own: the table tells which are columns.
    const BatchResult table = connection_->Run("SELECT TOP (0) * FROM " + tableName());
    tableColumns_.assign(FieldCount(), 0);
    for (size_t i = 0; i < FieldCount(); ++i)
        for (const Column& own : table.sets.front().columns)
            if (equalsIgnoreCaseAscii(own.name, set_.columns[i].name)) tableColumns_[i] = 1;
    return tableColumns_;
}

std::string Recordset::rowCondition(size_t row) {
    const auto added = added_.find(row);
    std::string text;
    for (size_t i = 0; i < FieldCount(); ++i) {
        if (!tableColumns()[i] || !identifiesRows(set_.columns[i].type)) continue;
        if (added != added_.end() && !added->second[i]) continue;
        const Value& old = set_.at(row, i);
        text += (text.empty() ? " WHERE " : " AND ") + sqlName(set_.columns[i].name) +
                (old.isNull() ? " IS NULL" : " = " + sqlLiteral(old));
    }
    if (text.empty()) throw clientError(ClientError::NoKey);
    return text;
}

void Recordset::runForOneRow(const std::string& statement) {
    const BatchResult result = connection_->Run(statement + " SELECT @@ROWCOUNT");
    if (result.sets.empty() || result.sets.back().at(0, 0).toInt() == 0)
        throw clientError(ClientError::RowChanged);
}

}  // namespace owb
