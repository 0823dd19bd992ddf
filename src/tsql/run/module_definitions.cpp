#include "tsql/run/module_definitions.h"

#include "tsql/run/atomic_steps.h"
#include "tsql/run/table_description.h"

namespace owb::tsql {

namespace {

// A function changes nothing but its own variables.
void forbidWrites(const std::vector<StatementPtr>& statements) {
    const auto refuse = [](const char* verb, const Statement& s) {
        throw makeDbError(443, {verb}, s.line);
    };
    for (const StatementPtr& s : statements) {
        switch (s->kind) {
            case StatementKind::Insert:
            case StatementKind::Update:
            case StatementKind::Delete:
                if (as<WriteStatement>(*s).target.last()[0] != '@')
                    refuse(s->kind == StatementKind::Insert   ? "INSERT"
                           : s->kind == StatementKind::Update ? "UPDATE"
                                                              : "DELETE",
                           *s);
                if (s->kind == StatementKind::Insert)
                    if (const StatementPtr& call = as<InsertStatement>(*s).executed;
                        call && call->kind == StatementKind::ExecuteText)
                        refuse("EXECUTE STRING", *call);
                break;
            case StatementKind::ExecuteText:
                refuse("EXECUTE STRING", *s);
                break;
            case StatementKind::CreateTable:
                refuse("CREATE TABLE", *s);
                break;
            case StatementKind::Drop:
                refuse("DROP", *s);
                break;
            default:
                break;
        }
        if (const CompoundStatement* c = compound(*s)) {
            forbidWrites(c->body);
            forbidWrites(c->otherwise);
        }
    }
}

}  // namespace

void ModuleDefinitions::requireName(const ModuleStatement& s, const CatalogModulePtr& old) const {
    const Name& name = s.module.name;
    if (s.alter && !old) throw makeDbError(208, {name.text()}, s.line);
    if ((old && !s.alter && !s.orAlter) || session_.catalog.findTable(name.last()))
        throw makeDbError(2714, {name.last()}, s.line);
}

// The columns that each "*" of a view or inline function stands for from now on; its own columns
// must have names, each another.
std::string ModuleDefinitions::starsOf(Frame& frame, const ModuleStatement& s) const {
    const ModuleDefinition& m = s.module;
    if (!m.query) return "";
    BindContext context = session_.bindContext(frame);
    Binder binder(context);
    std::vector<std::vector<std::string>> recorded;
    binder.recordStars = &recorded;
    const auto q = binder.bindSubquery(*m.query);
    std::vector<std::string> names;
    for (size_t i = 0; i < q->columns.size(); ++i) {
        const std::string& column =
            i < m.viewColumns.size() ? m.viewColumns[i] : q->columns[i].name;
        if (column.empty()) throw makeDbError(4511, {std::to_string(i + 1)}, s.line);
        for (const std::string& before : names)
            if (sameName(before, column)) throw makeDbError(4506, {column, m.name.last()}, s.line);
        names.push_back(column);
    }
    std::string stars;
    for (size_t i = 0; i < recorded.size(); ++i)
        stars += (i ? "\x1e" : "") + joined(recorded[i], '\x1f');
    return stars;
}

int ModuleDefinitions::eventsOf(const ModuleStatement& s) const {
    const ModuleDefinition& m = s.module;
    if (m.kind != ModuleKind::Trigger) return 0;
    if (!session_.catalog.findTable(m.table))
        throw DbError(
            8197, 16, 4, s.line,
            "The object '" + m.table.text() + "' does not exist or is invalid for this operation.");
    return (m.onInsert ? 1 : 0) | (m.onUpdate ? 2 : 0) | (m.onDelete ? 4 : 0);
}

// Tables may come later; a variable that is not declared never will.
void ModuleDefinitions::checkBody(const ModuleDefinition& m) {
    if (m.kind == ModuleKind::ScalarFunction || m.kind == ModuleKind::TableFunction)
        forbidWrites(m.body);
    if (m.kind != ModuleKind::Procedure && m.kind != ModuleKind::ScalarFunction) return;
    Frame body = codes_.frameOf(*session_.catalog.findModule(m.name.last()));
    try {
        check_.check(body, body.code->parsed->body());
    } catch (const DbError& e) {
        if (e.number == 137) throw;
    }
    body.code->plans.clear();
}

void ModuleDefinitions::define(Frame& frame) {
    const auto& s = as<ModuleStatement>(*frame.code->parsed->ast.statements[0]);
    const ModuleDefinition& m = s.module;
    const std::string& name = m.name.last();
    AtomicSteps steps(session_.sqlite);
    watch_.look();
    if (m.name.parts.size() > 2) throw makeDbError(166, {s.alter ? "ALTER" : "CREATE"}, s.line);
    if (!s.alter) session_.catalog.requirePlace(m.name, s.line);
    const CatalogModulePtr old = session_.catalog.findModule(m.name);
    requireName(s, old);
    const std::string stars = starsOf(frame, s);
    const int events = eventsOf(s);
    SqliteStatement insert = session_.sqlite.prepare(
        "INSERT OR REPLACE INTO tsql_module VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    insert.bind(1, Value(old ? old->name : name));
    insert.bind(2, Value(static_cast<int>(m.kind)));
    insert.bind(3, Value(s.source));
    insert.bind(4, Value(stars));
    insert.bind(5, Value(m.table.empty() ? std::string() : m.table.last()));
    insert.bind(6, Value(events));
    session_.sqlite.step(insert);
    insert = {};
    if (!old) session_.catalog.noteCreated(name, session_.statementTime());
    session_.catalog.modulesChanged(name);
    checkBody(m);
    steps.commit();
}

}  // namespace owb::tsql
