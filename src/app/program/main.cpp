// The executable OWBLeaveMgmt: started by the shell with one command line. Its screen is a window
// of the desktop; without a display, or with OWB_SCRIPT set, script commands on standard input
// drive it.
#include <QApplication>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "app/ProcessLauncher.h"
#include "app/SettingsShellTalk.h"
#include "app/frmMain.h"
#include "qt/qt_front_end.h"
#include "script/script_front_end.h"
#include "session/FileSettingsStore.h"

namespace {

using namespace owb;

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool hasDisplay() {
    return !isSet("OWB_SCRIPT") &&
           (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM"));
}

int runProgram(SettingsStore& settings, FrontEnd& frontEnd, const std::string& commandLine) {
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe");
    Session session(settings, frontEnd, wallClock, executable.parent_path().string());
    session.exeName = executable.stem().string();
    SettingsShellTalk shell(settings, session.exeName);
    session.shell = &shell;
    ProcessLauncher siblings(settings);
    session.siblings = &siblings;
    return frmMain(session, frontEnd).Run(commandLine);
}

int runOnDesktop(SettingsStore& settings, const std::string& commandLine, int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("OWBLeaveMgmt");
    QApplication::setApplicationDisplayName("Orvane Wagebook");
    // A screen that closes does not end the program: the next one opens, or start-up goes on.
    QApplication::setQuitOnLastWindowClosed(false);
    QtFrontEnd frontEnd(settings);
    try {
        return runProgram(settings, frontEnd, commandLine);
    } catch (const std::exception& e) {
        frontEnd.critical(e.what());
        throw;
    }
}

int runScript(SettingsStore& settings, const std::string& commandLine) {
    ScriptFrontEnd frontEnd(std::cin, std::cout, std::cerr);
    const int status = runProgram(settings, frontEnd, commandLine);
    return frontEnd.failed() ? 1 : status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        std::string commandLine;
        for (int i = 1; i < argc; ++i) commandLine += (i > 1 ? " " : "") + std::string(argv[i]);
        FileSettingsStore settings(FileSettingsStore::defaultPath());
        return hasDisplay() ? runOnDesktop(settings, commandLine, argc, argv)
                            : runScript(settings, commandLine);
    } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << std::endl;
        return 1;
    }
}
