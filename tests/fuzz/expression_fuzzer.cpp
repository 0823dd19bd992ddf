// Fuzzes formulas: any text ends in a value or an "ERROR: " text, and its explanation in texts. The
// first line is the expression; each further one is a keyword, "keyword=value".
#include <cstdio>
#include <cstdlib>
#include <string>

#include "formula/clsExprEval.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const auto line = [&rest] {
        const size_t end = rest.find('\n');
        const std::string_view text = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        return text;
    };
    const std::string expression(line());
    owb::KeywordTable keywords;
    while (!rest.empty() && keywords.size() < 20) {
        const std::string_view entry = line();
        const size_t equals = entry.find('=');
        if (equals != std::string_view::npos)
            keywords.push_back(
                {std::string(entry.substr(0, equals)), std::string(entry.substr(equals + 1))});
    }
    const auto clock = [] { return owb::DateTime::fromCivil(2024, 3, 9); };
    owb::clsExprEval eval(clock);
    const std::string first = eval.EvaluateExpression(expression, &keywords).display();
    // The second time the formula is not parsed again, and gives the same.
    if (eval.EvaluateExpression(expression, &keywords).display() != first) std::abort();
    return 0;
}
