#include <CLI/CLI.hpp>
#include <ostream>

#include "ctl/command.h"

namespace owb::ctl {

namespace {

// What follows the command: its options behind a dash, otherwise files, since DB comes first.
constexpr const char* kBody =
    "_owbctl() {\n"
    "    local word=${COMP_WORDS[COMP_CWORD]} options=--help\n"
    "    if [ \"$COMP_CWORD\" = 1 ]; then\n"
    "        COMPREPLY=($(compgen -W \"$_owbctl_commands --help --version\" -- \"$word\"))\n"
    "        return\n"
    "    fi\n"
    "    case ${COMP_WORDS[1]} in\n";
constexpr const char* kEnd =
    "    esac\n"
    "    case $word in\n"
    "        -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")) ;;\n"
    "        *) COMPREPLY=($(compgen -f -- \"$word\")) ;;\n"
    "    esac\n"
    "}\n"
    "complete -o filenames -F _owbctl owbctl\n";

class CompletionCommand final : public Command {
  public:
    const char* name() const override { return "completion"; }
    const char* summary() const override { return "Print what a shell needs to complete by Tab"; }
    const char* contract() const override {
        return "For bash: source <(owbctl completion bash), in ~/.bashrc. For zsh: the same with\n"
               "zsh, in ~/.zshrc behind compinit. Tab then completes commands, their options and\n"
               "files.";
    }

    void declare(CLI::App& app) override {
        app.add_option("SHELL", shell_, "bash or zsh")
            ->required()
            ->check(CLI::IsMember({"bash", "zsh"}));
    }

    int run(Streams& io) override {
        // The shell's own functions are understood by both.
        if (shell_ == "zsh") io.out << "autoload -U +X bashcompinit && bashcompinit\n";
        std::string names, cases;
        for (const auto& command : allCommands()) {
            CLI::App app;
            command->declare(app);
            std::string options;
            for (const std::string& option : optionNames(app))
                options += (options.empty() ? "" : " ") + option;
            names += std::string(command->name()) + " ";
            cases +=
                std::string("        ") + command->name() + ") options=\"" + options + "\" ;;\n";
        }
        cases +=
            "        help) COMPREPLY=($(compgen -W \"$_owbctl_commands\" -- \"$word\")); "
            "return ;;\n";
        io.out << "_owbctl_commands=\"" << names << "help\"\n" << kBody << cases << kEnd;
        return 0;
    }

  private:
    std::string shell_;
};

}  // namespace

std::unique_ptr<Command> makeCompletionCommand() {
    return std::make_unique<CompletionCommand>();
}

}  // namespace owb::ctl
