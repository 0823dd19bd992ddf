// Runs a user's own query: whatever it does besides answering is undone.
#pragma once

#include <string>

#include "base/value.h"

namespace owb {

struct Session;
class Recordset;

// Opens the query's first result set as a snapshot; what the query wrote is undone before this
// returns. Inside the caller's transaction that goes on: an error undoes of it what the server
// undoes for such an error anyway. Throws DbError: the query's own, or that it might end a
// transaction, for then it is not run. A query that plainly writes nothing costs itself alone.
void OpenCustomQuery(Session& session, const std::string& query, Recordset& rs);
// The first column of the first row; the default for none and for NULL.
Value FnVarCustomQuery(Session& session, const std::string& query, const Value& defaultValue);
// Whether the text has words that would begin or end a transaction, or that run a text, which could
// hide them. A procedure may be called by its name.
bool FnBlnEndsTransaction(const std::string& query);

}  // namespace owb
