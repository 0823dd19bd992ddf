// The interactive mode of owbctl sql: asks for batches line by line, runs each, tells what it gave.
#pragma once

#include <string>
#include <vector>

namespace owb {
class Connection;
}

namespace owb::ctl {

class SqlOutput;

void runSqlPrompt(Connection& connection, SqlOutput& output);

// Whether a text that ends in ";" may run: not inside a quote, a comment or a BEGIN, and not the
// body of a procedure, function or trigger, which only GO ends.
bool endsBatch(const std::string& text);
// Whether the first line of a batch is a batch by itself: sp_help, sp_helptext NAME ...
bool runsAtOnce(const std::string& line);
// Names and words of the language that begin so, in any letter case, in the order of the alphabet.
std::vector<std::string> sqlWordsFrom(Connection& connection, const std::string& beginning);

}  // namespace owb::ctl
