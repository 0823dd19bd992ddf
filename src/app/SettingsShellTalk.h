// Talk with the shell through the settings store, section ExeTalk. There are no window handles
// here: the process number stands for the handle of the screen, and the text of the shell's status
// box is the entry "Orvane WagebookStatus", which changes when this program has gone. A shell whose
// handle "Orvane WagebookStatusHWND" is the path of a local socket is told at once as well:
// "opened <program> <screen> <handle>" and "ended <program> <handle>".
#pragma once

#include "session/Session.h"

namespace owb {

class SettingsShellTalk final : public ShellTalk {
  public:
    SettingsShellTalk(SettingsStore& settings, std::string exeName)
        : settings_(settings), exeName_(std::move(exeName)) {}

    void screenOpened(const std::string& screenName) override;
    void screenClosed() override;
    void programEnded() override;

  private:
    std::string statusHandle() const;

    SettingsStore& settings_;
    std::string exeName_;
};

}  // namespace owb
