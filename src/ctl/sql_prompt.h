// The interactive mode of owbctl sql: asks for batches line by line, runs each, tells what it gave.
#pragma once

#include <string>

namespace owb {
class Connection;
}

namespace owb::ctl {

class SqlOutput;

void runSqlPrompt(Connection& connection, SqlOutput& output);

// Whether a text that ends in ";" may run: not inside a quote, a comment or a BEGIN, and not the
// body of a procedure, function or trigger, which only GO ends.
bool endsBatch(const std::string& text);

}  // namespace owb::ctl
