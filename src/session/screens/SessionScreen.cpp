#include "session/screens/SessionScreen.h"

#include "session/modRights.h"

namespace owb {

void SessionScreen::onLoad() {
    std::vector<Command*> commands;
    std::vector<CommandRight> rights;
    for (Control* control : controls())
        if (auto* command = dynamic_cast<Command*>(control)) {
            commands.push_back(command);
            rights.push_back({command->caption, command->tag});
        }
    ApplyScreenRights(session_, formId_ != 0 ? formId_ : session_.gMenuId, rights);
    for (size_t i = 0; i < commands.size(); ++i) commands[i]->tag = rights[i].tag;
    setWritable(!session_.gReadOnly);
    load();
}

void SessionScreen::setWritable(bool on) {
    writable_ = on && !session_.gReadOnly;
    for (Control* control : controls())
        if (control->writes && dynamic_cast<Grid*>(control) == nullptr)
            control->enabled = writable_;
}

bool SessionScreen::mayWrite(const Control& control) {
    return writable_ && !FnBlnCommandDenied(session_, control.tag);
}

bool SessionScreen::refused(const std::optional<Refusal>& refusal) {
    if (!refusal) return false;
    frontEnd().show({refusal->text, refusal->title, refusal->icon});
    if (refusal->field != nullptr) setFocus(*refusal->field);
    return true;
}

bool SessionScreen::refusedByLock(SaveBatch& batch, const Lock& lock) {
    batch.requireOpen(lock);
    return lock.holds(session_) && refused(asRefusal(lock));
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

bool SessionScreen::ask(const std::string& text, const std::string& title) {
    return frontEnd().show({text, title, BoxIcon::Question, BoxButtons::YesNo, BoxAnswer::No}) ==
           BoxAnswer::Yes;
}

}  // namespace owb
