// The per-user settings store: (section, key) -> text under the application "Orvane Wagebook".
// Section and key names are case-insensitive. Several processes read and write it at once.
#pragma once

#include <map>
#include <string>
#include <utility>

namespace owb {

class SettingsStore {
  public:
    virtual ~SettingsStore() = default;
    virtual std::string GetSetting(const std::string& section, const std::string& key,
                                   const std::string& defaultValue = "") const = 0;
    virtual void SaveSetting(const std::string& section, const std::string& key,
                             const std::string& value) = 0;
};

}  // namespace owb
