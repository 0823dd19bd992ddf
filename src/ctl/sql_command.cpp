#include <CLI/CLI.hpp>
#include <fstream>
#include <iterator>
#include <ostream>

#include "base/csv.h"
#include "base/utf8.h"
#include "ctl/command.h"
#include "ctl/database.h"

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
               "stdin. Each result set is printed as CSV with a header line, sets are parted by a\n"
               "blank line; NULL is nothing and an empty text is \"\". A batch that fails prints\n"
               "\"error: <message>\" on stderr, the next batch runs, and the exit status is 1.";
    }

    void declare(CLI::App& app) override {
        app.add_option("DB", db_, "Database")->required();
        auto* text = app.add_option("-c,--command", text_, "The batches themselves");
        app.add_option("-f,--file", file_, "A file of batches")->excludes(text);
    }

    int run(Streams& io) override {
        const std::string text = !text_.empty() ? text_ : file_.empty() ? whole(io.in) : fromFile();
        Connection connection;
        openDatabase(connection, db_);
        bool failed = false;
        bool first = true;
        for (const std::string& batch : batchesOf(text)) {
            const BatchResult result = connection.RunCollecting(batch);
            for (const ResultSet& set : result.sets) {
                if (!first) io.out << '\n';
                first = false;
                io.out << csvText(set);
            }
            io.out.flush();
            for (const std::string& message : result.messages) io.err << message << '\n';
            for (const DbError& error : result.errors) io.err << "error: " << error.what() << '\n';
            failed = failed || !result.errors.empty();
        }
        return failed ? 1 : 0;
    }

  private:
    std::string fromFile() const {
        std::ifstream in(file_, std::ios::binary);
        if (!in) throw CommandError("cannot read " + file_);
        return whole(in);
    }

    std::string db_, text_, file_;
};

}  // namespace

std::unique_ptr<Command> makeSqlCommand() {
    return std::make_unique<SqlCommand>();
}

}  // namespace owb::ctl
