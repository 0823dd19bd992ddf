#include "ctl/sql_prompt.h"

#include <signal.h>

#include <cstdlib>
#include <ostream>
#include <vector>

#include "base/utf8.h"
#include "ctl/line_editor.h"
#include "ctl/sql_output.h"
#include "db/connection.h"

namespace owb::ctl {

namespace {

constexpr const char* kHelp =
    "A batch runs at a line that holds GO alone, or at a line that ends in \";\" unless it makes "
    "a\n"
    "procedure, function or trigger. Ctrl-C gives up the line or cancels the running batch.\n"
    "  sp_help                what stands in the database\n"
    "  sp_help NAME           columns, keys and constraints of a table, parameters of a routine\n"
    "  sp_helptext NAME       the text of a view, routine or trigger\n"
    "  sp_helptrigger TABLE   the triggers of a table\n"
    "  time                   tells after each batch how long it took, or no longer\n"
    "  help                   this text\n"
    "  exit, quit, Ctrl-D     leaves; an open transaction is rolled back\n";

std::string historyFile() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    const std::string base =
        state && *state ? state : std::string(home ? home : ".") + "/.local/state";
    return base + "/orvane-wagebook/sql_history";
}

// Ctrl-C: at the prompt it only breaks the reading off, during a batch it cancels that.
Connection* running = nullptr;

void onInterrupt(int) {
    if (running) running->Cancel();
}

class InterruptHandler {
  public:
    InterruptHandler() {
        struct sigaction action = {};
        action.sa_handler = onInterrupt;  // without SA_RESTART: reading a line ends
        sigaction(SIGINT, &action, &before_);
    }
    ~InterruptHandler() { sigaction(SIGINT, &before_, nullptr); }

  private:
    struct sigaction before_ = {};
};

std::string commandOf(const std::string& line) {
    std::string word = lowerCase(trim(line));
    while (word.ends_with(';')) word.pop_back();
    return word;
}

}  // namespace

bool endsBatch(const std::string& text) {
    std::vector<std::string> words;
    int open = 0;  // BEGIN and CASE without their END
    char last = ' ';
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\'' || c == '"' || c == '[') {
            i = text.find(c == '[' ? ']' : c, i + 1);
            if (i == std::string::npos) return false;
            last = c;
        } else if (c == '-' && text[i + 1] == '-') {
            i = text.find('\n', i);
            if (i == std::string::npos) break;
        } else if (c == '/' && text[i + 1] == '*') {
            i = text.find("*/", i + 2);
            if (i == std::string::npos) return false;
            ++i;
        } else if (isalpha(static_cast<unsigned char>(c)) || c == '_' || c == '@' || c == '#') {
            size_t end = i;
            while (end < text.size() && (isalnum(static_cast<unsigned char>(text[end])) ||
                                         text[end] == '_' || text[end] == '@' || text[end] == '#'))
                ++end;
            words.push_back(lowerCase(text.substr(i, end - i)));
            const std::string& word = words.back();
            const std::string before = words.size() > 1 ? words[words.size() - 2] : "";
            if (word == "begin" || word == "case") ++open;
            if (word == "end") --open;
            if (before == "begin" && word.starts_with("tran")) --open;
            i = end - 1;
            last = c;
        } else if (!isspace(static_cast<unsigned char>(c))) {
            last = c;
        }
    }
    if (last != ';' || open > 0) return false;
    size_t what = 1;  // the word behind CREATE or ALTER
    if (words.size() > 2 && words[1] == "or") what = 3;
    if (words.size() <= what || (words[0] != "create" && words[0] != "alter")) return true;
    const std::string& kind = words[what];
    return !kind.starts_with("proc") && kind != "function" && kind != "trigger";
}

void runSqlPrompt(Connection& connection, SqlOutput& output) {
    output.out << "help tells how to go on, exit leaves.\n" << std::flush;
    LineEditor editor("owbctl", historyFile());
    const InterruptHandler handler;
    std::string batch, line;
    int number = 1;
    const auto give = [&] {
        running = &connection;
        output.run(connection, batch);
        running = nullptr;
        output.out << '\n' << std::flush;
        batch.clear();
        number = 1;
    };
    while (true) {
        // The number of the line, as errors tell it.
        const LineEditor::Got got = editor.read(std::to_string(number) + "> ", line);
        if (got == LineEditor::Got::End) break;
        if (got == LineEditor::Got::Interrupted) {
            output.out << "^C\n" << std::flush;
            batch.clear();
            number = 1;
            continue;
        }
        const std::string command = commandOf(line);
        if (batch.empty()) {
            if (command.empty() || command == "go") continue;
            if (command == "exit" || command == "quit") return;
            if (command == "help") {
                output.out << kHelp << std::flush;
                continue;
            }
            if (command == "time") {
                output.time = !output.time;
                output.out << "Timing is " << (output.time ? "on" : "off") << ".\n" << std::flush;
                continue;
            }
        }
        if (command == "go") {
            give();
            continue;
        }
        batch += line + "\n";
        ++number;
        if (endsBatch(batch)) give();
    }
    output.out << '\n';
}

}  // namespace owb::ctl
