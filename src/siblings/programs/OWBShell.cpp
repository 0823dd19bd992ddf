// The executable OWBShell: started with a company's file or connection string, or with nothing for
// the company that it had last.
#include <unistd.h>

#include <map>
#include <memory>

#include "app/OneWindow.h"
#include "app/ProcessLauncher.h"
#include "app/modInitialize.h"
#include "session/modOWBSetting.h"
#include "siblings/frmCompany.h"
#include "siblings/frmShell.h"
#include "siblings/programs/sibling_program.h"

namespace {

using namespace owb;

constexpr const char* kUsage =
    "Usage: OWBShell [COMPANY]\n"
    "\n"
    "The launcher: opens a company and starts the screens of the leave and attendance manager on\n"
    "it. COMPANY is a database file or a connection string; without one it is the company that "
    "was\n"
    "open last.\n"
    "\n"
    "Without a display, or with OWB_SCRIPT set, script commands on standard input drive it.\n"
    "\n"
    "  --help     this text\n"
    "  --version  the program's version";

// Shows the launcher on the company that is open; true when the user wants another one.
bool showShell(Session& session, FrontEnd& frontEnd) {
    LoadOptSet(session);
    ReadLaunchSettings(session);
    session.gReadOnly = FnBlnReadOnlyUser(session);
    std::map<int, std::unique_ptr<ProcessLauncher>> started;
    const std::string program = session.programFolder + "/OWBLeaveMgmt";
    frmShell shell(
        session, frontEnd, FnStrSocketFolder() + "/owb-shell-" + std::to_string(getpid()),
        [&](const std::string& line) {
            auto launcher = std::make_unique<ProcessLauncher>(session.settings);
            launcher->start(program, line, "");
            const int process = launcher->process();
            started[process] = std::move(launcher);
            return process;
        },
        [&](int process) { return started.at(process)->hasEnded(0); });
    shell.showModal();
    return shell.wantsOtherCompany();
}

// Company after company, until the user has enough. The status is that of the last one.
int runShell(Session& session, FrontEnd& frontEnd, std::string connection) {
    Companies companies(session);
    int status = 0;
    while (true) {
        if (!connection.empty()) {
            try {
                companies.open(connection);
                status = 0;
                if (!showShell(session, frontEnd)) return 0;
            } catch (const std::exception& e) {
                frontEnd.critical(e.what());
                status = 1;
            }
        }
        frmCompany chooser(session, frontEnd);
        chooser.showModal();
        if (!chooser.chosen().empty())
            connection = chooser.chosen();
        else if (status != 0 || connection.empty())
            return status;  // otherwise back to the company that was open
    }
}

}  // namespace

int main(int argc, char** argv) {
    return runSibling(argc, argv, "OWBShell", kUsage, [&](Session& session, FrontEnd& frontEnd) {
        return runShell(session, frontEnd,
                        argc > 1 ? Companies::connectionOf(argv[1]) : Companies(session).last());
    });
}
