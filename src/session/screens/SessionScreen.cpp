#include "session/screens/SessionScreen.h"

#include "db/recordset.h"
#include "session/modRights.h"
#include "session/screens/frmOwbCalender.h"
#include "session/screens/frmSelMonth.h"

namespace owb {

bool SessionScreen::mayWrite(const Control& control) {
    return !session_.gReadOnly && !FnBlnCommandDenied(session_, control.tag);
}

void SessionScreen::applyRights(const std::vector<Control*>& writing, int32_t formId) {
    for (Control* control : writing) {
        control->writes = true;
        if (session_.gReadOnly) control->enabled = false;
    }
    std::vector<Command*> commands;
    std::vector<CommandRight> rights;
    for (Control* control : controls())
        if (auto* command = dynamic_cast<Command*>(control)) {
            commands.push_back(command);
            rights.push_back({command->caption, command->tag});
        }
    ApplyScreenRights(session_, formId != 0 ? formId : session_.gMenuId, rights);
    for (size_t i = 0; i < commands.size(); ++i) commands[i]->tag = rights[i].tag;
}

bool SessionScreen::save(const SaveBatch& batch, const std::function<void()>& showAgain) {
    try {
        batch.run(session_);
        return true;
    } catch (const SaveRefused& refused) {
        frontEnd().warning(refused.what());
        showAgain();
        return false;
    }
}

bool SessionScreen::stillAsShown(const ShownRow& row, const std::string& what,
                                 const std::function<void()>& showAgain) {
    if (row.standsNow(session_)) return true;
    frontEnd().warning(FnStrChangedMeanwhile(what));
    showAgain();
    return false;
}

void SessionScreen::loadMonths(Combo& combo, int32_t lngFrom) {
    combo.clear();
    Recordset rs(session_.gConn, "SELECT MONTHYEAR, MONTHNAME FROM QRYMONTH WHERE MONTHYEAR >= " +
                                     std::to_string(lngFrom) + " ORDER BY MONTHYEAR DESC");
    for (; !rs.IsEOF(); rs.MoveNext())
        combo.add(rs.Fields("MONTHNAME").toText(), rs.Fields("MONTHYEAR").toInt());
}

void SessionScreen::pickMonths(Combo& combo) {
    combo.onPick = [this, &combo] {
        frmSelMonth picker(session_, frontEnd());
        picker.SetTarget(combo);
        picker.showModal();
    };
}

void SessionScreen::pickDates(TextBox& box) {
    box.onPick = [this, &box] {
        frmOwbCalender picker(session_, frontEnd());
        picker.SetTarget(box);
        picker.showModal();
    };
}

bool SessionScreen::ask(const std::string& text, const std::string& title) {
    return frontEnd().show({text, title, BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::No}) ==
           BoxAnswer::Yes;
}

void SessionScreen::refuse(const std::string& text, Control& field) {
    inform(text);
    setFocus(field);
}

}  // namespace owb
