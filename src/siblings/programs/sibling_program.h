// What the small programs beside OWBLeaveMgmt share: a desktop or a script, a session, and the
// error that ends them.
#pragma once

#include <QApplication>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>

#include "app/ProgramStart.h"
#include "app/ThisApp.h"
#include "qt/program_desktop.h"
#include "qt/qt_front_end.h"
#include "script/script_front_end.h"
#include "session/FileSettingsStore.h"
#include "session/Session.h"

namespace owb {

// Gives the exit status. The session has no connection yet.
using SiblingRun = std::function<int(Session&, FrontEnd&)>;

inline int runSession(SettingsStore& settings, FrontEnd& frontEnd, const char* name,
                      const SiblingRun& run) {
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe");
    Session session(settings, frontEnd, wallClock, executable.parent_path().string());
    session.exeName = name;
    try {
        return run(session, frontEnd);
    } catch (const EndOfProgram& end) {
        return end.status;
    } catch (const std::exception& e) {
        frontEnd.critical(e.what());
        throw;
    }
}

inline int runSibling(int argc, char** argv, const char* name, const char* usage,
                      const SiblingRun& run) {
    try {
        if (FnBlnToldUsage(argc, argv, usage)) return 0;
        FileSettingsStore settings(FileSettingsStore::defaultPath());
        if (FnBlnHasDisplay()) {
            QApplication application(argc, argv);
            prepareDesktop(name);
            QtFrontEnd frontEnd(settings);
            return runSession(settings, frontEnd, name, run);
        }
        ScriptFrontEnd frontEnd(std::cin, std::cout, std::cerr);
        const int status = runSession(settings, frontEnd, name, run);
        return frontEnd.failed() ? 1 : status;
    } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << std::endl;
        return 1;
    }
}

}  // namespace owb
