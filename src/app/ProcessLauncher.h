// Starts sibling programs as processes of their own. One that runs already is known by the process
// number that it left as its handle in ExeTalk/<name>HWND.
#pragma once

#include <sys/types.h>

#include "family/SettingsStore.h"
#include "session/SiblingLauncher.h"

namespace owb {

class ProcessLauncher final : public SiblingLauncher {
  public:
    explicit ProcessLauncher(const SettingsStore& settings) : settings_(settings) {}

    std::string handle() const override;
    bool raise(const std::string& appName, const std::string& title) override;
    void start(const std::string& path, const std::string& parameter,
               const std::string& folder) override;
    bool hasEnded(int milliseconds) override;
    int process() const { return sibling_; }  // 0: none

  private:
    const SettingsStore& settings_;
    pid_t sibling_ = 0;
};

}  // namespace owb
