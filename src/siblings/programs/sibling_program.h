// What the small programs beside OWBLeaveMgmt share: a desktop, a session on the database that the
// settings store names, and the error that ends them.
#pragma once

#include <QApplication>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>

#include "app/ThisApp.h"
#include "qt/qt_front_end.h"
#include "session/FileSettingsStore.h"
#include "session/Session.h"
#include "session/modEmployeeViews.h"
#include "session/modOWBSetting.h"

namespace owb {

// `prepare` may write settings before the database is opened; `run` shows the screen.
inline int runSibling(int argc, char** argv, const char* name,
                      const std::function<void(Session&)>& prepare,
                      const std::function<void(Session&, FrontEnd&)>& run) {
    try {
        QApplication application(argc, argv);
        QApplication::setApplicationName(name);
        QApplication::setApplicationDisplayName("Orvane Wagebook");
        QApplication::setQuitOnLastWindowClosed(false);
        FileSettingsStore settings(FileSettingsStore::defaultPath());
        QtFrontEnd frontEnd(settings);
        const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe");
        Session session(settings, frontEnd, wallClock, executable.parent_path().string());
        session.exeName = name;
        try {
            prepare(session);
            OpenSettingsDatabase(session);
            LoadOptSet(session);
            run(session, frontEnd);
        } catch (const EndOfProgram& end) {
            return end.status;
        } catch (const std::exception& e) {
            frontEnd.critical(e.what());
            throw;
        }
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << std::endl;
        return 1;
    }
}

}  // namespace owb
