#include "app/SettingsShellTalk.h"

#include <unistd.h>

#include "app/LocalTalk.h"

namespace owb {

std::string SettingsShellTalk::statusHandle() const {
    return settings_.GetSetting("ExeTalk", "Orvane WagebookStatusHWND", "0");
}

void SettingsShellTalk::screenOpened(const std::string& screenName) {
    const std::string handle = std::to_string(getpid());
    settings_.SaveSetting("ExeTalk", exeName_ + "HWND", handle);
    SendLocalMessage(statusHandle(), "opened " + exeName_ + " " + screenName + " " + handle);
}

void SettingsShellTalk::screenClosed() {
    settings_.SaveSetting("ExeTalk", exeName_ + "HWND", "0");
}

// A shell that listens has left the handle of its status box.
void SettingsShellTalk::programEnded() {
    if (statusHandle() == "0") return;
    const std::string who = exeName_ + " " + std::to_string(getpid());
    settings_.SaveSetting("ExeTalk", "Orvane WagebookStatus", who);
    SendLocalMessage(statusHandle(), "ended " + who);
}

}  // namespace owb
