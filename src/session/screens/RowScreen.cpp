#include "session/screens/RowScreen.h"

namespace owb {

RowScreen::RowScreen(Session& session, FrontEnd& frontEnd, const Names& names, EditedRow& row)
    : SessionScreen(session, frontEnd, names.screen, names.caption, names.formId),
      list(*this, names.list),
      cmdNew(*this, "cmdNew", "&New", [this] { cmdNew_Click(); }),
      cmdSave(*this, "cmdSave", "&Save", Command::Writing, [this] { cmdSave_Click(); }),
      cmdDelete(*this, "cmdDelete", "&Delete", Command::Writing, [this] { cmdDelete_Click(); }),
      row_(row),
      mnuReload_(*this, list, "mnuReload", "Show Again") {
    list.singleRows = true;
    mnuReload_.shortcut = "F5";
    mnuReload_.onClick = [this] { reloadList(); };
    list.onCurrentChange = [this](size_t line, size_t) {
        if (mayDrop("show another record")) return list_Click(line);
        markShown();
    };
}

Layout RowScreen::commandRow(std::vector<Layout> left) {
    left.insert(left.end(),
                {space(), item(cmdNew), item(cmdSave), item(cmdDelete), item(cmdClose)});
    return row(std::move(left));
}

void RowScreen::showAgain() {
    loadList();
    showNew();
}

void RowScreen::showNew() {
    row_.clear();
    list.setCurrent(-1, -1);
    rowStands();
}

// The user begins from what the screen has made of the row.
void RowScreen::rowStands() {
    rowShown();
    row_.remember();
    keepClosed();
    cmdNew.enabled = !session_.gReadOnly;
}

void RowScreen::reloadList() {
    loadList();
    markShown();
}

// The list's current line is that of the row below it.
void RowScreen::markShown() {
    list.setCurrent(-1, -1);
    for (size_t line = 0; line < list.rowCount() && !row_.isNew(); ++line)
        if (isShownBy(line)) list.setCurrent(static_cast<int>(line), 0);
}

bool RowScreen::isShownBy(size_t line) const {
    return list.number(line, 0) == static_cast<double>(row_.key());
}

bool RowScreen::readLine(size_t line) {
    return row_.readKey(session_, static_cast<int64_t>(list.number(line, 0)));
}

void RowScreen::showLine(size_t line) {
    list.setCurrent(static_cast<int>(line), 0);
    list_Click(line);
}

void RowScreen::list_Click(size_t line) {
    if (readLine(line)) return rowStands();
    frontEnd().warning(FnStrChangedMeanwhile(row_.what()));
    showAgain();
}

void RowScreen::cmdNew_Click() {
    if (!mayDrop("begin a new record")) return;
    showNew();
    newBegun();
    setFocus(*row_.fields().front().control);
}

void RowScreen::finish() {
    showAgain();
    setFocus(*row_.fields().front().control);
}

void RowScreen::cmdSave_Click() {
    if (Control* field = row_.refused()) return refuse(field->refusal(), *field);
    if (!row_.isNew() && !stillAsShown(row_.shown(), row_.what(), [this] { showAgain(); })) return;
    if (refused(check())) return;
    SaveBatch batch;
    if (!mayBeSaved(batch)) return;
    const Change change = row_.isNew() ? Change::Added : Change::Updated;
    const std::string key = writeRow(batch);
    if (run(batch, change, key)) session_.gGenCmn.ShowSavedMessage();
}

void RowScreen::cmdDelete_Click() {
    if (refused(checkDeletion())) return;
    if (!stillAsShown(row_.shown(), row_.what(), [this] { showAgain(); })) return;
    SaveBatch batch;
    if (!mayBeDeleted(batch)) return;
    deleteRow(batch);
    run(batch, Change::Deleted, std::to_string(row_.key()));
}

void RowScreen::tellRow(AuditText& detail, Change change) {
    if (change == Change::Updated)
        row_.tellChanges(detail);
    else
        row_.tellAll(detail, change == Change::Deleted);
}

bool RowScreen::run(SaveBatch& batch, Change change, const std::string& key) {
    joinMarks(batch, change, key);
    if (AuditLine line = auditLine(change); !line.action.empty()) {
        tellRow(line.detail, change);
        batch.audit(std::move(line));
    }
    if (!save(batch, [this] { showAgain(); })) return false;
    if (change == Change::Deleted) sayDone("Deleted " + rowWords() + ",");
    finish();
    return true;
}

}  // namespace owb
