// The parsed batches and modules that are kept, with their plans.
//
//  1. The shape of a text is its tokens with the literals taken out. Texts of one shape share one
//     parsed batch and its plans: the literals of the text that is to run are put into it.
//  2. A literal whose value shaped a plan is fixed, one whose digits did is fixed in its type; a
//     text with another such literal gets a batch of its own.
//  3. A batch that runs is not handed out again: its literals are in use.
//  4. The very text that was run last of its shape is not read at all.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/run/session.h"

namespace owb::tsql {

class CodeCache {
  public:
    explicit CodeCache(Catalog& catalog) : catalog_(catalog) {}

    std::shared_ptr<CompiledBatch> batch(std::string_view text);
    const std::shared_ptr<CompiledBatch>& module(CatalogModule& module);
    // A frame for a call of it, the variables still without values.
    Frame frameOf(CatalogModule& module);

  private:
    std::shared_ptr<CompiledBatch> ofShape(std::string_view text);
    static bool takesLiterals(CompiledBatch& code, std::vector<LiteralSlot>& literals);

    Catalog& catalog_;
    std::unordered_map<std::string, std::vector<std::shared_ptr<CompiledBatch>>> byShape_;
    std::array<std::shared_ptr<CompiledBatch>, 512> recentTexts_;  // by hash of the text
    size_t keptTokens_ = 0;
    std::string shape_;
    std::unordered_map<std::string, std::shared_ptr<CompiledBatch>> modules_;  // by name
};

}  // namespace owb::tsql
