// Scalar functions of the database, called by SQLite in the middle of a statement. The same
// arguments give the same value within one statement: the results are remembered for its time.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "tsql/run/code_cache.h"

namespace owb::tsql {

class ScalarFunctions {
  public:
    ScalarFunctions(Session& session, CodeCache& codes, StatementRunner& runner)
        : session_(session), codes_(codes), runner_(runner) {}

    Value call(int id, SqliteArguments arguments);
    void forgetResults() {
        if (!results_.empty()) results_ = {};  // clear() would keep, and wipe, a big one's buckets
    }

  private:
    struct Function {
        CatalogModulePtr module;  // null when there is no such function
        std::shared_ptr<CompiledBatch> code;
        uint64_t version = 0;  // of the catalog
    };
    const Function& find(int id);

    Session& session_;
    CodeCache& codes_;
    StatementRunner& runner_;
    std::vector<Function> functions_;                 // by Session::functionId
    std::unordered_map<std::string, Value> results_;  // by function and arguments
};

}  // namespace owb::tsql
