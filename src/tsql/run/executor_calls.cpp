// Calls: procedures, functions, EXEC of a text, sp_executesql and the system procedures.
#include <algorithm>

#include "base/utf8.h"
#include "tsql/parse/parser.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

constexpr int kDeepestCall = 32;

class CallDepth {
  public:
    explicit CallDepth(int& depth) : depth_(depth) {
        if (depth_ >= kDeepestCall) throw makeDbError(217);
        ++depth_;
    }
    ~CallDepth() { --depth_; }

  private:
    int& depth_;
};

}  // namespace

// System procedures answer in every database; of those named, only this one and master are there.
bool Executor::isSystemPlace(const Name& name) const {
    Name local = name;
    if (name.parts.size() == 3 && sameName(name.parts[0], "master"))
        local.parts.erase(local.parts.begin());
    const std::string schema = local.qualifier();
    return catalog_.isDatabaseHere(local) &&
           (schema.empty() || sameName(schema, "dbo") || sameName(schema, "sys"));
}

const std::shared_ptr<CompiledBatch>& Executor::moduleCode(CatalogModule& module) {
    catalog_.parsed(module);
    std::shared_ptr<CompiledBatch>& code = moduleCodes_[module.name];
    if (!code || code->parsed != module.parsed)
        code = std::make_shared<CompiledBatch>(module.parsed);
    return code;
}

Frame Executor::moduleFrame(CatalogModule& module) {
    Frame frame;
    frame.code = moduleCode(module);
    frame.variables.resize(frame.code->parsed->variables.size());
    frame.procedure = module.name;
    return frame;
}

// Runs a module's body, or a text's statements, as a scope of its own: temporary tables made in
// it go with it, and an error of scope reach ends it and no more.
void Executor::runScope(Frame& callee) {
    CallDepth depth(depth_);
    Frame* const outer = frame_;
    frame_ = &callee;
    catalog_.openScope();
    const Options options = options_;
    const Value identity = std::move(scopeIdentity_);
    scopeIdentity_ = {};
    const auto& statements = callee.code->parsed->body();
    ++callee.code->running;
    const auto leave = [&] {
        --callee.code->running;
        options_ = options;
        scopeIdentity_ = identity;
        catalog_.closeScope();
        frame_ = outer;
    };
    try {
        runStatements(callee, statements);
    } catch (DbError& e) {
        if (e.procedure.empty()) e.procedure = callee.procedure;
        const bool here = tryDepth_ == 0 && reach(e) == ErrorReach::Scope;
        e.left = true;
        if (here) noteError(e);
        leave();
        if (!here) throw;
        return;
    }
    leave();
}

void Executor::executeText(const std::string& text) {
    std::shared_ptr<CompiledBatch> code = findOrCompile(text);
    Frame callee;
    callee.code = code;
    callee.variables.resize(code->parsed->variables.size());
    if (code->parsed->definition) {
        defineModule(callee);
        return;
    }
    runScope(callee);
}

void Executor::execute(Frame& frame, const Statement& s) {
    const int transactions = transactions_;
    call(frame, s);
    if (transactions_ != transactions)
        throw makeDbError(266, {std::to_string(transactions), std::to_string(transactions_)});
}

void Executor::call(Frame& frame, const Statement& s) {
    if (functionDepth_ > 0) throw makeDbError(443, {"EXECUTE"}, s.line);
    if (s.kind == StatementKind::ExecuteText) {
        const SqlType text = SqlType::text(SqlKind::NVarChar, SqlType::kMax);
        const Value v = evaluate(frame, *s.value, &text);
        if (!v.isNull()) executeText(v.asText());
        return;
    }
    CatalogModulePtr module = catalog_.findModule(s.target);
    if (!module || module->kind != ModuleKind::Procedure) {
        const bool everywhere = isSystemPlace(s.target);
        if (everywhere && systemProcedure(frame, s, lowerCase(s.target.last()))) return;
        for (const char* known : {"sp_rename", "sp_columns", "sp_tables", "sp_addmessage", "sp_who",
                                  "sp_lock", "sp_spaceused", "sp_depends", "sp_settriggerorder"})
            if (everywhere && equalsIgnoreCaseAscii(s.target.last(), known))
                throw makeDbError(15281, {std::string("The procedure ") + known}, s.line);
        throw makeDbError(2812, {s.target.text()}, s.line);
    }
    Frame callee = moduleFrame(*module);
    const std::vector<Parameter>& parameters = callee.code->parsed->definition->parameters;
    std::vector<char> given(parameters.size(), 0);
    std::vector<std::pair<size_t, std::string>> outputs;  // parameter -> caller's variable
    std::vector<std::string> names;
    for (const Parameter& p : parameters) names.push_back(p.name);
    const std::vector<size_t> places = argumentPlaces(s, module->name, names);
    for (size_t i = 0; i < places.size(); ++i) {
        const Argument& a = s.arguments[i];
        const size_t at = places[i];
        const Parameter& p = parameters[at];
        if (a.value->kind == ExprKind::Default) continue;
        given[at] = 1;
        try {
            callee.variables[at] = evaluate(frame, *a.value, &p.type);
        } catch (const DbError& e) {
            // A bad argument is told as such.
            if (e.number != 245 && e.number != 241) throw;
            throw makeDbError(8114, {"varchar", p.type.name()}, s.line);
        }
        if (a.output) {
            if (!p.output) throw makeDbError(8162, {p.name}, s.line);
            if (a.value->kind != ExprKind::Variable)
                throw DbError(179, 15, 1, s.line,
                              "Cannot use the OUTPUT option when passing a constant to a stored "
                              "procedure.");
            outputs.emplace_back(at, a.value->name.last());
        }
    }
    for (size_t i = 0; i < parameters.size(); ++i) {
        if (given[i]) continue;
        if (!parameters[i].defaultValue)
            throw makeDbError(201, {module->name, parameters[i].name}, s.line);
        callee.variables[i] = evaluate(callee, *parameters[i].defaultValue, &parameters[i].type);
    }
    callee.returned = Value(0);
    runScope(callee);
    for (const auto& [at, variable] : outputs) {
        const int target = frame.code->parsed->findVariable(variable);
        if (target < 0) throw makeDbError(137, {variable}, s.line);
        frame.variables[target] = convertValue(callee.variables[at], parameters[at].type,
                                               frame.code->parsed->variables[target].type);
    }
    if (!s.variable.empty()) assignVariable(frame, s.variable, callee.returned, s.line);
}

// Which of the parameters each argument is for.
std::vector<size_t> Executor::argumentPlaces(const Statement& s, const std::string& procedure,
                                             const std::vector<std::string>& names) const {
    if (s.arguments.size() > names.size())
        throw makeDbError(names.empty() ? 8146 : 8144, {procedure}, s.line);
    std::vector<size_t> places;
    bool named = false;
    for (const Argument& a : s.arguments) {
        size_t at = places.size();
        if (named && a.name.empty()) throw makeDbError(119, {std::to_string(at + 1)}, s.line);
        if (!a.name.empty()) {
            named = true;
            at = 0;
            while (at < names.size() && foldName(names[at]) != foldName(a.name)) ++at;
            if (at == names.size()) throw makeDbError(8145, {a.name, procedure}, s.line);
        }
        places.push_back(at);
    }
    return places;
}

// sp_executesql N'text', N'@a int, @b int OUTPUT', value, @x OUTPUT | @a = value ...
void Executor::executeSql(Frame& frame, const Statement& s) {
    const SqlType text = SqlType::text(SqlKind::NVarChar, SqlType::kMax);
    if (s.arguments.empty()) throw makeDbError(201, {"sp_executesql", "@statement"}, s.line);
    const std::string sql = evaluate(frame, *s.arguments[0].value, &text).toText();
    if (s.arguments.size() == 1) return executeText(sql);
    const std::string declarations = evaluate(frame, *s.arguments[1].value, &text).toText();
    // The declarations read as the parameters of a procedure around the text.
    auto code = compileBatch("CREATE PROCEDURE sp_executesql " + declarations + "\nAS\n" + sql);
    Frame callee;
    callee.code = code;
    callee.variables.resize(code->parsed->variables.size());
    const std::vector<Parameter>& parameters = code->parsed->definition->parameters;
    std::vector<std::pair<size_t, std::string>> outputs;
    for (size_t i = 2; i < s.arguments.size(); ++i) {
        const Argument& a = s.arguments[i];
        size_t at = i - 2;
        if (!a.name.empty()) {
            at = 0;
            while (at < parameters.size() && foldName(parameters[at].name) != foldName(a.name))
                ++at;
        }
        if (at >= parameters.size()) throw makeDbError(8144, {"sp_executesql"}, s.line);
        callee.variables[at] = evaluate(frame, *a.value, &parameters[at].type);
        if (a.output && a.value->kind == ExprKind::Variable)
            outputs.emplace_back(at, a.value->name.last());
    }
    runScope(callee);
    for (const auto& [at, variable] : outputs)
        assignVariable(frame, variable, callee.variables[at], s.line);
}

// --- scalar functions, called by SQLite in the middle of a statement ---

Value Executor::callFunction(int id, SqliteArguments arguments) {
    FunctionSlot& slot = functions_[id];
    if (slot.version != catalog_.version()) {
        slot.module = catalog_.findModule(slot.name);
        slot.code = slot.module ? moduleCode(*slot.module) : nullptr;
        slot.version = catalog_.version();
    }
    if (!slot.module) throw makeDbError(4121, {"dbo", slot.name});

    // The same arguments give the same value within one statement.
    std::string key(reinterpret_cast<const char*>(&id), sizeof id);
    for (int i = 0; i < arguments.count(); ++i) {
        const SqliteValue argument = arguments[i];
        const SqliteValue::Kind kind = argument.kind();
        key += static_cast<char>(kind);
        if (kind == SqliteValue::Integer) {
            const int64_t v = argument.integer();
            key.append(reinterpret_cast<const char*>(&v), sizeof v);
        } else if (kind == SqliteValue::Real) {
            const double v = argument.real();
            key.append(reinterpret_cast<const char*>(&v), sizeof v);
        } else if (kind != SqliteValue::Null) {
            const std::string_view text = argument.text();
            const auto length = static_cast<uint32_t>(text.size());
            key.append(reinterpret_cast<const char*>(&length), sizeof length);
            key += text;
        }
    }
    const auto known = memo_.find(key);
    if (known != memo_.end()) return known->second;

    CallDepth depth(depth_);
    Frame frame;
    frame.code = slot.code;
    const ModuleDefinition& definition = *frame.code->parsed->definition;
    const std::vector<Parameter>& parameters = definition.parameters;
    frame.variables.resize(frame.code->parsed->variables.size());
    frame.procedure = slot.module->name;
    frame.inFunction = true;
    for (int i = 0; i < arguments.count(); ++i)
        frame.variables[i] = arguments[i].as(parameters[i].type);
    Frame* const outer = frame_;
    const int64_t rows = rowCount_;
    const int error = lastError_;
    frame_ = &frame;
    ++functionDepth_;
    try {
        runStatements(frame, definition.body);
    } catch (...) {
        --functionDepth_;
        frame_ = outer;
        throw;
    }
    --functionDepth_;
    frame_ = outer;
    rowCount_ = rows;
    lastError_ = error;
    if (memo_.size() > 200000) memo_ = {};
    memo_[std::move(key)] = frame.returned;
    return frame.returned;
}

// --- questions about objects ---

Value Executor::objectId(const std::string& name, const std::string& kind) {
    const Name written = nameInText(name);
    if (written.empty() || written.parts.size() > 3 || !catalog_.isHere(written)) return {};
    const std::string& object = written.last();
    const std::string wanted = upperCase(trim(kind));
    std::string found;
    if (catalog_.findTable(object)) {
        found = "U";
    } else if (CatalogModulePtr m = catalog_.findModule(object)) {
        found = m->kind == ModuleKind::View             ? "V"
                : m->kind == ModuleKind::Procedure      ? "P"
                : m->kind == ModuleKind::Trigger        ? "TR"
                : m->kind == ModuleKind::ScalarFunction ? "FN"
                : m->kind == ModuleKind::InlineFunction ? "IF"
                                                        : "TF";
    }
    if (found.empty() || (!wanted.empty() && wanted != found)) return {};
    return Value(static_cast<int64_t>(std::hash<std::string>{}(foldName(object)) & 0x7FFFFFFF));
}

Value Executor::columnLength(const std::string& table, const std::string& column) {
    CatalogTablePtr t = tableNamed(table);
    const int at = t ? t->findColumn(column) : -1;
    if (at < 0) return {};
    const SqlType& type = t->columns[at].type;
    switch (type.kind) {
        case SqlKind::Bit:
        case SqlKind::TinyInt:
            return Value(1);
        case SqlKind::SmallInt:
            return Value(2);
        case SqlKind::Int:
        case SqlKind::SmallMoney:
        case SqlKind::Real:
        case SqlKind::SmallDateTime:
            return Value(4);
        case SqlKind::Time:
            return Value(type.scale <= 2 ? 3 : type.scale <= 4 ? 4 : 5);
        case SqlKind::DateTime2:
            return Value(type.scale <= 2 ? 6 : type.scale <= 4 ? 7 : 8);
        case SqlKind::Date:
            return Value(3);
        case SqlKind::Numeric:
            return Value(type.precision <= 9    ? 5
                         : type.precision <= 19 ? 9
                         : type.precision <= 28 ? 13
                                                : 17);
        default:
            break;
    }
    if (type.isText()) return Value(type.length * (type.isUnicode() && type.length > 0 ? 2 : 1));
    return Value(8);
}

}  // namespace owb::tsql
