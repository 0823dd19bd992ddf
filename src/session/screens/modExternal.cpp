#include "session/screens/modExternal.h"

#include <filesystem>

#include "base/number_text.h"
#include "session/SiblingLauncher.h"
#include "session/modFiles.h"

namespace owb {

namespace {

constexpr const char* kStatusHandle = "Orvane WagebookStatusHWND";
constexpr const char* kStatus = "Orvane WagebookStatus";
constexpr int kPollMilliseconds = 200;

}  // namespace

modExternal::modExternal(Session& session, FrontEnd& frontEnd)
    : SessionScreen(session, frontEnd, "modExternal", "Orvane Wagebook") {
    txtStatus.visible = false;
    timerInterval = kPollMilliseconds;
    closesItself = true;
    cmdFront.onClick = [this] { cmdFront_Click(); };
    cmdClose.onClick = [this] { close(); };
}

Layout modExternal::layout() {
    return column({item(lblProgress), row({space(), item(cmdFront), item(cmdClose)})});
}

void modExternal::load() {
    if (AppName.empty() && (Mode < 1 || Mode > 4)) {
        inform("Properties of external application is not set properly");
        close();
        return;
    }
    if (AppTitle.empty()) AppTitle = AppName;
    lblProgress.caption = AppTitle + " is open.";
    callersHandle_ = session_.settings.GetSetting("ExeTalk", kStatusHandle, "0");
}

void modExternal::onActivate() {
    try {
        if (!startOrRaise()) close();
    } catch (...) {
        close();
        throw;
    }
}

bool modExternal::startOrRaise() {
    SiblingLauncher* siblings = session_.siblings;
    if (siblings != nullptr) {
        session_.settings.SaveSetting("ExeTalk", kStatusHandle, siblings->handle());
        txtStatus.value = session_.settings.GetSetting("ExeTalk", kStatus);
        for (const std::string& folder : {session_.programFolder, AppSearchDir}) {
            const std::string path = (std::filesystem::path(folder) / AppName).string();
            if (!FnBlnFileExists(path)) continue;
            if (!siblings->raise(AppName, AppTitle)) siblings->start(path, AppParameter, folder);
            return true;
        }
    }
    inform("Required External Application not found");
    return false;
}

void modExternal::onTimer() {
    const bool polls = Mode == 1 || Mode == 3;
    if ((session_.siblings->hasEnded(0) && polls) ||
        session_.settings.GetSetting("ExeTalk", kStatus) != txtStatus.value)
        close();
}

void modExternal::cmdFront_Click() {
    if (session_.siblings != nullptr) session_.siblings->raise(AppName, AppTitle);
}

// The shell listens at its own handle again.
void modExternal::onUnload() {
    if (!callersHandle_.empty())
        session_.settings.SaveSetting("ExeTalk", kStatusHandle, callersHandle_);
}

void ShowFilterProgram(Session& session, FrontEnd& frontEnd) {
    modExternal launcher(session, frontEnd);
    launcher.AppName = "OWBFilter";
    launcher.AppTitle = "OrvaneWagebook - Filter";
    launcher.AppParameter = std::string("1500,") + (session.gMultiLogin ? "True" : "False");
    launcher.AppSearchDir = "D:\\Products\\OrvaneWagebook\\Support\\OWBFilter";
    launcher.Mode = 3;
    launcher.showModal();
    if (session.siblings != nullptr)
        session.settings.SaveSetting("ExeTalk", session.exeName + "HWND",
                                     session.siblings->handle());
    session.gFilterActive =
        textToNumber(session.settings.GetSetting("Settings", "Filter", "0")) != 0;
}

}  // namespace owb
