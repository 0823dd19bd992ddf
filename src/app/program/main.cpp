// The executable OWBLeaveMgmt: started by the shell with one command line. Its screen is a window
// of the desktop; without a display, or with OWB_SCRIPT set, script commands on standard input
// drive it.
#include <QApplication>
#include <QSocketNotifier>
#include <filesystem>
#include <iostream>

#include "app/LocalTalk.h"
#include "app/OneWindow.h"
#include "app/ProcessLauncher.h"
#include "app/ProgramStart.h"
#include "app/SettingsShellTalk.h"
#include "app/frmMain.h"
#include "qt/print/pdf_file.h"
#include "qt/program_desktop.h"
#include "qt/qt_front_end.h"
#include "qt/screen_window.h"
#include "script/script_front_end.h"
#include "session/FileSettingsStore.h"

namespace {

using namespace owb;

constexpr const char* kUsage =
    "Usage: OWBLeaveMgmt <menu id>#<flag>#<option>#<attendance head>[#<connection file>]\n"
    "\n"
    "Opens one screen of the leave and attendance manager. The family's shell starts it; where "
    "that\n"
    "is not installed, OWBShell does. Without a connection file the company is the one that the\n"
    "settings name. A screen that is open already for that head comes forward.\n"
    "\n"
    "Without a display, or with OWB_SCRIPT set, script commands on standard input drive the "
    "screen.\n"
    "\n"
    "  --help     this text\n"
    "  --version  the program's version";

// Comes forward when somebody starts the same screen again.
class ForwardListener {
  public:
    explicit ForwardListener(QtFrontEnd& frontEnd) : frontEnd_(frontEnd) {}

    bool isOpenElsewhere(const Session& session) {
        const std::string socket = FnStrWindowSocket(session, session.gMenuId, session.gAttHeadId);
        if (FnBlnBroughtForward(socket)) return true;
        try {
            listener_ = std::make_unique<LocalListener>(socket);
        } catch (const std::runtime_error&) {
            return false;  // a second window then opens, which does no harm
        }
        notifier_ =
            std::make_unique<QSocketNotifier>(listener_->descriptor(), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
            ScreenWindow* window = frontEnd_.top();
            if (listener_->take().empty() || window == nullptr) return;
            if (window->isMinimized()) window->showNormal();
            window->raise();
            window->activateWindow();
            QApplication::alert(window);  // where the desktop lets nobody come forward by himself
        });
        return false;
    }

  private:
    QtFrontEnd& frontEnd_;
    std::unique_ptr<LocalListener> listener_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

int runProgram(SettingsStore& settings, FrontEnd& frontEnd, const std::string& commandLine,
               const std::function<bool(const Session&)>& isOpenElsewhere = {}) {
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe");
    Session session(settings, frontEnd, wallClock, executable.parent_path().string());
    session.exeName = executable.stem().string();
    SettingsShellTalk shell(settings, session.exeName);
    session.shell = &shell;
    ProcessLauncher siblings(settings);
    session.siblings = &siblings;
    frmMain program(session, frontEnd);
    if (isOpenElsewhere) program.isOpenElsewhere = [&] { return isOpenElsewhere(session); };
    return program.Run(commandLine);
}

int runOnDesktop(SettingsStore& settings, const std::string& commandLine, int argc, char** argv) {
    QApplication application(argc, argv);
    prepareDesktop("OWBLeaveMgmt");
    QtFrontEnd frontEnd(settings);
    ForwardListener forward(frontEnd);
    try {
        return runProgram(settings, frontEnd, commandLine,
                          [&](const Session& session) { return forward.isOpenElsewhere(session); });
    } catch (const std::exception& e) {
        frontEnd.critical(e.what());
        throw;
    }
}

int runScript(SettingsStore& settings, const std::string& commandLine) {
    ScriptFrontEnd frontEnd(std::cin, std::cout, std::cerr);
    frontEnd.printToPdf = printToPdf;
    const int status = runProgram(settings, frontEnd, commandLine);
    return frontEnd.failed() ? 1 : status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (FnBlnToldUsage(argc, argv, kUsage)) return 0;
        std::string commandLine;
        for (int i = 1; i < argc; ++i) commandLine += (i > 1 ? " " : "") + std::string(argv[i]);
        FileSettingsStore settings(FileSettingsStore::defaultPath());
        return FnBlnHasDisplay() ? runOnDesktop(settings, commandLine, argc, argv)
                                 : runScript(settings, commandLine);
    } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << std::endl;
        return 1;
    }
}
