// The one list of what T-SQL knows and this engine refuses: each ends in an error that names it or
// in a syntax error, never in a wrong answer. docs/embedded-database.md repeats it; a test holds
// both, and the engine, to it.
#pragma once

#include <span>

namespace owb::tsql {

struct Unsupported {
    const char* feature;
    const char* example;  // a batch that is refused for it, on the table t(a int, s varchar(10))
};

std::span<const Unsupported> unsupportedFeatures();

}  // namespace owb::tsql
