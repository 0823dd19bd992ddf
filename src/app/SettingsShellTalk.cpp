#include "app/SettingsShellTalk.h"

#include <unistd.h>

namespace owb {

void SettingsShellTalk::screenOpened(const std::string&) {
    settings_.SaveSetting("ExeTalk", exeName_ + "HWND", std::to_string(getpid()));
}

void SettingsShellTalk::screenClosed() {
    settings_.SaveSetting("ExeTalk", exeName_ + "HWND", "0");
}

// A shell that listens has left the handle of its status box.
void SettingsShellTalk::programEnded() {
    if (settings_.GetSetting("ExeTalk", "Orvane WagebookStatusHWND", "0") == "0") return;
    settings_.SaveSetting("ExeTalk", "Orvane WagebookStatus",
                          exeName_ + " " + std::to_string(getpid()));
}

}  // namespace owb
