#include "session/MemorySettingsStore.h"

#include "base/utf8.h"

namespace owb {

namespace {

std::pair<std::string, std::string> folded(const std::string& section, const std::string& key) {
    return {lowerCase(section), lowerCase(key)};
}

}  // namespace

std::string MemorySettingsStore::GetSetting(const std::string& section, const std::string& key,
                                            const std::string& defaultValue) const {
    const auto found = values_.find(folded(section, key));
    if (found != values_.end()) return found->second;
    return fallback_ ? fallback_->GetSetting(section, key, defaultValue) : defaultValue;
}

void MemorySettingsStore::SaveSetting(const std::string& section, const std::string& key,
                                      const std::string& value) {
    values_[folded(section, key)] = value;
}

}  // namespace owb
