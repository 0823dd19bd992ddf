// How the platform starts the family's other programs; at most one at a time.
#pragma once

#include <string>

namespace owb {

class SiblingLauncher {
  public:
    virtual ~SiblingLauncher() = default;
    // What stands for a window handle of this program in the settings store.
    virtual std::string handle() const = 0;
    // Brings the program forward when it runs, and waits for that one; false when it does not run.
    virtual bool raise(const std::string& appName, const std::string& title) = 0;
    // Throws std::runtime_error when the file cannot be started.
    virtual void start(const std::string& path, const std::string& parameter,
                       const std::string& folder) = 0;
    // Whether the program that was started or raised has gone; waits that long for it at most.
    virtual bool hasEnded(int milliseconds) = 0;
};

}  // namespace owb
