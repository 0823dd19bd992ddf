// The per-user settings store as a file: a small embedded database, so that several processes read
// and write it at once. Names compare without regard to case.
#pragma once

#include <string>

#include "db/connection.h"
#include "family/SettingsStore.h"

namespace owb {

class FileSettingsStore final : public SettingsStore {
  public:
    // Makes the file and its folder when absent. Throws DbError when it cannot be opened.
    explicit FileSettingsStore(const std::string& path);
    // Environment OWB_SETTINGS, otherwise orvane-wagebook/settings.db in the user's configuration
    // folder.
    static std::string defaultPath();

    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& defaultValue = "") const override;
    void SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override;

  private:
    mutable Connection connection_;
};

}  // namespace owb
