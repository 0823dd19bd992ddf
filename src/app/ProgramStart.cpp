#include "app/ProgramStart.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "base/version.h"

namespace owb {

namespace {

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

}  // namespace

bool FnBlnToldUsage(int argc, char** argv, const std::string& usage) {
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "--version")
        std::cout << std::filesystem::path(argv[0]).filename().string() << ' ' << programVersion()
                  << std::endl;
    else if (first == "--help" || first == "-h")
        std::cout << usage << std::endl;
    else
        return false;
    return true;
}

bool FnBlnHasDisplay() {
    return !isSet("OWB_SCRIPT") &&
           (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM"));
}

}  // namespace owb
