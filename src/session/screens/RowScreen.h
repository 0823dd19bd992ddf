// A screen of a list and one row of it that is edited below: New, Save, Delete and Close in the one
// order that all such screens keep. A screen adds its columns (EditedRow) and its own rules, as the
// functions that are called here in this order:
//
//   save:    no box refuses what was typed, the row is still as shown, check(), mayBeSaved() with
//            its questions and conditions, writeRow(), joinMarks(); the batch runs; the audit line;
//            finish()
//   delete:  checkDeletion(), the row is still as shown, mayBeDeleted(), deleteRow(), joinMarks();
//            the batch runs; the audit line; finish()
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "session/screens/EditedRow.h"
#include "session/screens/SessionScreen.h"
#include "session/screens/list_grid.h"

namespace owb {

class RowScreen : public SessionScreen {
  public:
    ListGrid list;  // its first column is the row's key
    Command cmdNew, cmdSave, cmdDelete;
    CloseCommand cmdClose{*this};

    bool isChanged(const Control& control) const override { return row_.touched(control); }

  protected:
    struct Names {
        std::string screen, caption;
        int32_t formId = 0;  // as SessionScreen's
        std::string list;
    };
    RowScreen(Session& session, FrontEnd& frontEnd, const Names& names, EditedRow& row);

    enum class Change { Added, Updated, Deleted };

    void load() override { showAgain(); }
    // The list as it is now, and an empty row.
    virtual void showAgain();
    // Fills the list.
    virtual void loadList() = 0;
    // Reads the row of the list's line; false when it has gone.
    virtual bool readLine(size_t line);
    // Whether the list's line is the row that is edited.
    virtual bool isShownBy(size_t line) const;
    // The row is on the screen: what else the screen shows of it.
    virtual void rowShown() {}
    // The user has asked for a new row; the list's first showing has not.
    virtual void newBegun() {}
    void showNew();
    // The list anew, by another filter: the row below it stays.
    void reloadList();
    void showLine(size_t line);

    virtual std::optional<Refusal> check() = 0;
    virtual bool mayBeSaved(SaveBatch&) { return true; }
    virtual std::string writeRow(SaveBatch& batch) { return row_.writeInto(batch); }
    virtual std::optional<Refusal> checkDeletion() = 0;
    virtual bool mayBeDeleted(SaveBatch& batch) = 0;
    // What a deletion calls the row, in its question and when it is done: "Ram Navami,
    // 06/Apr/2026".
    virtual std::string rowWords() const = 0;
    bool askToDelete(const std::string& text) { return askDeletion(text, rowWords()); }
    virtual void deleteRow(SaveBatch& batch) { row_.deleteIn(batch); }
    // `key` is the row's as T-SQL, a number or a variable of the batch.
    virtual void joinMarks(SaveBatch&, Change, const std::string& /*key*/) {}
    // The audit line of a change, with the words that stand before the row's own, and then those.
    // Without an action no line is written.
    virtual AuditLine auditLine(Change) { return {}; }
    virtual void tellRow(AuditText& detail, Change change);
    // Done: the list as it is now, and the next row may be typed.
    virtual void finish();

    // The last line of a screen: New, Save, Delete, Close, and others to their left.
    Layout commandRow(std::vector<Layout> left);

    bool unsaved() const override { return row_.touched(); }

    EditedRow& row_;

  private:
    void rowStands();
    void list_Click(size_t line);
    void markShown();
    void cmdNew_Click();
    void cmdSave_Click();
    void cmdDelete_Click();
    bool run(SaveBatch& batch, Change change, const std::string& key);

    MenuItem mnuReload_;  // F5
};

}  // namespace owb
