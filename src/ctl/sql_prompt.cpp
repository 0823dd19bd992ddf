#include "ctl/sql_prompt.h"

#include <signal.h>

#include <cstdlib>
#include <ostream>
#include <set>
#include <sstream>
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
    "  \\x                     a line for each column, for wide rows, or tables again\n"
    "  Tab                    completes the name of a table, column or routine\n"
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

bool runsAtOnce(const std::string& line) {
    std::istringstream words(lowerCase(line));
    std::string first, more;
    words >> first;
    while (first.ends_with(';')) first.pop_back();
    const bool takesName = first == "sp_helptext" || first == "sp_helptrigger";
    return (takesName && words >> more) || first == "sp_help";
}

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

std::vector<std::string> sqlWordsFrom(Connection& connection, const std::string& beginning) {
    static constexpr const char* kWords[] = {
        "ALTER",    "BEGIN",  "CREATE",  "COMMIT",      "DECLARE",        "DELETE", "DROP",
        "EXEC",     "EXISTS", "FROM",    "GROUP",       "HAVING",         "INNER",  "INSERT",
        "INTO",     "JOIN",   "LEFT",    "ORDER",       "PROCEDURE",      "SELECT", "TABLE",
        "TOP",      "UPDATE", "VALUES",  "WHERE",       "TRANSACTION",    "VIEW",   "ROLLBACK",
        "FUNCTION", "PRINT",  "sp_help", "sp_helptext", "sp_helptrigger", "help",   "exit"};
    if (beginning.empty()) return {};
    const std::string lower = lowerCase(beginning);
    std::set<std::string> words;
    for (const char* word : kWords)
        if (lowerCase(word).starts_with(lower)) words.insert(word);
    const BatchResult found = connection.RunCollecting(
        "SELECT NAME FROM SYS.OBJECTS UNION SELECT COLUMN_NAME FROM INFORMATION_SCHEMA.COLUMNS");
    if (!found.sets.empty())
        for (const Value& name : found.sets.front().cells)
            if (lowerCase(name.toText()).starts_with(lower)) words.insert(name.toText());
    return {words.begin(), words.end()};
}

namespace {

// What stands open when the user leaves is lost: he is told.
void tellOpenTransaction(Connection& connection, std::ostream& out) {
    const BatchResult open = connection.RunCollecting("SELECT @@TRANCOUNT");
    if (!open.sets.empty() && open.sets.front().at(0, 0).toInt() > 0)
        out << "The open transaction is rolled back.\n" << std::flush;
}

// A line that is a command of the prompt itself; false: it belongs to a batch.
bool promptCommand(const std::string& command, SqlOutput& output) {
    using Rows = SqlOutput::Rows;
    if (command == "help") {
        output.out << kHelp;
    } else if (command == "time") {
        output.time = !output.time;
        output.out << "Timing is " << (output.time ? "on" : "off") << ".\n";
    } else if (command == "\\x") {
        output.rows = output.rows == Rows::Vertical ? Rows::Tables : Rows::Vertical;
        output.out << (output.rows == Rows::Vertical ? "A line for each column.\n" : "Tables.\n");
    } else {
        return command.empty() || command == "go";
    }
    output.out << std::flush;
    return true;
}

}  // namespace

void runSqlPrompt(Connection& connection, SqlOutput& output) {
    output.out << "help tells how to go on, exit leaves.\n" << std::flush;
    LineEditor editor("owbctl", historyFile(), [&](const std::string& beginning) {
        return sqlWordsFrom(connection, beginning);
    });
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
        if (got == LineEditor::Got::End) {
            output.out << '\n';
            break;
        }
        if (got == LineEditor::Got::Interrupted) {
            output.out << "^C\n" << std::flush;
            batch.clear();
            number = 1;
            continue;
        }
        const std::string command = commandOf(line);
        if (batch.empty()) {
            if (command == "exit" || command == "quit") break;
            if (promptCommand(command, output)) continue;
        }
        if (command == "go") {
            give();
            continue;
        }
        const bool atOnce = batch.empty() && runsAtOnce(line);
        batch += line + "\n";
        ++number;
        if (atOnce || endsBatch(batch)) give();
    }
    tellOpenTransaction(connection, output.out);
}

}  // namespace owb::ctl
