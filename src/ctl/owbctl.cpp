#include <CLI/CLI.hpp>
#include <ostream>

#include "base/db_error.h"
#include "base/version.h"
#include "ctl/command.h"
#include "ctl/suggestion.h"

namespace owb::ctl {

namespace {

using Maker = std::unique_ptr<Command> (*)();

// The order in which `owbctl help` lists them.
constexpr Maker kMakers[] = {makeCreateCommand,    makeSampleCommand,  makeSqlCommand,
                             makeProcessCommand,   makeScreenCommand,  makeRegisterCommand,
                             makeBalanceCommand,   makeExplainCommand, makeEvalCommand,
                             makeFormulaCommand,   makeCheckCommand,   makeBackupCommand,
                             makeCompletionCommand};

struct Entry {
    std::unique_ptr<Command> command;
    CLI::App* app = nullptr;
};

class CommandLine {
  public:
    explicit CommandLine(Streams& io) : io_(io) {
        all_.require_subcommand(1);
        all_.set_version_flag("--version", std::string("owbctl ") + programVersion());
        all_.footer("Exit status: 0 done, 1 failed (the reason on stderr), 2 wrong usage.");
        for (std::unique_ptr<Command>& command : allCommands()) {
            Entry entry{std::move(command)};
            entry.app = all_.add_subcommand(entry.command->name(), entry.command->summary());
            entry.app->footer(entry.command->contract());
            entry.command->declare(*entry.app);
            entries_.push_back(std::move(entry));
        }
        help_ = all_.add_subcommand("help", "Tell about a command");
        help_->add_option("COMMAND", helpName_, "Command; without one all are listed");
        overview_ = all_.help();
    }

    int run(std::vector<std::string> arguments) {
        if (arguments.empty()) {
            io_.out << overview_;
            return 0;
        }
        const std::string first = arguments.front();
        if (!first.starts_with('-') && !known(first)) return unknown(first);
        std::reverse(arguments.begin(), arguments.end());
        try {
            all_.parse(arguments);
        } catch (const CLI::CallForHelp&) {
            io_.out << all_.help();  // of the command, when one was named
            return 0;
        } catch (const CLI::CallForVersion& version) {
            io_.out << version.what() << '\n';
            return 0;
        } catch (const CLI::ParseError& e) {
            return wrongUsage(first, e);
        }
        return help_->parsed() ? help() : runParsed();
    }

  private:
    std::vector<std::string> names() const {
        std::vector<std::string> names = {"help"};
        for (const Entry& e : entries_) names.emplace_back(e.command->name());
        return names;
    }
    bool known(const std::string& name) const {
        const std::vector<std::string> all = names();
        return std::find(all.begin(), all.end(), name) != all.end();
    }
    int unknown(const std::string& name) const {
        const std::string hint = didYouMean(name, names());
        io_.err << "error: there is no command \"" << name << '"'
                << (hint.empty() ? "; owbctl help lists them" : hint) << '\n';
        return 2;
    }

    int help() const {
        if (helpName_.empty() || helpName_ == "help") {
            io_.out << overview_;
            return 0;
        }
        for (const Entry& e : entries_) {
            if (helpName_ != e.command->name()) continue;
            io_.out << e.app->help("owbctl");
            return 0;
        }
        return unknown(helpName_);
    }

    // The reason, what the command takes, and where more stands.
    int wrongUsage(const std::string& first, const CLI::ParseError& e) const {
        const CLI::App* app = &all_;
        for (const Entry& entry : entries_)
            if (first == entry.command->name()) app = entry.app;
        std::string hint;
        for (const std::string& word : app->remaining(true))
            if (hint.empty() && word.starts_with("--")) hint = didYouMean(word, optionNames(*app));
        const bool ofCommand = app != &all_;
        io_.err << "error: " << e.what() << hint << '\n'
                << CLI::Formatter().make_usage(app, ofCommand ? "owbctl " + first : "owbctl")
                << "See: owbctl help" << (ofCommand ? " " + first : "") << '\n';
        return 2;
    }

    int runParsed() const {
        for (const Entry& e : entries_) {
            if (!e.app->parsed()) continue;
            try {
                return e.command->run(io_);
            } catch (const std::exception& failure) {
                io_.err << "error: " << failure.what() << '\n';
                return 1;
            }
        }
        return 2;
    }

    Streams& io_;
    CLI::App all_{
        "Administers embedded databases of the Orvane Wagebook family.\n"
        "DB is a database file or a connection string.",
        "owbctl"};
    std::vector<Entry> entries_;
    CLI::App* help_ = nullptr;
    std::string helpName_, overview_;
};

}  // namespace

std::vector<std::unique_ptr<Command>> allCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    for (Maker make : kMakers) commands.push_back(make());
    return commands;
}

std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    }
    return names;
}

int runOwbctl(std::vector<std::string> arguments, Streams& io) {
    return CommandLine(io).run(std::move(arguments));
}

}  // namespace owb::ctl
