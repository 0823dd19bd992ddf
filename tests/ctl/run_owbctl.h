// Runs a command line of owbctl on texts.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "ctl/command.h"

namespace owb::ctl {

struct Outcome {
    int status;
    std::string out, err;
};

inline Outcome owbctl(std::vector<std::string> arguments, const std::string& input = "") {
    std::istringstream in(input);
    std::ostringstream out, err;
    Streams io{in, out, err};
    const int status = runOwbctl(std::move(arguments), io);
    return {status, out.str(), err.str()};
}

}  // namespace owb::ctl
