#include "ctl/suggestion.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb::ctl {

namespace {

constexpr size_t kMostMistakes = 2;

// Fewest letters to add, leave out, change or swap with the next one.
size_t mistakes(const std::string& a, const std::string& b) {
    std::vector<std::vector<size_t>> d(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i)
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                d[i][j] = i + j;
                continue;
            }
            const size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

}  // namespace

std::string didYouMean(const std::string& typed, const std::vector<std::string>& words) {
    const std::string lower = lowerCase(typed);
    std::string nearest;
    // A word of which every letter is a mistake is not near.
    size_t fewest = std::min(kMostMistakes + 1, std::max<size_t>(lower.size(), 1));
    for (const std::string& word : words) {
        const bool begun = lower.size() > 1 && word.starts_with(lower);
        const size_t count = begun ? 0 : mistakes(lower, lowerCase(word));
        if (count >= fewest) continue;
        fewest = count;
        nearest = word;
    }
    return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace owb::ctl
