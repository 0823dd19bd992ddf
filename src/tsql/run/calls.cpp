#include "tsql/run/calls.h"

#include <algorithm>

#include "base/utf8.h"
#include "tsql/run/arguments.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

const SqlType kText = SqlType::text(SqlKind::NVarChar, SqlType::kMax);

}  // namespace

void Calls::execute(Frame& frame, const Statement& s) {
    const int before = transactions_.level();
    call(frame, s);
    if (transactions_.level() != before)
        throw makeDbError(266, {std::to_string(before), std::to_string(transactions_.level())});
}

void Calls::call(Frame& frame, const Statement& statement) {
    if (session_.functionDepth > 0) throw makeDbError(443, {"EXECUTE"}, statement.line);
    if (statement.kind == StatementKind::ExecuteText) {
        const Value v = plans_.evaluate(frame, *as<ValueStatement>(statement).value, kText);
        if (!v.isNull()) executeText(v.asText());
        return;
    }
    const auto& s = as<ExecuteStatement>(statement);
    CatalogModulePtr module = session_.catalog.findModule(s.procedure);
    if (module && module->kind == ModuleKind::Procedure) return callProcedure(frame, s, *module);
    if (!isSystemPlace(s.procedure) || !callSystemProcedure(frame, s))
        throw makeDbError(2812, {s.procedure.text()}, s.line);
}

void Calls::executeText(const std::string& text) {
    Frame callee(codes_.batch(text));
    if (callee.code->parsed->definition)
        modules_.define(callee);
    else
        runner_.runScope(callee);
}

// --- procedures ---

void Calls::callProcedure(Frame& frame, const ExecuteStatement& s, CatalogModule& module) {
    Frame callee = codes_.frameOf(module);
    const auto& parameters = callee.code->parsed->definition->parameters;
    const Outputs outputs = passArguments(frame, s, module.name, callee);
    callee.returned = Value(0);
    runner_.runScope(callee);
    for (const auto& [at, variable] : outputs) {
        const size_t target = frame.variable(variable, s.line);
        frame.variables[target] =
            convertValue(callee.variables[at], parameters[at].type, frame.typeOf(target));
    }
    if (!s.variable.empty()) frame.variables[frame.variable(s.variable, s.line)] = callee.returned;
}

Calls::Outputs Calls::passArguments(Frame& frame, const ExecuteStatement& s,
                                    const std::string& procedure, Frame& callee) {
    const auto& parameters = callee.code->parsed->definition->parameters;
    std::vector<std::string> names;
    for (const Parameter& p : parameters) names.push_back(p.name);
    const std::vector<size_t> places = argumentPlaces(s, procedure, names);
    std::vector<char> given(parameters.size(), 0);
    Outputs outputs;
    for (size_t i = 0; i < places.size(); ++i) {
        const Argument& a = s.arguments[i];
        const size_t at = places[i];
        if (a.value->kind == ExprKind::Default) continue;
        given[at] = 1;
        passOne(frame, a, parameters[at], callee.variables[at], s.line);
        if (a.output) outputs.emplace_back(at, a.value->name.last());
    }
    for (size_t i = 0; i < parameters.size(); ++i) {
        if (given[i]) continue;
        if (!parameters[i].defaultValue)
            throw makeDbError(201, {procedure, parameters[i].name}, s.line);
        callee.variables[i] =
            plans_.evaluate(callee, *parameters[i].defaultValue, parameters[i].type);
    }
    return outputs;
}

void Calls::passOne(Frame& frame, const Argument& a, const Parameter& p, Value& value, int line) {
    try {
        value = plans_.evaluate(frame, *a.value, p.type);
    } catch (const DbError& e) {
        if (e.number != 245 && e.number != 241) throw;
        throw makeDbError(8114, {"varchar", p.type.name()}, line);
    }
    if (!a.output) return;
    if (!p.output) throw makeDbError(8162, {p.name}, line);
    if (a.value->kind != ExprKind::Variable)
        throw DbError(
            179, 15, 1, line,
            "Cannot use the OUTPUT option when passing a constant to a stored procedure.");
}

// --- system procedures ---

// They answer in every database; of those named, only this one and master are there.
bool Calls::isSystemPlace(const Name& name) const {
    Name local = name;
    if (name.parts.size() == 3 && sameName(name.parts[0], "master"))
        local.parts.erase(local.parts.begin());
    const std::string schema = local.qualifier();
    return session_.catalog.isDatabaseHere(local) &&
           (schema.empty() || sameName(schema, "dbo") || sameName(schema, "sys"));
}

// False when there is none of that name.
bool Calls::callSystemProcedure(Frame& frame, const ExecuteStatement& s) {
    const std::string name = lowerCase(s.procedure.last());
    if (name == "sp_executesql") return executeSql(frame, s), true;
    if (name == "sp_getapplock" || name == "sp_releaseapplock")
        return locks_.call(frame, s, name), true;
    if (name == "sp_help" || name == "sp_helptext" || name == "sp_helptrigger")
        return help_.call(frame, s, name), true;
    for (const char* known : {"sp_rename", "sp_columns", "sp_tables", "sp_addmessage", "sp_who",
                              "sp_lock", "sp_spaceused", "sp_depends", "sp_settriggerorder"})
        if (name == known)
            throw makeDbError(15281, {std::string("The procedure ") + known}, s.line);
    return false;
}

// sp_executesql N'text', N'@a int, @b int OUTPUT', value, @x OUTPUT | @a = value ...
void Calls::executeSql(Frame& frame, const ExecuteStatement& s) {
    if (s.arguments.empty()) throw makeDbError(201, {"sp_executesql", "@statement"}, s.line);
    const std::string sql = plans_.evaluate(frame, *s.arguments[0].value, kText).toText();
    if (s.arguments.size() == 1) return executeText(sql);
    const std::string declarations = plans_.evaluate(frame, *s.arguments[1].value, kText).toText();
    // The declarations read as the parameters of a procedure around the text.
    Frame callee(compileBatch("CREATE PROCEDURE sp_executesql " + declarations + "\nAS\n" + sql));
    const auto& parameters = callee.code->parsed->definition->parameters;
    Outputs outputs;
    for (size_t i = 2; i < s.arguments.size(); ++i) {
        const Argument& a = s.arguments[i];
        size_t at = i - 2;
        if (!a.name.empty()) {
            at = 0;
            while (at < parameters.size() && foldName(parameters[at].name) != foldName(a.name))
                ++at;
        }
        if (at >= parameters.size()) throw makeDbError(8144, {"sp_executesql"}, s.line);
        callee.variables[at] = plans_.evaluate(frame, *a.value, parameters[at].type);
        if (a.output && a.value->kind == ExprKind::Variable)
            outputs.emplace_back(at, a.value->name.last());
    }
    runner_.runScope(callee);
    for (const auto& [at, variable] : outputs)
        frame.variables[frame.variable(variable, s.line)] = callee.variables[at];
}

}  // namespace owb::tsql
