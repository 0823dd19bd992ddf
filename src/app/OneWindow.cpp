#include "app/OneWindow.h"

#include <unistd.h>

#include <cstdlib>
#include <functional>

#include "app/LocalTalk.h"

namespace owb {

std::string FnStrSocketFolder() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder && *folder ? folder : "/tmp";
}

// A path of a socket is short, so that the company is told by a number made of its connection.
std::string FnStrWindowSocket(const Session& session, int32_t menuId, int32_t attHeadId) {
    const size_t company = std::hash<std::string>()(session.gConn.ConnectionString());
    return FnStrSocketFolder() + "/owb-" + std::to_string(getuid()) + "-" +
           std::to_string(company) + "-" + std::to_string(menuId) + "-" + std::to_string(attHeadId);
}

bool FnBlnBroughtForward(const std::string& socket) {
    return SendLocalMessage(socket, "forward");
}

}  // namespace owb
