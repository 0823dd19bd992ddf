#include "leave/RowFailures.h"

#include "base/db_error.h"
#include "session/Session.h"

namespace owb {

// The client's own errors (a lost connection, a time-out, a cancelled batch) have numbers below 0.
bool RowFailures::Attempt(int64_t lngEmpId, int64_t lngRow, const std::function<void()>& work) {
    constexpr int kConnectionEnds = 20;
    try {
        work();
        return true;
    } catch (const DbError& e) {
        if (e.severity >= kConnectionEnds || e.number < 0 || session_.gExtendedYN) throw;
        rows_.insert(lngRow);
        employees_[std::to_string(e.number) + ": " + e.what()].insert(lngEmpId);
        return false;
    }
}

bool RowFailures::Tell() {
    constexpr size_t kNamed = 20;
    for (const auto& [error, employees] : employees_) {
        std::string text = error + "\n\n" + session_.gEmployeeCaption + " ";
        size_t n = 0;
        for (const int64_t employee : employees)
            if (++n <= kNamed) text += (n > 1 ? ", " : "") + std::to_string(employee);
        if (n > kNamed) text += " and " + std::to_string(n - kNamed) + " more";
        session_.boxes.critical(text, "");
    }
    return employees_.empty();
}

}  // namespace owb
