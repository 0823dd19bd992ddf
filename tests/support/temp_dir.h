// A folder of its own for one test, removed with everything in it at the end.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

namespace owb::test {

class TempDir {
  public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "owb-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
        path_ = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    std::string file(const std::string& name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

}  // namespace owb::test
