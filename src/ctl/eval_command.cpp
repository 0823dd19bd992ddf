#include <CLI/CLI.hpp>
#include <istream>
#include <nlohmann/json.hpp>
#include <ostream>

#include "ctl/command.h"
#include "formula/clsExprEval.h"

namespace owb::ctl {

namespace {

using nlohmann::json;

// A number may stand bare.
std::string entryText(const json& entry) {
    return entry.is_string() ? entry.get<std::string>() : entry.dump();
}

KeywordTable keywordTable(const json& line, const char* name) {
    KeywordTable table;
    if (!line.contains(name)) return table;
    for (const json& entry : line.at(name))
        table.push_back({entry.at(0).get<std::string>(), entryText(entry.at(1))});
    return table;
}

class EvalCommand final : public Command {
  public:
    const char* name() const override { return "eval"; }
    const char* summary() const override { return "Evaluate expressions of the formula language"; }
    const char* contract() const override {
        return "Reads one JSON object a line, {\"expr\": \"...\", \"keywords\": [[\"K\", \"V\"],\n"
               "...]}, and prints {\"text\": \"...\"} for each: the result, or a text that begins\n"
               "with \"ERROR: \". A second table may stand in \"keywords2\". A line that cannot "
               "be\n"
               "read gives {\"error\": \"...\"}, and the exit status is 1.";
    }

    void declare(CLI::App&) override {}

    int run(Streams& io) override {
        clsExprEval eval(wallClock);
        int status = 0;
        for (std::string text; std::getline(io.in, text);) {
            if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
            json answer;
            try {
                const json line = json::parse(text);
                const KeywordTable first = keywordTable(line, "keywords");
                const KeywordTable second = keywordTable(line, "keywords2");
                answer["text"] =
                    eval.EvaluateExpression(line.at("expr").get<std::string>(), &first, &second)
                        .display();
            } catch (const json::exception& failure) {
                answer["error"] = failure.what();
                status = 1;
            }
            io.out << answer.dump(-1, ' ', false, json::error_handler_t::replace) << std::endl;
        }
        return status;
    }
};

}  // namespace

std::unique_ptr<Command> makeEvalCommand() {
    return std::make_unique<EvalCommand>();
}

}  // namespace owb::ctl
