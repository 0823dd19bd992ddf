#include "session/modFiles.h"

#include <algorithm>
#include <filesystem>

#include "session/Session.h"

namespace owb {

bool FnBlnFileExists(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    return !error && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool FnBlnMarkerFile(const Session& session, const std::string& name) {
    std::string path = session.programFolder + name;
    std::replace(path.begin(), path.end(), '\\', '/');
    return FnBlnFileExists(path);
}

}  // namespace owb
