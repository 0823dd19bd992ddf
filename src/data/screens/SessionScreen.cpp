#include "data/screens/SessionScreen.h"

#include "data/modRights.h"
#include "data/screens/frmOwbCalender.h"
#include "data/screens/frmSelMonth.h"
#include "db/recordset.h"

namespace owb {

void SessionScreen::applyRights(const std::vector<Command*>& writing) {
    std::vector<Command*> commands;
    std::vector<CommandRight> rights;
    for (Control* control : controls())
        if (auto* command = dynamic_cast<Command*>(control)) {
            commands.push_back(command);
            rights.push_back({command->caption, command->tag});
        }
    ApplyScreenRights(session_, session_.gMenuId, rights);
    for (size_t i = 0; i < commands.size(); ++i) commands[i]->tag = rights[i].tag;
    if (session_.gReadOnly)
        for (Command* command : writing) command->enabled = false;
}

bool SessionScreen::denied(const Command& command) {
    return FnBlnCommandDenied(session_, command.tag);
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
