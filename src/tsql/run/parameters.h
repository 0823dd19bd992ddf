// Where the parameters of a plan get their values.
#pragma once

#include "tsql/lower/lowerer.h"
#include "tsql/run/session.h"

namespace owb::tsql {

// `outer`: the arguments of an APPLY, for a plan that is its right side.
void bindParameters(SqliteStatement& statement, Frame& frame,
                    const std::vector<PlanParameter>& parameters,
                    const SqliteArguments* outer = nullptr);
// The value of one, in its type.
Value parameterValue(Frame& frame, const PlanParameter& parameter);

}  // namespace owb::tsql
