// How a long pass tells where it is and learns that the user cancelled.
#pragma once

#include <string>

namespace owb {

class Progress {
  public:
    virtual ~Progress() = default;
    // The status line. Called between rows: the front end repaints and takes input here.
    virtual void status(const std::string& text) = 0;
    // Rows done of all; total 0 means the number is not known.
    virtual void step(size_t done, size_t total) = 0;
    virtual bool cancelled() const = 0;
};

// For callers who want no report.
class NoProgress final : public Progress {
  public:
    void status(const std::string&) override {}
    void step(size_t, size_t) override {}
    bool cancelled() const override { return false; }
};

}  // namespace owb
