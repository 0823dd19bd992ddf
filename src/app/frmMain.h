// The program's life around start-up: whatever way the one screen ends, the shared instances are
// released and the leave tables are tidied before the process goes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "screen/front_end.h"
#include "session/Session.h"

namespace owb {

class frmMain {
  public:
    frmMain(Session& session, FrontEnd& frontEnd) : session_(session), frontEnd_(frontEnd) {}

    // Asked once the command line is read and the company open: whether the screen is open already,
    // and has been brought forward. The program then ends. Nobody is asked where there are no
    // windows.
    std::function<bool()> isOpenElsewhere;

    // Runs the program on a command line and gives its exit status. A launch that fails without a
    // message of its own leaves as an exception.
    int Run(const std::string& commandLine);
    // The same on a connection string, for tools that take no launch line.
    int RunOn(const std::string& connectionString, int32_t menuId, int32_t attHeadId);

  private:
    template <typename Start>
    int runUntilEnd(Start start);
    void Form_Unload();

    Session& session_;
    FrontEnd& frontEnd_;
};

}  // namespace owb
