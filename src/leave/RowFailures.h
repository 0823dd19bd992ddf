// No single row stops a pass: one that fails keeps its mark, the rest goes on, and at the end each
// kind of failure is told once, with the employees that it befell.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace owb {

struct Session;

class RowFailures {
  public:
    explicit RowFailures(Session& session) : session_(session) {}

    // Runs the work on a row of the employee; false when it failed. Throws DbError where going on
    // makes no sense: the connection is lost, or with it the session's transaction.
    bool Attempt(int64_t lngEmpId, int64_t lngRow, const std::function<void()>& work);
    bool Has(int64_t lngRow) const { return rows_.count(lngRow) > 0; }
    // Tells who failed and why. True when nobody did.
    bool Tell();

  private:
    Session& session_;
    std::set<int64_t> rows_;
    std::map<std::string, std::set<int64_t>> employees_;  // by error
};

}  // namespace owb
