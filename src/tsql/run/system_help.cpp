#include "tsql/run/system_help.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

constexpr const char* kNone = "(n/a)";

SqlType text(int length) {
    return SqlType::text(SqlKind::NVarChar, length);
}

ResultSet answer(std::initializer_list<Column> columns) {
    ResultSet set;
    set.columns = columns;
    return set;
}

void addRow(ResultSet& set, std::initializer_list<Value> cells) {
    set.cells.insert(set.cells.end(), cells);
    ++set.rows;
}

Column name(const char* title) {
    return {title, text(128), false};
}
Column word(const char* title) {
    return {title, SqlType::text(SqlKind::VarChar, 35), true};
}
Column number(const char* title) {
    return {title, SqlType::of(SqlKind::Int), true};
}

const char* wordFor(ModuleKind kind) {
    switch (kind) {
        case ModuleKind::View:
            return "view";
        case ModuleKind::Procedure:
            return "stored procedure";
        case ModuleKind::Trigger:
            return "trigger";
        case ModuleKind::ScalarFunction:
            return "scalar function";
        case ModuleKind::InlineFunction:
            return "inline function";
        case ModuleKind::TableFunction:
            return "table function";
    }
    return "";
}

// In bytes, as the server counts them; -1 for (MAX).
int64_t bytesOf(const SqlType& t) {
    switch (t.kind) {
        case SqlKind::Bit:
        case SqlKind::TinyInt:
            return 1;
        case SqlKind::SmallInt:
            return 2;
        case SqlKind::Int:
            return 4;
        case SqlKind::Date:
            return 3;
        case SqlKind::Numeric:
            return t.precision <= 9 ? 5 : t.precision <= 19 ? 9 : t.precision <= 28 ? 13 : 17;
        case SqlKind::NChar:
        case SqlKind::NVarChar:
            return t.length == SqlType::kMax ? -1 : int64_t{t.length} * 2;
        case SqlKind::Char:
        case SqlKind::VarChar:
            return t.length;
        default:
            return 8;
    }
}

std::string precisionOf(const SqlType& t) {
    switch (t.kind) {
        case SqlKind::TinyInt:
            return "3";
        case SqlKind::SmallInt:
            return "5";
        case SqlKind::Int:
        case SqlKind::Date:
            return "10";
        case SqlKind::BigInt:
            return "19";
        case SqlKind::Float:
            return "53";
        case SqlKind::Numeric:
            return std::to_string(t.precision);
        default:
            return "";
    }
}

Value scaleOf(const SqlType& t) {
    if (t.kind == SqlKind::Float) return {};
    if (t.kind == SqlKind::Numeric) return Value(std::to_string(t.scale));
    return Value(precisionOf(t).empty() ? "" : "0");
}

Value collationOf(const SqlType& t) {
    return t.isText() ? Value("SQL_Latin1_General_CP1_CI_AS") : Value();
}

std::string joined(const std::vector<std::string>& names) {
    std::string out;
    for (const std::string& n : names) out += (out.empty() ? "" : ", ") + n;
    return out;
}

[[noreturn]] void unknownObject(const std::string& object, int line) {
    throw DbError(15009, 16, 1, line,
                  "The object '" + object +
                      "' does not exist in database 'main' or is invalid for this operation.");
}

}  // namespace

CatalogTablePtr SystemHelp::tableNamed(const std::string& text) const {
    const Name name = nameInText(text);
    return name.empty() ? nullptr : session_.catalog.findTable(name);
}

CatalogModulePtr SystemHelp::moduleNamed(const std::string& text) const {
    const Name name = nameInText(text);
    return name.empty() ? nullptr : session_.catalog.findModule(name);
}

void SystemHelp::call(Frame& frame, const ExecuteStatement& s, const std::string& procedure) {
    std::string object;
    if (!s.arguments.empty())
        object = plans_.evaluate(frame, *s.arguments[0].value, text(776)).toText();
    if (object.empty() && procedure != "sp_help")
        throw makeDbError(201, {procedure, procedure == "sp_helptext" ? "@objname" : "@tabname"},
                          s.line);
    if (procedure == "sp_helptext")
        helpText(object, s.line);
    else if (procedure == "sp_helptrigger")
        helpTrigger(object, s.line);
    else if (object.empty())
        helpAll();
    else
        help(object, s.line);
}

void SystemHelp::helpAll() {
    struct Entry {
        std::string type, name;
    };
    std::vector<Entry> all;
    for (const std::string& table : session_.catalog.tableNames()) {
        all.push_back({"user table", table});
        const CatalogTablePtr t = session_.catalog.findTable(table);
        for (const CatalogColumn& c : t->columns)
            if (!c.defaultName.empty()) all.push_back({"default (maybe cns)", c.defaultName});
        for (const CatalogKey& k : t->keys)
            if (k.kind != CatalogKey::Index)
                all.push_back(
                    {k.kind == CatalogKey::Primary ? "primary key cns" : "unique key cns", k.name});
        for (const CatalogCheck& c : t->checks) all.push_back({"check cns", c.name});
    }
    for (const CatalogModulePtr& m : session_.catalog.modules())
        all.push_back({wordFor(m->kind), m->name});
    std::sort(all.begin(), all.end(), [](const Entry& a, const Entry& b) {
        return a.type != b.type ? a.type > b.type : compareText(a.name, b.name) < 0;
    });
    ResultSet set = answer({name("Name"), name("Owner"), word("Object_type")});
    for (const Entry& e : all) addRow(set, {Value(e.name), Value("dbo"), Value(e.type)});
    session_.tell(std::move(set));
}

void SystemHelp::help(const std::string& object, int line) {
    const CatalogTablePtr table = tableNamed(object);
    const CatalogModulePtr module = table ? nullptr : moduleNamed(object);
    if (!table && !module) unknownObject(object, line);
    ResultSet set = answer({name("Name"),
                            name("Owner"),
                            word("Type"),
                            {"Created_datetime", SqlType::of(SqlKind::DateTime), true}});
    addRow(set, {Value(table ? table->name : module->name), Value("dbo"),
                 Value(table ? "user table" : wordFor(module->kind)),
                 session_.catalog.createdAt(table ? table->name : module->name)});
    session_.tell(std::move(set));
    if (table) {
        helpColumns(table->columns);
        ResultSet identity = answer(
            {name("Identity"), number("Seed"), number("Increment"), number("Not For Replication")});
        const int at = table->identityColumn();
        if (at < 0)
            addRow(identity, {Value("No identity column defined."), Value(), Value(), Value()});
        else
            addRow(identity, {Value(table->columns[at].name), Value(table->identitySeed),
                              Value(table->identityIncrement), Value(0)});
        session_.tell(std::move(identity));
        helpIndexes(*table);
        helpConstraints(*table, object);
    } else if (module->kind == ModuleKind::View) {
        helpColumns(viewColumns(*module));
    } else if (module->kind != ModuleKind::Trigger) {
        helpParameters(*module);
    }
}

void SystemHelp::helpColumns(const std::vector<CatalogColumn>& columns) {
    ResultSet set =
        answer({name("Column_name"), name("Type"), word("Computed"), number("Length"), word("Prec"),
                word("Scale"), word("Nullable"), word("TrimTrailingBlanks"),
                word("FixedLenNullInSource"), name("Collation")});
    for (const CatalogColumn& c : columns) {
        const bool bytes = c.type.isText() && !c.type.isUnicode();
        addRow(set, {Value(c.name), Value(c.type.name()), Value("no"), Value(bytesOf(c.type)),
                     Value(precisionOf(c.type)), scaleOf(c.type), Value(c.nullable ? "yes" : "no"),
                     Value(bytes ? "no" : kNone),
                     Value(!bytes       ? kNone
                           : c.nullable ? "yes"
                                        : "no"),
                     collationOf(c.type)});
    }
    session_.tell(std::move(set));
}

void SystemHelp::helpIndexes(const CatalogTable& table) {
    ResultSet set = answer({name("index_name"),
                            {"index_description", text(210), true},
                            {"index_keys", text(2078), true}});
    const std::string schema = table.temporary ? "temp" : "main";
    // An index bears the name of its table, a quote and its own name; see TableWriter.
    const std::string prefix = table.indexName("");
    SqliteStatement list = session_.sqlite.prepare(
        "SELECT substr(l.name, " + std::to_string(prefix.size() + 1) +
        "), l.\"unique\", (SELECT group_concat(name, ', ') FROM pragma_index_xinfo(l.name, '" +
        schema + "') WHERE key) FROM pragma_index_list(" + sqliteText(table.bareName()) + ", '" +
        schema + "') l WHERE l.origin = 'c' ORDER BY 1");
    const SqlType type = text(SqlType::kMax);
    while (session_.sqlite.step(list)) {
        const std::string index = list.value(0, type).toText();
        std::string description = "nonclustered";
        if (list.integer(1)) description += ", unique";
        for (const CatalogKey& k : table.keys) {
            if (foldName(k.name) != foldName(index)) continue;
            if (k.kind == CatalogKey::Primary) description = "clustered, unique, primary key";
            if (k.kind == CatalogKey::Unique) description += ", unique key";
        }
        addRow(set,
               {Value(index), Value(description + " located on PRIMARY"), list.value(2, type)});
    }
    if (set.rows)
        session_.tell(std::move(set));
    else
        session_.tell("The object '" + table.name +
                      "' does not have any indexes, or you do not have permissions.");
}

void SystemHelp::helpConstraints(const CatalogTable& table, const std::string& object) {
    ResultSet set = answer({word("constraint_type"),
                            name("constraint_name"),
                            word("delete_action"),
                            word("update_action"),
                            word("status_enabled"),
                            word("status_for_replication"),
                            {"constraint_keys", text(2078), true}});
    for (const CatalogCheck& c : table.checks)
        addRow(set, {Value("CHECK Table Level "), Value(c.name), Value(kNone), Value(kNone),
                     Value("Enabled"), Value("Is_For_Replication"), Value(c.source)});
    for (const CatalogColumn& c : table.columns)
        if (!c.defaultName.empty())
            addRow(set,
                   {Value("DEFAULT on column " + c.name), Value(c.defaultName), Value(kNone),
                    Value(kNone), Value(kNone), Value(kNone), Value("(" + c.defaultSource + ")")});
    for (const auto& [kind, title] : {std::pair{CatalogKey::Primary, "PRIMARY KEY (clustered)"},
                                      std::pair{CatalogKey::Unique, "UNIQUE (non-clustered)"}})
        for (const CatalogKey& k : table.keys)
            if (k.kind == kind)
                addRow(set, {Value(title), Value(k.name), Value(kNone), Value(kNone), Value(kNone),
                             Value(kNone), Value(joined(k.columns))});
    if (set.rows)
        session_.tell(std::move(set));
    else
        session_.tell("No constraints are defined on object '" + object +
                      "', or you do not have permissions.");
    session_.tell("No foreign keys reference table '" + object +
                  "', or you do not have permissions on referencing tables.");
}

void SystemHelp::helpParameters(CatalogModule& module) {
    const ModuleDefinition& definition = *session_.catalog.parsed(module).definition;
    ResultSet set = answer({name("Parameter_name"), name("Type"), number("Length"), word("Prec"),
                            word("Scale"), number("Param_order"), name("Collation")});
    const auto add = [&](const std::string& parameter, const SqlType& type, int64_t order) {
        addRow(set, {Value(parameter), Value(type.name()), Value(bytesOf(type)),
                     Value(precisionOf(type)), scaleOf(type), Value(order), collationOf(type)});
    };
    if (module.kind == ModuleKind::ScalarFunction) add("", definition.returns, 0);
    int64_t order = 0;
    for (const Parameter& p : definition.parameters) add(p.name, p.type, ++order);
    if (set.rows) session_.tell(std::move(set));
}

void SystemHelp::helpText(const std::string& object, int line) {
    const CatalogModulePtr module = moduleNamed(object);
    if (!module && tableNamed(object))
        throw DbError(15197, 16, 1, line, "There is no text for object '" + object + "'.");
    if (!module) unknownObject(object, line);
    ResultSet set = answer({{"Text", text(255), true}});
    for (size_t at = 0; at < module->source.size();) {
        const size_t end = std::min(module->source.find('\n', at), module->source.size() - 1) + 1;
        addRow(set, {Value(module->source.substr(at, end - at))});
        at = end;
    }
    session_.tell(std::move(set));
}

void SystemHelp::helpTrigger(const std::string& object, int line) {
    const CatalogTablePtr table = tableNamed(object);
    if (!table) unknownObject(object, line);
    ResultSet set = answer({name("trigger_name"), name("trigger_owner"), number("isupdate"),
                            number("isdelete"), number("isinsert"), number("isafter"),
                            number("isinsteadof"), name("trigger_schema")});
    for (const std::string& trigger : table->triggers) {
        const CatalogModulePtr m = session_.catalog.findModule(trigger);
        addRow(set, {Value(m->name), Value("dbo"), Value(int64_t{m->onUpdate}),
                     Value(int64_t{m->onDelete}), Value(int64_t{m->onInsert}), Value(1), Value(0),
                     Value("dbo")});
    }
    session_.tell(std::move(set));
}

std::vector<CatalogColumn> SystemHelp::viewColumns(const CatalogModule& view, size_t arguments) {
    std::string name;
    for (const char c : view.name) name += c == ']' ? "]]" : std::string(1, c);
    std::string call;
    for (size_t i = 0; i < arguments; ++i) call += i ? ",NULL" : "NULL";
    if (view.kind != ModuleKind::View) call = "(" + call + ")";
    Frame frame(compileBatch("SELECT * FROM [" + name + "]" + call));
    const auto& s = as<QueryStatement>(*frame.code->parsed->ast.statements[0]);
    const Plan& p =
        plans_.plan(frame, &s, [&](Planner& planner) { return planner.query(*s.query); });
    std::vector<CatalogColumn> columns;
    for (const Column& c : p.columns) {
        CatalogColumn column;
        column.name = c.name;
        column.type = c.type;
        column.nullable = c.nullable;
        columns.push_back(std::move(column));
    }
    return columns;
}

}  // namespace owb::tsql
