#include "app/ProcessLauncher.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

#include "base/number_text.h"

namespace owb {

namespace {

// An empty folder is our own. The arguments begin with the file that is run. A program that we
// start leaves what we read and write alone: a script may drive us by it.
pid_t spawn(const std::vector<std::string>& arguments, const std::string& folder, int& error) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    error = posix_spawnp(&process, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

// A number may have gone to another program since it was left in the store.
bool runs(pid_t process, const std::string& appName) {
    std::error_code error;
    const auto file =
        std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", error);
    return !error && file.stem() == appName;
}

}  // namespace

std::string ProcessLauncher::handle() const {
    return std::to_string(getpid());
}

// Windows belong to the desktop, which is asked by its own tool, where there is one.
bool ProcessLauncher::raise(const std::string& appName, const std::string& title) {
    const auto process =
        static_cast<pid_t>(textToNumber(settings_.GetSetting("ExeTalk", appName + "HWND", "0")));
    const bool ours = sibling_ > 0 && kill(sibling_, 0) == 0;
    if (!ours) {
        if (process <= 0 || !runs(process, appName)) return false;
        sibling_ = process;
    }
    int error = 0;
    const pid_t tool = spawn({"wmctrl", "-F", "-a", title}, "", error);
    if (error == 0) waitpid(tool, nullptr, 0);
    return true;
}

void ProcessLauncher::start(const std::string& path, const std::string& parameter,
                            const std::string& folder) {
    int error = 0;
    sibling_ = spawn({std::filesystem::absolute(path), parameter}, folder, error);
    if (error == 0) return;
    sibling_ = 0;
    throw std::runtime_error("Cannot start " + path + ": " + std::strerror(error));
}

bool ProcessLauncher::hasEnded(int milliseconds) {
    const auto gone = [&] {
        if (sibling_ == 0 || waitpid(sibling_, nullptr, WNOHANG) == sibling_ ||
            kill(sibling_, 0) != 0)
            sibling_ = 0;
        return sibling_ == 0;
    };
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!gone()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

}  // namespace owb
