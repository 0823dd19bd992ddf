// Care of the file: its copy, and whether it and its catalog are sound.
#pragma once

#include <string>
#include <vector>

#include "tsql/run/system_help.h"

namespace owb::tsql {

class FileCare {
  public:
    FileCare(Session& session, SystemHelp& help) : session_(session), help_(help) {}

    void backup(const std::string& path);
    std::vector<std::string> problems();

  private:
    void checkCatalog(std::vector<std::string>& problems);

    Session& session_;
    SystemHelp& help_;
};

}  // namespace owb::tsql
