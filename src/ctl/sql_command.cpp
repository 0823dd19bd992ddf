#include <CLI/CLI.hpp>
#include <fstream>
#include <iterator>
#include <ostream>

#include "base/utf8.h"
#include "ctl/command.h"
#include "ctl/database.h"
#include "ctl/sql_output.h"
#include "ctl/sql_prompt.h"

namespace owb::ctl {

namespace {

std::string whole(std::istream& in) {
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The batches of a text, parted by lines that hold GO alone.
std::vector<std::string> batchesOf(const std::string& text) {
    std::vector<std::string> batches(1);
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        std::string line = text.substr(at, end - at);
        at = end;
        std::string word = line;
        while (!word.empty() && (word.back() == '\n' || word.back() == '\r')) word.pop_back();
        if (equalsIgnoreCaseAscii(trim(word), "GO"))
            batches.emplace_back();
        else
            batches.back() += line;
    }
    std::erase_if(batches, [](const std::string& batch) {
        return batch.find_first_not_of(" \t\r\n") == std::string::npos;
    });
    return batches;
}

class SqlCommand final : public Command {
  public:
    const char* name() const override { return "sql"; }
    const char* summary() const override { return "Run T-SQL batches"; }
    const char* contract() const override {
        return "Batches are parted by lines that hold GO alone. Without -c and -f they come from\n"
               "stdin; when that is a terminal they are asked for, with line editing and a "
               "history.\n"
               "Each result set is printed as CSV with a header line, sets are parted by a blank\n"
               "line; NULL is nothing and an empty text is \"\". With --json each set is an array "
               "of\n"
               "objects instead. A batch that fails prints\n"
               "\"error: <message>\" and the server's \"Msg ...\" line on stderr, with the place "
               "of a\n"
               "syntax error; the next batch runs, and the exit status is 1.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        auto* text = app.add_option("-c,--command", text_, "The batches themselves");
        app.add_option("-f,--file", file_, "A file of batches")->excludes(text);
        auto* table = app.add_flag("--table", table_, "Aligned columns instead of CSV");
        app.add_flag("--json", json_, "JSON instead of CSV")->excludes(table);
        app.add_flag("--vertical", vertical_, "A line for each column of a row instead of CSV");
        app.add_flag("--time", time_, "Tell how long each batch took");
    }

    int run(Streams& io) override {
        if (vertical_ && (table_ || json_))
            throw CommandError("--vertical goes with neither --table nor --json");
        Connection connection;
        openDatabase(connection, db_);
        const bool asks = text_.empty() && file_.empty() && io.interactive;
        using Rows = SqlOutput::Rows;
        const Rows rows = json_            ? Rows::Json
                          : vertical_      ? Rows::Vertical
                          : table_ || asks ? Rows::Tables
                                           : Rows::Csv;
        SqlOutput output(io.out, io.err, rows, time_);
        if (asks) {
            runSqlPrompt(connection, output);
            return 0;
        }
        const std::string text = !text_.empty() ? text_ : file_.empty() ? whole(io.in) : fromFile();
        bool failed = false;
        for (const std::string& batch : batchesOf(text))
            if (!output.run(connection, batch)) failed = true;
        return failed ? 1 : 0;
    }

  private:
    std::string fromFile() const {
        std::ifstream in(file_, std::ios::binary);
        if (!in) throw CommandError("cannot read " + file_);
        return whole(in);
    }

    std::string db_, text_, file_;
    bool table_ = false, json_ = false, vertical_ = false, time_ = false;
};

}  // namespace

std::unique_ptr<Command> makeSqlCommand() {
    return std::make_unique<SqlCommand>();
}

}  // namespace owb::ctl
