#include "tsql/run/code_cache.h"

#include "tsql/parse/literal.h"

namespace owb::tsql {

namespace {

constexpr size_t kMostTokens = 200000;  // of the batches that are kept, with their plans
constexpr size_t kMostOfShape = 16;     // batches of one shape, for their fixed literals

}  // namespace

std::shared_ptr<CompiledBatch> CodeCache::batch(std::string_view text) {
    std::shared_ptr<CompiledBatch>& recent =
        recentTexts_[std::hash<std::string_view>{}(text) % recentTexts_.size()];
    if (recent && recent->heldText == text && recent->running == 0) return recent;
    std::shared_ptr<CompiledBatch> code = ofShape(text);
    if (!code->parsed->definition) {
        code->heldText = text;
        recent = code;
    }
    return code;
}

std::shared_ptr<CompiledBatch> CodeCache::ofShape(std::string_view text) {
    const std::vector<Token> tokens = tokenize(text);
    shape_.clear();
    std::vector<LiteralSlot> literals;
    literals.reserve(8);
    for (const Token& t : tokens) {
        if (t.isLiteral()) {
            literals.push_back(literalOf(t));
            shape_ += '\x01';
            shape_ += static_cast<char>('a' + static_cast<int>(literals.back().type.kind));
        } else {
            shape_ += text.substr(t.begin, t.end - t.begin);
        }
        shape_ += ' ';
    }
    for (const auto& code : byShape_[shape_])
        if (takesLiterals(*code, literals)) return code;
    if (keptTokens_ >= kMostTokens) {
        // Forgetting all is rare and simple; what is used comes back at once.
        byShape_.clear();
        recentTexts_.fill(nullptr);
        keptTokens_ = 0;
    }
    std::shared_ptr<CompiledBatch> code = compileBatch(std::string(text));
    auto& kept = byShape_[shape_];
    if (!code->parsed->definition) {
        if (kept.size() >= kMostOfShape) kept.erase(kept.begin());
        kept.push_back(code);
        keptTokens_ += code->parsed->tokens.size();
    } else if (kept.empty()) {
        byShape_.erase(shape_);
    }
    return code;
}

// Puts the literals into the batch, unless it runs or one of them does not fit its plans.
bool CodeCache::takesLiterals(CompiledBatch& code, std::vector<LiteralSlot>& literals) {
    std::vector<LiteralSlot>& held = code.parsed->ast.literals;
    if (code.running > 0 || held.size() < literals.size()) return false;
    for (size_t i = 0; i < literals.size(); ++i) {
        const LiteralSlot& slot = held[i];
        if (slot.fixed && !(slot.value == literals[i].value)) return false;
        if (slot.typeFixed && !(slot.type == literals[i].type && slot.digits == literals[i].digits))
            return false;
    }
    for (size_t i = 0; i < literals.size(); ++i) {
        LiteralSlot& slot = held[i];
        if (slot.fixed) continue;
        slot.value = std::move(literals[i].value);
        slot.type = literals[i].type;
        slot.digits = literals[i].digits;
    }
    return true;
}

const std::shared_ptr<CompiledBatch>& CodeCache::module(CatalogModule& module) {
    catalog_.parsed(module);
    std::shared_ptr<CompiledBatch>& code = modules_[module.name];
    if (!code || code->parsed != module.parsed)
        code = std::make_shared<CompiledBatch>(module.parsed);
    return code;
}

Frame CodeCache::frameOf(CatalogModule& m) {
    Frame frame(module(m));
    frame.procedure = m.name;
    return frame;
}

}  // namespace owb::tsql
