#include "session/Session.h"

#include <cstdlib>

namespace owb {

namespace {

std::string environmentUser() {
    for (const char* name : {"USERNAME", "USER"})
        if (const char* value = std::getenv(name)) return value;
    return "";
}

}  // namespace

Session::Session(SettingsStore& settings, MessageBoxes& boxes, std::function<DateTime()> now,
                 std::string programFolder)
    : settings(settings),
      boxes(boxes),
      now(std::move(now)),
      programFolder(std::move(programFolder)),
      windowsUser(environmentUser()),
      gSpChar(settings),
      gGenCmn(boxes) {}

Session::~Session() = default;

}  // namespace owb
