// The executable OWBShell: started with a company's file or connection string, or with nothing for
// the company that it had last.
#include <unistd.h>

#include <map>
#include <memory>

#include "app/ProcessLauncher.h"
#include "siblings/frmShell.h"
#include "siblings/programs/sibling_program.h"

namespace {

using namespace owb;

std::string socketPath() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return std::string(folder && *folder ? folder : "/tmp") + "/owb-shell-" +
           std::to_string(getpid());
}

void rememberCompany(Session& session, const std::string& company) {
    const bool isFile = company.find('=') == std::string::npos;
    const std::string connection =
        isFile ? "Provider=OWBEmbedded;Data Source=" + std::filesystem::absolute(company).string()
               : company;
    session.settings.SaveSetting("Settings", "DefLnk",
                                 session.gGenCmn.FnStrEncryptWord(connection));
    session.settings.SaveSetting("SETTINGS", "CONNECTION", "A");
    session.settings.SaveSetting("Settings", "DBType", "SQL");
}

}  // namespace

int main(int argc, char** argv) {
    return runSibling(
        argc, argv, "OWBShell",
        [&](Session& session) {
            if (argc > 1) rememberCompany(session, argv[1]);
        },
        [](Session& session, FrontEnd& frontEnd) {
            std::map<int, std::unique_ptr<ProcessLauncher>> started;
            const std::string program = session.programFolder + "/OWBLeaveMgmt";
            frmShell(
                session, frontEnd, socketPath(),
                [&](const std::string& line) {
                    auto launcher = std::make_unique<ProcessLauncher>(session.settings);
                    launcher->start(program, line, "");
                    const int process = launcher->process();
                    started[process] = std::move(launcher);
                    return process;
                },
                [&](int process) { return started.at(process)->hasEnded(0); })
                .showModal();
        });
}
