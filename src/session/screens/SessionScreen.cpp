#include "session/screens/SessionScreen.h"

#include "base/utf8.h"
#include "family/modCommon.h"
#include "session/modRights.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr const char* kReadOnly = "Read only";
constexpr const char* kPermissionDenied = "Permission denied.";

std::string joined(std::initializer_list<std::string> parts) {
    std::string whole;
    for (const std::string& part : parts)
        if (!part.empty()) whole += (whole.empty() ? "" : " - ") + part;
    return whole;
}

}  // namespace

// --- the window's title ---

// A company that cannot be read costs its name in the title, nothing else.
const std::string& SessionScreen::companyName() const {
    if (!companyName_) {
        companyName_ = "";
        try {
            companyName_ = FnVarValueOrThrow(session_, "SELECT CMPNAME FROM MAS_COMPANY").toText();
        } catch (const std::exception&) {
        }
    }
    return *companyName_;
}

std::string SessionScreen::titleHead() const {
    const bool isHeads = session_.gAttHeadId != 0 && session_.gAtt.ATTHEADID == session_.gAttHeadId;
    return isHeads ? session_.gAtt.ATTHEADNAME : "";
}

std::string SessionScreen::title() const {
    const std::string head = titleHead();
    const std::string whole =
        joined({head.empty() ? companyName() : head, FnStrMonthYearText(titleMonth()),
                trim(caption), head.empty() ? std::string() : companyName()});
    return session_.gReadOnly ? whole + " (" + kReadOnly + ")" : whole;
}

PrintHeading SessionScreen::printHeading() const {
    return {.company = companyName(),
            .title = joined({titleHead(), FnStrMonthYearText(titleMonth()), trim(caption)}),
            .printed = session_.gUser + ", " + dateText(session_.now(), "dd/MMM/yyyy HH:mm")};
}

// --- what the user may do ---

void SessionScreen::onLoad() {
    readRights();
    setWritable(!session_.gReadOnly);
    if (session_.gReadOnly) status = kReadOnly;
    load();
}

// A command that is denied says so before it is clicked, too.
void SessionScreen::readRights() {
    std::vector<Command*> commands;
    std::vector<CommandRight> rights;
    for (Control* control : controls())
        if (auto* command = dynamic_cast<Command*>(control)) {
            commands.push_back(command);
            rights.push_back({command->caption, command->tag});
        }
    ApplyScreenRights(session_, formId_ != 0 ? formId_ : session_.gMenuId, rights);
    for (size_t i = 0; i < commands.size(); ++i) {
        commands[i]->tag = rights[i].tag;
        if (!rights[i].tag.empty()) commands[i]->toolTip = kPermissionDenied;
    }
}

void SessionScreen::setWritable(bool on) {
    writable_ = on && !session_.gReadOnly;
    for (Control* control : controls())
        if (control->writes && dynamic_cast<Grid*>(control) == nullptr)
            control->enabled = writable_;
}

void SessionScreen::keepClosed() {
    if (!writable_) setWritable(false);
}

bool SessionScreen::mayClose() {
    return mayDrop("close");
}

bool SessionScreen::mayDrop(const std::string& next) {
    return !writable_ || !unsaved() ||
           ask("What has been typed is not saved.\nDo you want to " + next + " without saving?");
}

// --- refusals, questions, saving ---

bool SessionScreen::mayWrite(const Control& control) {
    return writable_ && !FnBlnCommandDenied(session_, control.tag);
}

bool SessionScreen::refused(const std::optional<Refusal>& refusal) {
    if (toldAt_ != nullptr) toldAt_->refuse("");
    toldAt_ = nullptr;
    if (!refusal) return false;
    frontEnd().show({refusal->text, refusal->title, refusal->icon});
    Control* field = refusal->field;
    if (field == nullptr) return true;
    setFocus(*field);
    const bool isBox =
        dynamic_cast<TextBox*>(field) != nullptr || dynamic_cast<Combo*>(field) != nullptr;
    if (!isBox || !field->refusal().empty()) return true;
    field->refuse(refusal->text);
    toldAt_ = field;
    return true;
}

bool SessionScreen::refusedByLock(SaveBatch& batch, const Lock& lock) {
    batch.requireOpen(lock);
    return lock.holds(session_) && refused(asRefusal(lock));
}

void SessionScreen::sayDone(const std::string& what) {
    status = what + " " + dateText(session_.now(), "HH:mm");
}

bool SessionScreen::save(const SaveBatch& batch, const std::function<void()>& showAgain) {
    try {
        batch.run(session_);
        sayDone("Saved");
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
