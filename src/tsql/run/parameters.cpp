#include "tsql/run/parameters.h"

#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

const Value& heldValue(Frame& frame, const std::vector<LiteralSlot>& literals,
                       const PlanParameter& p) {
    if (p.kind == PlanParameter::Literal) return literals[p.index].value;
    return p.kind == PlanParameter::Variable ? frame.variables[p.index] : p.constant;
}

}  // namespace

Value parameterValue(Frame& frame, const PlanParameter& p) {
    const Value& v = heldValue(frame, frame.code->parsed->ast.literals, p);
    return convertValue(p.negated ? negated(v) : v, p.from, p.to);
}

void bindParameters(SqliteStatement& statement, Frame& frame,
                    const std::vector<PlanParameter>& parameters, const SqliteArguments* outer) {
    const std::vector<LiteralSlot>& literals = frame.code->parsed->ast.literals;
    int at = 0;
    for (const PlanParameter& p : parameters) {
        ++at;
        if (p.kind == PlanParameter::Outer || p.kind == PlanParameter::Apply) {
            if (p.apply)
                statement.bindPointer(at, p.apply, kApplyPlan);
            else
                statement.bind(at, (*outer)[p.index]);
            continue;
        }
        const Value& v = heldValue(frame, literals, p);
        // The type of this run's literal: only its kind is sure to be that of the plan's making.
        const SqlType& from = p.kind == PlanParameter::Literal ? literals[p.index].type : p.from;
        if (p.negated)
            statement.bind(at, convertValue(negated(v), from, p.to));
        else if (from == p.to || v.isNull() || (v.isText() && p.from == p.to))
            statement.bind(at, v);
        else
            statement.bind(at, convertValue(v, from, p.to));
    }
}

}  // namespace owb::tsql
