// The executable OWBLeaveMgmt: started by the shell with one command line; its screens are driven
// by script commands on standard input.
#include <filesystem>
#include <iostream>

#include "app/ProcessLauncher.h"
#include "app/SettingsShellTalk.h"
#include "app/frmMain.h"
#include "data/FileSettingsStore.h"
#include "script/script_front_end.h"

int main(int argc, char** argv) {
    using namespace owb;
    try {
        std::string commandLine;
        for (int i = 1; i < argc; ++i) commandLine += (i > 1 ? " " : "") + std::string(argv[i]);
        const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe");

        FileSettingsStore settings(FileSettingsStore::defaultPath());
        ScriptFrontEnd frontEnd(std::cin, std::cout, std::cerr);
        Session session(settings, frontEnd, wallClock, executable.parent_path().string());
        session.exeName = executable.stem().string();
        SettingsShellTalk shell(settings, session.exeName);
        session.shell = &shell;
        ProcessLauncher siblings(settings);
        session.siblings = &siblings;
        const int status = frmMain(session, frontEnd).Run(commandLine);
        return frontEnd.failed() ? 1 : status;
    } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << std::endl;
        return 1;
    }
}
