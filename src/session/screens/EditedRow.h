// The row of a table that a screen edits, declared once: each column with its label and its
// control. It reads the row and shows it, takes what the user has made of it, tells what differs,
// writes it into a save and words the audit line. What was shown is kept: a save refuses when
// somebody else has changed the row meanwhile.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "screen/lists.h"
#include "screen/text_box.h"
#include "session/modAuditTrail.h"
#include "session/modSave.h"
#include "session/screens/entry_boxes.h"

namespace owb {

class EditedRow {
  public:
    // `keyColumn` numbers the rows. `what` begins what is told of the row: "The holiday".
    EditedRow(std::string table, std::string keyColumn, std::string what)
        : table_(std::move(table)), keyColumn_(std::move(keyColumn)), what_(std::move(what)) {}
    EditedRow(const EditedRow&) = delete;
    EditedRow& operator=(const EditedRow&) = delete;

    // --- the columns, in the order in which the audit line tells them ---
    struct Field {
        std::string column;
        std::string label;       // in the audit line; "" leaves the column out of it
        std::string addedLabel;  // in the line of a new row, where it reads otherwise
        bool inAdded = true;     // whether the line of a new row tells it
        std::string section = "";
        Control* control = nullptr;
        std::function<Value()> typed;            // as the row holds it
        std::function<void(const Value&)> show;  // NULL: as in a new row
        std::function<std::string(const Value&)> words;
    };
    Field& text(const std::string& column, TextBox& box, const std::string& label = "");
    Field& number(const std::string& column, NumberBox& box, const std::string& label = "");
    Field& date(const std::string& column, DateBox& box, const std::string& label = "");
    Field& check(const std::string& column, CheckBox& box, const std::string& label = "");
    // The chosen button's place and `first`; NULL when none is chosen. A number beyond the last
    // button means the last; without one (NULL, or below `first`), `otherwise` is shown.
    Field& option(const std::string& column, OptionGroup& group, const std::string& label = "",
                  int first = 1, int otherwise = -1);
    // Two buttons for 1 and 0, in this order.
    Field& flag(const std::string& column, OptionGroup& group, const std::string& label = "");
    // The key of the chosen entry, NULL for none.
    Field& choice(const std::string& column, Combo& combo, const std::string& label = "");

    // A column that is read with the row and compared at the save, but not edited.
    void keep(const std::string& column) { kept_.push_back(column); }
    // The columns from here on belong together: the audit line tells their changes behind the
    // title.
    void section(const std::string& title) { section_ = title; }

    // --- the row on the screen ---
    void clear();  // a new one
    // The row of a condition, or of a key; false when there is none, and a new row is shown then.
    // Throws DbError.
    bool readWhere(Session& session, const std::string& condition);
    bool readKey(Session& session, int64_t key);
    // The row of the condition is the one that is edited from now on; "": a new one. What the user
    // has typed stays on the screen.
    void adopt(Session& session, const std::string& condition);
    bool isNew() const { return !shown_.found(); }
    int64_t key() const { return key_; }  // 0 of a new one
    // As it was read, and how the user has left it.
    const ShownRow& shown() const { return shown_; }
    Value before(const std::string& column) const { return before_[place(column)]; }
    Value typed(const std::string& column) const { return fields_[place(column)].typed(); }
    bool changed(const std::string& column) const { return before(column) != typed(column); }
    bool changed() const;
    // What stands on the screen now is what the user begins from: touched is what he has made
    // different since. (A new row may begin with more than empty fields.)
    void remember();
    bool touched() const;
    bool touched(const Control& control) const;
    // The first field whose box refuses what was typed; null when there is none.
    Control* refused() const;
    const std::string& what() const { return what_; }
    const std::deque<Field>& fields() const { return fields_; }

    // --- saving ---
    // Joins the row: an UPDATE that asks whether the row is still as it was shown, or an INSERT
    // under the next key, which is taken within the batch, or under `newKey`, T-SQL. `further` are
    // columns without a control, `onlyNew` those that a new row gets besides. Gives the key as
    // T-SQL, a number or a variable.
    std::string writeInto(SaveBatch& batch, const RowText& further = {},
                          const RowText& onlyNew = {}, const std::string& newKey = "") const;
    RowText typedRow() const;
    // Joins the deletion.
    void deleteIn(SaveBatch& batch) const;
    // In the batch, no other row of the table holds the typed value of the column.
    void requireFree(SaveBatch& batch, const std::string& column, const std::string& text) const;

    // --- the audit line's words ---
    // Of a new row, or of one that goes, `asRead`.
    void tellAll(AuditText& text, bool asRead = false) const;
    void tellChanges(AuditText& text) const;

  private:
    Field& add(Field field);
    static void guardGroup(const OptionGroup& group);
    bool touched(size_t field) const { return fields_[field].typed() != begun_[field]; }
    size_t place(const std::string& column) const;
    void show(const ShownRow& row);

    std::string table_, keyColumn_, what_;
    std::string section_;       // of the fields that are declared now
    std::deque<Field> fields_;  // a declared field stays where it is
    std::vector<std::string> kept_;
    std::vector<Value> before_;  // what the fields gave when the row was shown
    std::vector<Value> begun_;   // and when the user began on it
    ShownRow shown_;
    int64_t key_ = 0;
};

}  // namespace owb
