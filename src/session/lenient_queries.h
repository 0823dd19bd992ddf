// Queries that swallow a failure, as the family's code knows them: for captions, headings and
// statements whose failure changes nothing. Nothing may be decided, computed or written by their
// answers; that is what session/queries.h is for.
#pragma once

#include <string>

#include "base/date_time.h"
#include "base/value.h"

namespace owb {

struct Session;

// First column of the first row; the default when there is no row or it is NULL. A failing query
// shows "<description> : <number>" in a critical box and gives an empty value (0, ""), not the
// default.
Value FnVarGetValue(Session& session, const std::string& sql, const Value& defaultValue = {});
// The same for the small reference tables (ITSETTING), which have their home in the company's own
// database here.
Value FnVarGetJetValue(Session& session, const std::string& sql, const Value& defaultValue = {});
// True when the query finds a row; an error is false, silently.
bool FnBlnRecordExists(Session& session, const std::string& sql);
// Runs an optional statement; false on any failure, silently.
bool FnBlnExecute(Session& session, const std::string& sql);
// First and last day of a payroll month: an error is shown and gives day 0.
DateTime FnDteMonthStart(Session& session, int32_t lngMonthYear);
DateTime FnDteMonthEnd(Session& session, int32_t lngMonthYear);

}  // namespace owb
