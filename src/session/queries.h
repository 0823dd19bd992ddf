// Single answers of the company's database. A query that fails throws DbError: whoever decides or
// computes by an answer must not take a failure for one.
#pragma once

#include <cstdint>
#include <string>

#include "base/value.h"

namespace owb {

struct Session;

// First column of the first row; the default when there is no row or it is NULL.
Value FnVarValueOrThrow(Session& session, const std::string& sql, const Value& defaultValue = {});
// True when the query finds a row.
bool FnBlnExistsOrThrow(Session& session, const std::string& sql);
// Is the value taken by another row of a master? `ownId` is the row's own key, 0 for a new row.
bool FnBlnDuplicate(Session& session, const std::string& table, const std::string& keyColumn,
                    const std::string& idColumn, const std::string& value, int64_t ownId);
// Host name as the server gives it, followed in an extended session by the Windows user.
std::string FnStrHostPrefix(Session& session);

}  // namespace owb
