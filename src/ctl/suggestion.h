// What somebody may have meant by a word that is none of those that may stand there.
#pragma once

#include <string>
#include <vector>

namespace owb::ctl {

// "; did you mean <word>?" of the word that is at most two mistakes away (a letter too many,
// missing, wrong or changed with its neighbour) or that begins with what was typed; "" when none is
// near.
std::string didYouMean(const std::string& typed, const std::vector<std::string>& words);

}  // namespace owb::ctl
