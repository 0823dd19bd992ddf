// A parsed batch or module with the plans of its statements.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "tsql/parse/parsed_batch.h"
#include "tsql/plan/plan.h"

namespace owb::tsql {

// The plans of a batch's statements and expressions, by their place in the tree.
class Plans {
  public:
    std::unique_ptr<Plan>& operator[](const void* key) {
        if (key != lastKey_) {
            last_ = &plans_[key];
            lastKey_ = key;
        }
        return *last_;
    }
    void clear() {
        plans_.clear();
        lastKey_ = nullptr;
    }

  private:
    std::unordered_map<const void*, std::unique_ptr<Plan>> plans_;
    const void* lastKey_ = nullptr;  // a batch of one statement asks for the same each time
    std::unique_ptr<Plan>* last_ = nullptr;
};

// A parsed batch or module, made ready to run.
struct CompiledBatch {
    explicit CompiledBatch(std::shared_ptr<ParsedBatch> p) : parsed(std::move(p)) {}

    std::shared_ptr<ParsedBatch> parsed;
    std::string heldText;  // the text whose literals it holds now, of all that share its shape
    Plans plans;
    bool checked = false;     // its statements were bound once ahead of running
    bool loneSelect = false;  // and are but one SELECT, which makes no table
    int running = 0;
};

// Throws DbError as parseBatch does.
inline std::shared_ptr<CompiledBatch> compileBatch(std::string text) {
    return std::make_shared<CompiledBatch>(parseBatch(std::move(text)));
}

}  // namespace owb::tsql
