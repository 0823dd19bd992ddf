#include "leave/EmployeeBlocks.h"

#include "db/recordset.h"
#include "db/sql_text.h"
#include "session/Session.h"

namespace owb {

std::string EmployeeBlock::Of(const std::string& column) const {
    return Sql() << " AND " << column << " BETWEEN " << lngFirst << " AND " << lngLast;
}

EmployeeBlocks::EmployeeBlocks(Session& session, const std::string& column, const std::string& rows,
                               size_t employeesAtOnce) {
    size_t employees = 0;
    for (Recordset rs(session.gConn, Sql() << "SELECT " << column << ", COUNT(*)" << rows
                                           << " GROUP BY " << column << " ORDER BY " << column);
         !rs.IsEOF(); rs.MoveNext()) {
        const int64_t employee = rs.Fields(0).toInt();
        if (employees++ % employeesAtOnce == 0) blocks_.push_back({employee, employee});
        blocks_.back().lngLast = employee;
        rows_ += static_cast<size_t>(rs.Fields(1).toInt());
    }
}

}  // namespace owb
