// Employees taken by hundreds or thousands, so that memory does not grow with the company.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace owb {

struct Session;

// Employees from one number to another, both counted.
struct EmployeeBlock {
    int64_t lngFirst = 0, lngLast = 0;
    // " AND <column> BETWEEN 1 AND 200".
    std::string Of(const std::string& column) const;
};

class EmployeeBlocks {
  public:
    // Of the employees that a query's rows name: `rows` is " FROM ... WHERE ...".
    EmployeeBlocks(Session& session, const std::string& column, const std::string& rows,
                   size_t employeesAtOnce);

    auto begin() const { return blocks_.begin(); }
    auto end() const { return blocks_.end(); }
    size_t RowCount() const { return rows_; }

  private:
    std::vector<EmployeeBlock> blocks_;
    size_t rows_ = 0;
};

}  // namespace owb
