// How a function's name finds its binding; choice between values, and what asks the session.
#include "tsql/bind/function_call.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

const SqlType kSysName = SqlType::text(SqlKind::NVarChar, 128);

// --- NULL handling and choice ---

BoundPtr makeIsNull(FunctionCall& c) {
    BoundPtr a = c.take(0), b = c.take(1);
    if (a->kind == BoundKind::Null && a->type.kind == SqlKind::Null)
        a = c.binder.convert(std::move(a), b->type.kind == SqlKind::Null ? kInt : b->type);
    const bool nullable = b->nullable;
    // An untyped literal's length must not cut the replacement.
    SqlType type = a->type;
    if (type.isText() && a->kind == BoundKind::Literal) type.length = 8000;
    b = c.binder.convert(std::move(b), type);
    type = a->type;
    BoundPtr r = c.op("ifnull($0,$1)", type, list(std::move(a), std::move(b)));
    r->nullable = nullable;
    return r;
}

BoundPtr makeCoalesce(FunctionCall& c) {
    std::vector<BoundPtr*> all;
    bool nullable = true;
    for (BoundPtr& a : c.args) {
        all.push_back(&a);
        nullable &= a->nullable;
    }
    if (std::all_of(all.begin(), all.end(),
                    [](BoundPtr* a) { return (*a)->type.kind == SqlKind::Null; }))
        throw makeDbError(4127, {}, c.expr.line);
    const SqlType type = c.binder.unify(all);
    BoundPtr r = c.op(c.args.size() == 1 ? "$0" : "coalesce($*)", type, std::move(c.args));
    r->nullable = nullable;
    return r;
}

BoundPtr makeNullIf(FunctionCall& c) {
    const SqlType type = c.args[0]->type;
    if (type.kind == SqlKind::Null) throw makeDbError(4151, {}, c.expr.line);
    BoundPtr a = c.take(0);
    BoundPtr same = c.binder.compare("=", c.binder.bindValue(*c.expr.args[0]), c.take(1));
    return c.op("(CASE WHEN $0 THEN NULL ELSE $1 END)", type, list(std::move(same), std::move(a)));
}

BoundPtr makeIif(FunctionCall& c) {
    BoundPtr condition = c.binder.bindCondition(*c.expr.args[0]);
    BoundPtr a = c.binder.bindValue(*c.expr.args[1]), b = c.binder.bindValue(*c.expr.args[2]);
    if (a->type.kind == SqlKind::Null && b->type.kind == SqlKind::Null)
        throw makeDbError(8133, {}, c.expr.line);
    const SqlType type = c.binder.unify({&a, &b});
    return c.op("(CASE WHEN $0 THEN $1 ELSE $2 END)", type,
                list(std::move(condition), std::move(a), std::move(b)));
}

BoundPtr makeChoose(FunctionCall& c) {
    std::vector<BoundPtr*> choices;
    for (size_t i = 1; i < c.args.size(); ++i) choices.push_back(&c.args[i]);
    const SqlType type = c.binder.unify(choices);
    std::string pattern = "(CASE $0";
    for (size_t i = 1; i < c.args.size(); ++i)
        pattern += " WHEN " + std::to_string(i) + " THEN $" + std::to_string(i) + ";";
    c.args[0] = c.take(0, kInt);
    return c.op(pattern + " END)", type, std::move(c.args));
}

// --- the session and the catalog ---

BoundPtr makeSession(FunctionCall& c) {
    SqlType type = kSysName;
    if (c.name == "DB_ID") type = SqlType::of(SqlKind::SmallInt);
    if (c.name == "SCOPE_IDENTITY") type = SqlType::numeric(38, 0);
    if (c.name == "ERROR_NUMBER" || c.name == "ERROR_SEVERITY" || c.name == "ERROR_STATE" ||
        c.name == "ERROR_LINE" || c.name == "XACT_STATE")
        type = kInt;
    if (c.name == "ERROR_MESSAGE") type = SqlType::text(SqlKind::NVarChar, 4000);
    return c.op("t_system('" + c.name + "')", type, {});
}

BoundPtr makeObjectId(FunctionCall& c) {
    if (c.args.size() == 2) return c.op("t_objectid($0,$1)", kInt, list(c.text(0), c.text(1)));
    return c.op("t_objectid($0,NULL)", kInt, list(c.text(0)));
}

BoundPtr makeObjectName(FunctionCall& c) {
    return c.op("(SELECT name FROM t_sys_objects WHERE object_id = $0)", kSysName,
                list(c.take(0, kInt)));
}

BoundPtr makeColName(FunctionCall& c) {
    return c.op("(SELECT name FROM t_sys_columns WHERE object_id = $0 AND column_id = $1)",
                kSysName, list(c.take(0, kInt), c.take(1, kInt)));
}

BoundPtr makeColLength(FunctionCall& c) {
    return c.op("t_collength($0,$1)", SqlType::of(SqlKind::SmallInt), list(c.text(0), c.text(1)));
}

BoundPtr makeIdentCurrent(FunctionCall& c) {
    return c.op("t_identcurrent($0)", SqlType::numeric(38, 0), list(c.text(0)));
}

BoundPtr makeAppLockMode(FunctionCall& c) {
    return c.op("t_applock($0,$1,NULL,$2)", SqlType::text(SqlKind::NVarChar, 32),
                list(c.text(0), c.text(1), c.text(2)));
}

BoundPtr makeAppLockTest(FunctionCall& c) {
    return c.op("t_applock($0,$1,ifnull($2,''),$3)", SqlType::of(SqlKind::SmallInt),
                list(c.text(0), c.text(1), c.text(2), c.text(3)));
}

BoundPtr makeNewId(FunctionCall& c) {
    return c.op("t_newid()", SqlType::text(SqlKind::VarChar, 36), {});
}

const BuiltinFunctions& builtins() {
    static const BuiltinFunctions table = [] {
        BuiltinFunctions t = {
            {"ISNULL", {2, 2, makeIsNull}},
            {"COALESCE", {1, 30, makeCoalesce}},
            {"NULLIF", {2, 2, makeNullIf}},
            {"IIF", {3, 3, makeIif, true}},
            {"CHOOSE", {2, 255, makeChoose}},
            {"HOST_NAME", {0, 0, makeSession}},
            {"DB_NAME", {0, 0, makeSession}},
            {"DB_ID", {0, 0, makeSession}},
            {"APP_NAME", {0, 0, makeSession}},
            {"USER_NAME", {0, 0, makeSession}},
            {"SUSER_SNAME", {0, 0, makeSession}},
            {"SUSER_NAME", {0, 0, makeSession}},
            {"SYSTEM_USER", {0, 0, makeSession}},
            {"CURRENT_USER", {0, 0, makeSession}},
            {"SCOPE_IDENTITY", {0, 0, makeSession}},
            {"ERROR_NUMBER", {0, 0, makeSession}},
            {"ERROR_MESSAGE", {0, 0, makeSession}},
            {"ERROR_SEVERITY", {0, 0, makeSession}},
            {"ERROR_STATE", {0, 0, makeSession}},
            {"ERROR_LINE", {0, 0, makeSession}},
            {"ERROR_PROCEDURE", {0, 0, makeSession}},
            {"XACT_STATE", {0, 0, makeSession}},
            {"OBJECT_ID", {1, 2, makeObjectId}},
            {"OBJECT_NAME", {1, 2, makeObjectName}},
            {"COL_NAME", {2, 2, makeColName}},
            {"COL_LENGTH", {2, 2, makeColLength}},
            {"IDENT_CURRENT", {1, 1, makeIdentCurrent}},
            {"APPLOCK_MODE", {3, 3, makeAppLockMode}},
            {"APPLOCK_TEST", {4, 4, makeAppLockTest}},
            {"NEWID", {0, 0, makeNewId}},
        };
        addTextBuiltins(t);
        addNumberBuiltins(t);
        addDateBuiltins(t);
        return t;
    }();
    return table;
}

}  // namespace

void FunctionCall::refuse(size_t i) const {
    throw makeDbError(8116, {args[i]->type.name(), std::to_string(i + 1), lowerCase(name)},
                      expr.line);
}

BoundPtr bindBuiltin(Binder& binder, const Expr& call, const std::string& name) {
    const auto found = builtins().find(name);
    if (found == builtins().end()) return nullptr;
    const BuiltinFunction& b = found->second;
    const size_t n = call.args.size();
    if (n < b.minimum || n > b.maximum) {
        if (b.minimum == b.maximum)
            throw makeDbError(174, {lowerCase(name), std::to_string(b.minimum)}, call.line);
        throw makeDbError(189,
                          {lowerCase(name), std::to_string(b.minimum), std::to_string(b.maximum)},
                          call.line);
    }
    FunctionCall c{binder, call, name, {}};
    if (!b.lazy)
        for (const ExprPtr& a : call.args) c.args.push_back(binder.bindValue(*a));
    return b.make(c);
}

// --- functions that are no plain built-ins ---

BoundPtr Binder::bindFunction(const Expr& e) {
    const std::string name = upperCase(e.name.last());
    const bool qualified = e.name.parts.size() > 1;
    if (!qualified) {
        if (name == "UPDATE" && e.args.size() == 1 && e.args[0]->kind == ExprKind::Column) {
            const std::string asked = "UPDATED:" + foldName(e.args[0]->name.last());
            BoundPtr p = verbatim("t_system(" + sqliteText(asked) + ")", kBit);
            p->predicate = true;
            return p;
        }
        if (e.over) return bindWindow(e, name);
        if (isWindowName(name)) throw makeDbError(10753, {name}, e.line);
        if (isAggregateName(name)) return bindAggregate(e, name);
        // A branch that may never run must not fail beforehand.
        const bool choice = name == "ISNULL" || name == "COALESCE" || name == "IIF" ||
                            name == "CHOOSE" || name == "NULLIF";
        if (choice) ++conditional_;
        BoundPtr b;
        try {
            b = bindBuiltin(*this, e, name);
        } catch (...) {
            if (choice) --conditional_;
            throw;
        }
        if (choice) --conditional_;
        if (b) return b;
    }
    return bindUserFunction(e);
}

BoundPtr Binder::bindUserFunction(const Expr& e) {
    CatalogModulePtr module = context_.catalog.findModule(e.name);
    if (!module || module->kind != ModuleKind::ScalarFunction || e.name.parts.size() < 2) {
        if (e.name.parts.size() < 2) throw makeDbError(195, {e.name.last()}, e.line);
        throw makeDbError(4121, {e.name.parts[0], e.name.text()}, e.line);
    }
    dependencies_.push_back({module->name, true, module->signature});
    const ModuleDefinition& definition = *context_.catalog.parsed(*module).definition;
    if (e.args.size() > definition.parameters.size())
        throw makeDbError(8144, {e.name.text()}, e.line);
    if (e.args.size() < definition.parameters.size())
        throw DbError(313, 16, 3, e.line,
                      "An insufficient number of arguments were supplied for the procedure or "
                      "function " +
                          e.name.text() + ".");
    std::string pattern = "t_udf(" + std::to_string(context_.functionId(module->name));
    Args args;
    for (size_t i = 0; i < e.args.size(); ++i) {
        const Parameter& p = definition.parameters[i];
        BoundPtr value;
        if (e.args[i]->kind == ExprKind::Default) {
            if (!p.defaultValue) throw makeDbError(201, {e.name.last(), p.name}, e.line);
            value = defaultArgument(*module, p);
        } else {
            value = bindValue(*e.args[i]);
        }
        pattern += ",$" + std::to_string(i) + ";";
        args.push_back(convert(std::move(value), p.type));
    }
    BoundPtr r = op(pattern + ")", definition.returns, std::move(args));
    r->userFunction = true;
    return r;
}

}  // namespace owb::tsql
