// What a command of owbctl is: it declares its arguments once and then runs with them.
#pragma once

#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace owb::ctl {

struct Streams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool terminal = false;     // err is a terminal: progress may be shown there
    bool interactive = false;  // in and out are a terminal: somebody types
};

// A failure that the user is told in one line, "error: <text>", with exit status 1.
struct CommandError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Command {
  public:
    virtual ~Command() = default;
    virtual const char* name() const = 0;
    virtual const char* summary() const = 0;  // one line for the list of commands
    virtual const char* contract()
        const = 0;  // what `owbctl help NAME` tells besides the arguments
    virtual void declare(CLI::App& app) = 0;
    // Exit status: 0 done, 1 failed. DbError and CommandError may leave.
    virtual int run(Streams& io) = 0;
};

// One function for each command, each in a file of its own.
std::unique_ptr<Command> makeCreateCommand();
std::unique_ptr<Command> makeSampleCommand();
std::unique_ptr<Command> makeSqlCommand();
std::unique_ptr<Command> makeProcessCommand();
std::unique_ptr<Command> makeScreenCommand();
std::unique_ptr<Command> makeRegisterCommand();
std::unique_ptr<Command> makeBalanceCommand();
std::unique_ptr<Command> makeExplainCommand();
std::unique_ptr<Command> makeEvalCommand();
std::unique_ptr<Command> makeFormulaCommand();
std::unique_ptr<Command> makeCheckCommand();
std::unique_ptr<Command> makeBackupCommand();
std::unique_ptr<Command> makeCompletionCommand();

// All of them, in the order in which help lists them.
std::vector<std::unique_ptr<Command>> allCommands();
// "--json", "-f" ...: the options that a command has declared.
std::vector<std::string> optionNames(const CLI::App& app);

// Runs one command line (without the program's name) and gives its exit status: 0 done, 1 failed,
// 2 wrong usage.
int runOwbctl(std::vector<std::string> arguments, Streams& io);

}  // namespace owb::ctl
