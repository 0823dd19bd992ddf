// One ledger row worked out again before somebody's eyes: the same calculation and the same chain
// as in the passes, told step by step and written nowhere.
#pragma once

#include "leave/modLeaveCalc.h"

namespace owb {

// The steps come in the order of the work: the setting in force, the figure, the gate, the days,
// the credit and its rounding; the row before with its closing, the rule of carrying over and what
// it does.
void ExplainAllotment(Session& session, const AllotRow& row, AllotmentSteps& steps);

}  // namespace owb
