// Short messages between the family's programs on one machine, over a local socket named by its
// path. Nobody waits for anybody: a message to a listener that has died or is busy is lost.
#pragma once

#include <string>
#include <vector>

namespace owb {

// False when nobody took it.
bool SendLocalMessage(const std::string& path, const std::string& message);

class LocalListener {
  public:
    // Takes the place of a listener that died and left its socket behind. Throws
    // std::runtime_error.
    explicit LocalListener(std::string path);
    ~LocalListener();
    LocalListener(const LocalListener&) = delete;
    LocalListener& operator=(const LocalListener&) = delete;

    const std::string& path() const { return path_; }
    int descriptor() const { return descriptor_; }  // readable when a message has come
    std::vector<std::string> take();                // messages that have come, the oldest first

  private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace owb
