#include "ctl/progress_line.h"

namespace owb::ctl {

namespace {

constexpr const char* kBackAndClear = "\r\033[K";

}  // namespace

void ProgressLine::status(const std::string& text) {
    if (!out_) return;
    *out_ << kBackAndClear << text << std::flush;
    shown_ = true;
}

void ProgressLine::step(size_t done, size_t total) {
    if (total > 0) status(std::to_string(done) + " of " + std::to_string(total));
}

void ProgressLine::clear() {
    if (shown_) *out_ << kBackAndClear << std::flush;
    shown_ = false;
}

}  // namespace owb::ctl
