#include "app/frmMain.h"

#include "app/ThisApp.h"
#include "app/modInitialize.h"
#include "leave/ConfiguredState.h"

namespace owb {

int frmMain::Run(const std::string& commandLine) {
    return runUntilEnd([&] {
        SetHelpFile(session_);
        InitCommandLine(session_, commandLine);
        if (isOpenElsewhere && isOpenElsewhere())
            ExitToShell(session_, true);
        else
            StartOnConnection(session_, frontEnd_);
    });
}

int frmMain::RunOn(const std::string& connectionString, int32_t menuId, int32_t attHeadId) {
    return runUntilEnd([&] {
        session_.gMenuId = menuId;
        session_.gAttHeadId = attHeadId;
        OpenDatabase(session_, connectionString);
        StartOnConnection(session_, frontEnd_);
    });
}

template <typename Start>
int frmMain::runUntilEnd(Start start) {
    int status = 0;
    try {
        start();
    } catch (const EndOfProgram& end) {
        status = end.status;
    }
    Form_Unload();
    return status;
}

void frmMain::Form_Unload() {
    session_.gOtDetCalc.reset();
    session_.gNodNdp.reset();
    session_.gEvalFormula.reset();
    if (session_.gConn.State() == 1) SweepChangedLeaveTables(session_);
}

}  // namespace owb
