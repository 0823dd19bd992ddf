// Progress of long work as one line that is written over and over, on a terminal only.
#pragma once

#include <ostream>

#include "ctl/command.h"
#include "screen/progress.h"

namespace owb::ctl {

class ProgressLine final : public Progress {
  public:
    explicit ProgressLine(const Streams& io) : out_(io.terminal ? &io.err : nullptr) {}
    ~ProgressLine() override { clear(); }

    void status(const std::string& text) override;
    void step(size_t done, size_t total) override;
    bool cancelled() const override { return false; }
    void clear();

  private:
    std::ostream* out_;  // null: quiet
    bool shown_ = false;
};

}  // namespace owb::ctl
