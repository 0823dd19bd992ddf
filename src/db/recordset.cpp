#include "db/recordset.h"

#include "base/utf8.h"
#include "db/client_error.h"
#include "db/criteria.h"

namespace owb {

const Value& Field::value() const {
    return rs_.cell(column_);
}

Field& Field::operator=(const Value& v) {
    rs_.assign(column_, v);
    return *this;
}

const std::string& Field::name() const {
    return rs_.set_.columns[column_].name;
}

const SqlType& Field::type() const {
    return rs_.set_.columns[column_].type;
}

void Recordset::Open(const std::string& sql, Connection& connection, CursorType, LockType lock) {
    if (open_) throw clientError(ClientError::Open);
    BatchResult result = connection.Run(sql);
    connection_ = &connection;
    source_ = sql;
    lock_ = lock;
    added_.clear();
    erased_.clear();
    tableColumns_.clear();
    edit_ = Edit::None;
    open_ = !result.sets.empty();
    set_ = open_ ? std::move(result.sets.front()) : ResultSet{};
    showAll();
}

void Recordset::Close() {
    if (!open_) throw clientError(ClientError::Closed);
    *this = Recordset();
}

void Recordset::Requery() {
    requireOpen();
    if (!connection_) return;
    Connection& connection = *connection_;
    const std::string source = source_;
    const LockType lock = lock_;
    *this = Recordset();
    Open(source, connection, adOpenForwardOnly, lock);
}

void Recordset::showAll() {
    visible_.clear();
    for (size_t row = 0; row < set_.rows; ++row)
        if (!erased_.count(row)) visible_.push_back(row);
    position_ = 0;
    before_ = deleted_ = false;
}

void Recordset::MoveNext() {
    requireOpen();
    finishEdit();
    if (deleted_ || before_) {
        deleted_ = before_ = false;
        return;
    }
    if (IsEOF()) throw clientError(ClientError::NoCurrentRow);
    ++position_;
}

void Recordset::MovePrevious() {
    requireOpen();
    finishEdit();
    if (IsBOF()) throw clientError(ClientError::NoCurrentRow);
    deleted_ = false;
    if (position_ == 0)
        before_ = true;
    else
        --position_;
}

void Recordset::MoveFirst() {
    requireOpen();
    finishEdit();
    if (visible_.empty() && !deleted_) throw clientError(ClientError::NoCurrentRow);
    before_ = deleted_ = false;
    position_ = 0;
}

void Recordset::MoveLast() {
    MoveFirst();
    if (!visible_.empty()) position_ = visible_.size() - 1;
}

void Recordset::setAbsolutePosition(size_t position) {
    requireOpen();
    finishEdit();
    if (position < 1 || position > visible_.size()) throw clientError(ClientError::NoCurrentRow);
    before_ = deleted_ = false;
    position_ = position - 1;
}

Field Recordset::Fields(std::string_view name) {
    const size_t column = columnIndex(name);
    if (column == kNone) throw clientError(ClientError::NoSuchField, name);
    return Field(*this, column);
}

Field Recordset::Fields(size_t index) {
    if (index >= FieldCount()) throw clientError(ClientError::NoSuchField, std::to_string(index));
    return Field(*this, index);
}

bool Recordset::HasField(std::string_view name) const {
    return columnIndex(name) != kNone;
}

size_t Recordset::columnIndex(std::string_view name) const {
    for (size_t i = 0; i < set_.columns.size(); ++i)
        if (equalsIgnoreCaseAscii(set_.columns[i].name, name)) return i;
    return kNone;
}

const Value& Recordset::cell(size_t column) const {
    if (edit_ != Edit::None && (edit_ == Edit::New || assigned_[column])) return pending_[column];
    requireRow();
    return set_.at(visible_[position_], column);
}

void Recordset::requireOpen() const {
    if (!open_) throw clientError(ClientError::Closed);
}

void Recordset::requireRow() const {
    requireOpen();
    if (edit_ == Edit::New) return;
    if (deleted_ || before_ || IsEOF()) throw clientError(ClientError::NoCurrentRow);
}

void Recordset::Append(const std::string& name, SqlType type) {
    if (open_) throw clientError(ClientError::Open);
    set_.columns.push_back({name, type, true});
}

void Recordset::OpenUnconnected() {
    if (open_) throw clientError(ClientError::Open);
    lock_ = adLockOptimistic;
    open_ = true;
}

void Recordset::Filter(const std::string& criteria) {
    requireOpen();
    finishEdit();
    if (trim(criteria).empty()) return showAll();
    const Criteria wanted(criteria, [this](std::string_view name) {
        const size_t column = columnIndex(name);
        if (column == kNone) throw clientError(ClientError::NoSuchField, name);
        return column;
    });
    showAll();
    std::erase_if(visible_, [&](size_t row) {
        return !wanted.fits([&](size_t column) -> const Value& { return set_.at(row, column); });
    });
}

void Recordset::Find(const std::string& criteria) {
    requireRow();
    finishEdit();
    const Criteria wanted(criteria, [this](std::string_view name) {
        const size_t column = columnIndex(name);
        if (column == kNone) throw clientError(ClientError::NoSuchField, name);
        return column;
    });
    for (; position_ < visible_.size(); ++position_) {
        const size_t row = visible_[position_];
        if (wanted.fits([&](size_t column) -> const Value& { return set_.at(row, column); }))
            return;
    }
}

std::vector<std::vector<Value>> Recordset::GetRows() {
    requireRow();
    finishEdit();
    std::vector<std::vector<Value>> columns(FieldCount());
    for (size_t c = 0; c < columns.size(); ++c)
        for (size_t i = position_; i < visible_.size(); ++i)
            columns[c].push_back(set_.at(visible_[i], c));
    position_ = visible_.size();
    return columns;
}

void CloseRecordset(Recordset& rs) {
    rs = Recordset();
}

}  // namespace owb
