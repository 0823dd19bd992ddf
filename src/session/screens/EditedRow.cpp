#include "session/screens/EditedRow.h"

#include <algorithm>
#include <stdexcept>

#include "base/number_text.h"
#include "base/utf8.h"
#include "db/sql_text.h"

namespace owb {

// --- the columns ---

EditedRow::Field& EditedRow::add(Field field) {
    field.section = section_;
    field.control->writes = true;
    fields_.push_back(std::move(field));
    before_.emplace_back();
    begun_.emplace_back();
    return fields_.back();
}

void EditedRow::guardGroup(const OptionGroup& group) {
    for (OptionButton* button : group.buttons()) button->writes = true;
}

EditedRow::Field& EditedRow::text(const std::string& column, TextBox& box,
                                  const std::string& label) {
    return add({column, label, "", true, "", &box, [&box] { return Value(trim(box.value)); },
                [&box](const Value& v) { box.value = v.toText(); },
                [](const Value& v) { return v.toText(); }});
}

EditedRow::Field& EditedRow::number(const std::string& column, NumberBox& box,
                                    const std::string& label) {
    return add({column, label, "", true, "", &box, [&box] { return Value(box.number()); },
                [&box](const Value& v) { box.setNumber(v.toDouble()); },
                [](const Value& v) { return numberText(v.toDouble()); }});
}

// What is no date is a text; no save takes it, since its box refuses it.
EditedRow::Field& EditedRow::date(const std::string& column, DateBox& box,
                                  const std::string& label) {
    return add({column, label, "", true, "", &box,
                [&box] {
                    const auto date = box.date();
                    if (date) return Value(*date);
                    return box.value.empty() ? Value() : Value(box.value);
                },
                [&box](const Value& v) {
                    if (v.isText())
                        box.value = v.toText();
                    else
                        box.setDate(v.isNull() ? DateTime{} : v.toDate());
                },
                [](const Value& v) {
                    return v.isNull() ? std::string() : dateText(v.toDate(), "dd/mm/yyyy");
                }});
}

EditedRow::Field& EditedRow::check(const std::string& column, CheckBox& box,
                                   const std::string& label) {
    return add({column, label, "", true, "", &box, [&box] { return Value(box.value); },
                [&box](const Value& v) { box.value = v.toBool(); },
                [](const Value& v) { return FnStrYesNo(v.toBool()); }});
}

EditedRow::Field& EditedRow::option(const std::string& column, OptionGroup& group,
                                    const std::string& label, int first, int otherwise) {
    guardGroup(group);
    return add(
        {column, label, "", true, "", group.buttons().front(),
         [&group, first] { return group.chosen() < 0 ? Value() : Value(group.chosen() + first); },
         [&group, first, otherwise](const Value& v) {
             const auto last = static_cast<int64_t>(group.buttons().size()) - 1;
             const int64_t at = v.isNull() ? -1 : std::min(v.toInt() - first, last);
             group.choose(at < 0 ? otherwise : static_cast<int>(at));
         },
         [&group, first](const Value& v) -> std::string {
             if (v.isNull()) return "";
             return group.buttons()[static_cast<size_t>(v.toInt() - first)]->caption;
         }});
}

EditedRow::Field& EditedRow::flag(const std::string& column, OptionGroup& group,
                                  const std::string& label) {
    guardGroup(group);
    return add({column, label, "", true, "", group.buttons().front(),
                [&group] { return Value(group.chosen() == 0); },
                [&group](const Value& v) { group.choose(v.toBool() ? 0 : 1); },
                [&group](const Value& v) { return group.buttons()[v.toBool() ? 0 : 1]->caption; }});
}

EditedRow::Field& EditedRow::choice(const std::string& column, Combo& combo,
                                    const std::string& label) {
    return add({column, label, "", true, "", &combo,
                [&combo] { return combo.isInList() ? Value(combo.key()) : Value(); },
                [&combo](const Value& v) {
                    if (v.isNull() || !combo.selectKey(v.toInt())) combo.select(-1);
                },
                [&combo](const Value& v) -> std::string {
                    for (const ListItem& item : combo.items)
                        if (!v.isNull() && item.key == v.toInt()) return item.text;
                    return "";
                }});
}

size_t EditedRow::place(const std::string& column) const {
    for (size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].column == column) return i;
    throw std::logic_error("no column " + column + " in " + table_);
}

// --- the row on the screen ---

void EditedRow::show(const ShownRow& row) {
    shown_ = row;
    for (size_t i = 0; i < fields_.size(); ++i) {
        fields_[i].show(row.value(fields_[i].column));
        fields_[i].control->refuse("");
        before_[i] = fields_[i].typed();
    }
    remember();
}

void EditedRow::remember() {
    for (size_t i = 0; i < fields_.size(); ++i) begun_[i] = fields_[i].typed();
}

bool EditedRow::touched() const {
    for (size_t i = 0; i < fields_.size(); ++i)
        if (touched(i)) return true;
    return false;
}

// A group of options is one field, under its first button.
bool EditedRow::touched(const Control& control) const {
    const auto* option = dynamic_cast<const OptionButton*>(&control);
    const Control* field = option == nullptr ? &control : option->group().buttons().front();
    for (size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].control == field) return touched(i);
    return false;
}

Control* EditedRow::refused() const {
    for (const Field& field : fields_)
        if (!field.control->refusal().empty()) return field.control;
    return nullptr;
}

void EditedRow::clear() {
    key_ = 0;
    show({});
}

bool EditedRow::readWhere(Session& session, const std::string& condition) {
    std::string columns = keyColumn_;
    for (const Field& field : fields_) columns += ", " + field.column;
    for (const std::string& column : kept_) columns += ", " + column;
    const ShownRow row(session, table_, columns, condition);
    key_ = row.value(keyColumn_).toInt();
    show(row);
    return row.found();
}

void EditedRow::adopt(Session& session, const std::string& condition) {
    std::vector<Value> typed, begun = begun_;
    for (const Field& field : fields_) typed.push_back(field.typed());
    if (condition.empty())
        clear();
    else
        readWhere(session, condition);
    for (size_t i = 0; i < fields_.size(); ++i) fields_[i].show(typed[i]);
    begun_ = std::move(begun);
}

bool EditedRow::readKey(Session& session, int64_t key) {
    return readWhere(session, Sql() << keyColumn_ << " = " << key);
}

bool EditedRow::changed() const {
    return std::any_of(fields_.begin(), fields_.end(),
                       [&](const Field& field) { return changed(field.column); });
}

// --- saving ---

RowText EditedRow::typedRow() const {
    RowText row;
    for (const Field& field : fields_) row.set(field.column, field.typed());
    return row;
}

std::string EditedRow::writeInto(SaveBatch& batch, const RowText& further, const RowText& onlyNew,
                                 const std::string& newKey) const {
    RowText row = typedRow();
    row.join(further);
    if (!isNew()) {
        batch.requireShown(shown_, what_).add(row.update(table_, shown_.key()));
        return std::to_string(key_);
    }
    const std::string key = newKey.empty() ? batch.newKey(table_, keyColumn_) : newKey;
    batch.add(row.setSql(keyColumn_, key).join(onlyNew).insertInto(table_));
    return key;
}

void EditedRow::deleteIn(SaveBatch& batch) const {
    batch.requireShown(shown_, what_).add(" DELETE FROM " + table_ + " WHERE " + shown_.key());
}

void EditedRow::requireFree(SaveBatch& batch, const std::string& column,
                            const std::string& text) const {
    batch.refuseUnless(Sql() << "NOT EXISTS (SELECT * FROM " << table_
                             << " WITH (UPDLOCK, HOLDLOCK) WHERE " << column << " = "
                             << literal(typed(column)) << " AND " << keyColumn_ << " <> " << key_
                             << ")",
                       text);
}

// --- the audit line's words ---

void EditedRow::tellAll(AuditText& text, bool asRead) const {
    std::string section;
    for (size_t i = 0; i < fields_.size(); ++i) {
        const Field& field = fields_[i];
        if (field.label.empty() || !field.inAdded) continue;
        if (field.section != section) text.add(section = field.section);
        text.value(field.addedLabel.empty() ? field.label : field.addedLabel,
                   field.words(asRead ? before_[i] : field.typed()));
    }
}

void EditedRow::tellChanges(AuditText& text) const {
    std::string section;
    for (size_t i = 0; i < fields_.size(); ++i) {
        const Field& field = fields_[i];
        const std::string before = field.words(before_[i]), now = field.words(field.typed());
        if (field.label.empty() || before == now) continue;
        if (field.section != section) text.add(section = field.section);
        text.change(field.label, before, now);
    }
}

}  // namespace owb
