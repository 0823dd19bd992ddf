// The format of RAISERROR's messages: %d %i %u %x %X %o %s with flags, width and precision.
#pragma once

#include <string>
#include <vector>

#include "base/value.h"

namespace owb::tsql {

// Throws DbError 2786, 2787.
std::string raisedMessage(const std::string& format, const std::vector<Value>& values);

}  // namespace owb::tsql
