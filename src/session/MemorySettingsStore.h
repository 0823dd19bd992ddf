// A settings store for one process: what is written stays in memory, what was never written comes
// from the fallback, when there is one. owbctl and tests run on it.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "family/SettingsStore.h"

namespace owb {

class MemorySettingsStore final : public SettingsStore {
  public:
    explicit MemorySettingsStore(const SettingsStore* fallback = nullptr) : fallback_(fallback) {}
    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& defaultValue = "") const override;
    void SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override;

  private:
    const SettingsStore* fallback_;
    std::map<std::pair<std::string, std::string>, std::string> values_;  // keys in small letters
};

}  // namespace owb
