// Files beside the program whose presence alone switches its behaviour.
#pragma once

#include <string>

namespace owb {

struct Session;

// False for an empty path, for a folder, and on any error.
bool FnBlnFileExists(const std::string& path);
// Is there such a marker file in the program's folder? The name begins with its separator:
// "\OldLevAllotment.dat".
bool FnBlnMarkerFile(const Session& session, const std::string& name);

}  // namespace owb
