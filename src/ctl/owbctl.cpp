#include <CLI/CLI.hpp>
#include <ostream>

#include "base/db_error.h"
#include "ctl/command.h"

namespace owb::ctl {

namespace {

using Maker = std::unique_ptr<Command> (*)();

// The order in which `owbctl help` lists them.
constexpr Maker kMakers[] = {makeCreateCommand,  makeSampleCommand,  makeSqlCommand,
                             makeProcessCommand, makeScreenCommand,  makeRegisterCommand,
                             makeBalanceCommand, makeExplainCommand, makeEvalCommand,
                             makeFormulaCommand, makeCheckCommand,   makeBackupCommand};

struct Entry {
    std::unique_ptr<Command> command;
    CLI::App* app = nullptr;
};

int help(const std::string& name, const std::string& overview, const std::vector<Entry>& entries,
         Streams& io) {
    if (name.empty()) {
        io.out << overview;
        return 0;
    }
    for (const Entry& e : entries) {
        if (name != e.command->name()) continue;
        io.out << e.app->help("owbctl");
        return 0;
    }
    io.err << "error: there is no command \"" << name << "\"; see owbctl help\n";
    return 2;
}

}  // namespace

int runOwbctl(std::vector<std::string> arguments, Streams& io) {
    CLI::App all{
        "Administers embedded databases of the Orvane Wagebook family.\n"
        "DB is a database file or a connection string.",
        "owbctl"};
    all.require_subcommand(1);
    all.footer("Exit status: 0 done, 1 failed (the reason on stderr), 2 wrong usage.");
    std::vector<Entry> entries;
    for (Maker make : kMakers) {
        Entry entry{make()};
        entry.app = all.add_subcommand(entry.command->name(), entry.command->summary());
        entry.app->footer(entry.command->contract());
        entry.command->declare(*entry.app);
        entries.push_back(std::move(entry));
    }
    std::string helpName;
    CLI::App* helpApp = all.add_subcommand("help", "Tell about a command");
    helpApp->add_option("COMMAND", helpName);

    const std::string overview = all.help();
    std::reverse(arguments.begin(), arguments.end());
    try {
        all.parse(arguments);
    } catch (const CLI::CallForHelp&) {
        io.out << all.help();  // of the command, when one was named
        return 0;
    } catch (const CLI::ParseError& e) {
        io.err << "error: " << e.what() << "\n";
        return 2;
    }
    if (helpApp->parsed()) return help(helpName, overview, entries, io);
    for (const Entry& e : entries) {
        if (!e.app->parsed()) continue;
        try {
            return e.command->run(io);
        } catch (const std::exception& failure) {
            io.err << "error: " << failure.what() << "\n";
            return 1;
        }
    }
    return 2;
}

}  // namespace owb::ctl
