// Each view fills its rows from the catalog when it is read.
#include "tsql/catalog/system_views.h"

#include <cstring>
#include <functional>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

struct Source {
    Catalog& catalog;
    std::function<bool()> inTransaction;
};

using Row = std::vector<Value>;
using Rows = std::vector<Row>;

struct View {
    const char* schema;
    const char* name;
    std::vector<CatalogColumn> columns;
    std::function<void(Source&, Rows&)> fill;
};

SqlType name128() {
    return SqlType::text(SqlKind::NVarChar, 128);
}

CatalogColumn column(const char* name, SqlType type) {
    CatalogColumn c;
    c.name = name;
    c.type = type;
    return c;
}

int64_t idOf(const std::string& name) {
    return static_cast<int64_t>(std::hash<std::string>{}(foldName(name)) & 0x7FFFFFFF);
}

const char* codeOf(ModuleKind kind) {
    switch (kind) {
        case ModuleKind::View:
            return "V ";
        case ModuleKind::Procedure:
            return "P ";
        case ModuleKind::Trigger:
            return "TR";
        case ModuleKind::ScalarFunction:
            return "FN";
        case ModuleKind::InlineFunction:
            return "IF";
        case ModuleKind::TableFunction:
            return "TF";
    }
    return "";
}

const char* wordOf(const std::string& code) {
    if (code == "U ") return "USER_TABLE";
    if (code == "V ") return "VIEW";
    if (code == "P ") return "SQL_STORED_PROCEDURE";
    if (code == "TR") return "SQL_TRIGGER";
    if (code == "FN") return "SQL_SCALAR_FUNCTION";
    if (code == "IF") return "SQL_INLINE_TABLE_VALUED_FUNCTION";
    if (code == "TF") return "SQL_TABLE_VALUED_FUNCTION";
    if (code == "D ") return "DEFAULT_CONSTRAINT";
    if (code == "PK") return "PRIMARY_KEY_CONSTRAINT";
    if (code == "UQ") return "UNIQUE_CONSTRAINT";
    return "CHECK_CONSTRAINT";
}

void fillObjects(Source& s, Rows& rows) {
    const auto add = [&](const std::string& name, const std::string& code,
                         const std::string& parent, const Value& created) {
        rows.push_back({Value(name), Value(idOf(name)), Value(1),
                        Value(parent.empty() ? int64_t(0) : idOf(parent)), Value(code),
                        Value(wordOf(code)), created});
    };
    for (const std::string& name : s.catalog.tableNames()) {
        const Value created = s.catalog.createdAt(name);
        add(name, "U ", "", created);
        const CatalogTablePtr t = s.catalog.findTable(name);
        if (!t) continue;
        for (const CatalogColumn& c : t->columns)
            if (!c.defaultName.empty()) add(c.defaultName, "D ", name, created);
        for (const CatalogKey& k : t->keys)
            if (k.kind != CatalogKey::Index)
                add(k.name, k.kind == CatalogKey::Primary ? "PK" : "UQ", name, created);
        for (const CatalogCheck& c : t->checks) add(c.name, "C ", name, created);
    }
    for (const CatalogModulePtr& m : s.catalog.modules())
        add(m->name, codeOf(m->kind), m->table, s.catalog.createdAt(m->name));
}

void fillTables(Source& s, Rows& rows) {
    for (const std::string& name : s.catalog.tableNames())
        rows.push_back({Value(name), Value(idOf(name)), Value(1), Value(0), Value("U "),
                        Value("USER_TABLE"), s.catalog.createdAt(name)});
}

void fillModules(Source& s, Rows& rows, const std::function<bool(ModuleKind)>& wanted) {
    for (const CatalogModulePtr& m : s.catalog.modules())
        if (wanted(m->kind))
            rows.push_back({Value(m->name), Value(idOf(m->name)), Value(1),
                            Value(m->table.empty() ? int64_t(0) : idOf(m->table)),
                            Value(codeOf(m->kind)), Value(wordOf(codeOf(m->kind))),
                            s.catalog.createdAt(m->name)});
}

Value characterLength(const SqlType& t) {
    return t.isText() ? Value(static_cast<int64_t>(t.length)) : Value();
}

Value numericPrecision(const SqlType& t) {
    switch (t.kind) {
        case SqlKind::TinyInt:
            return Value(3);
        case SqlKind::SmallInt:
            return Value(5);
        case SqlKind::Int:
            return Value(10);
        case SqlKind::BigInt:
            return Value(19);
        case SqlKind::SmallMoney:
        case SqlKind::Money:
        case SqlKind::Numeric:
            return Value(static_cast<int64_t>(t.precision));
        case SqlKind::Real:
            return Value(24);
        case SqlKind::Float:
            return Value(53);
        default:
            return {};
    }
}

void fillInformationColumns(Source& s, Rows& rows) {
    const std::string database = "main";
    for (const std::string& name : s.catalog.tableNames()) {
        const CatalogTablePtr t = s.catalog.findTable(name);
        if (!t) continue;
        for (size_t i = 0; i < t->columns.size(); ++i) {
            const CatalogColumn& c = t->columns[i];
            const bool whole = c.type.isInteger() && c.type.kind != SqlKind::Bit;
            rows.push_back({Value(database), Value("dbo"), Value(name), Value(c.name),
                            Value(static_cast<int64_t>(i + 1)),
                            c.defaultSource.empty() ? Value() : Value(c.defaultSource),
                            Value(c.nullable ? "YES" : "NO"), Value(c.type.name()),
                            characterLength(c.type), numericPrecision(c.type),
                            c.type.isDecimal() ? Value(static_cast<int64_t>(c.type.scale))
                            : whole            ? Value(0)
                                               : Value()});
        }
    }
}

void fillSysColumns(Source& s, Rows& rows) {
    for (const std::string& name : s.catalog.tableNames()) {
        const CatalogTablePtr t = s.catalog.findTable(name);
        if (!t) continue;
        for (size_t i = 0; i < t->columns.size(); ++i) {
            const CatalogColumn& c = t->columns[i];
            rows.push_back({Value(idOf(name)), Value(c.name), Value(static_cast<int64_t>(i + 1)),
                            Value(static_cast<int64_t>(c.type.length)),
                            Value(static_cast<int64_t>(c.type.precision)),
                            Value(static_cast<int64_t>(c.type.scale)), Value(c.nullable ? 1 : 0),
                            Value(c.identity ? 1 : 0),
                            Value(c.defaultName.empty() ? int64_t(0) : idOf(c.defaultName))});
        }
    }
}

// The keys and plain indexes of every table; a table without a primary key is a heap.
void fillIndexes(Source& s, Rows& rows) {
    for (const std::string& name : s.catalog.tableNames()) {
        const CatalogTablePtr t = s.catalog.findTable(name);
        int64_t id = 1;
        const auto add = [&](const Value& index, bool clustered, bool unique, bool primary,
                             bool constraint) {
            const bool heap = index.isNull();
            rows.push_back({Value(idOf(name)), index,
                            Value(heap        ? int64_t(0)
                                  : clustered ? int64_t(1)
                                              : ++id),
                            Value(heap        ? int64_t(0)
                                  : clustered ? int64_t(1)
                                              : int64_t(2)),
                            Value(heap        ? "HEAP"
                                  : clustered ? "CLUSTERED"
                                              : "NONCLUSTERED"),
                            Value(unique), Value(primary), Value(constraint)});
        };
        bool primary = false;
        for (const CatalogKey& k : t->keys) {
            if (k.kind != CatalogKey::Primary) continue;
            primary = true;
            add(Value(k.name), true, true, true, false);
        }
        if (!primary) add({}, false, false, false, false);
        for (const CatalogKey& k : t->keys)
            if (k.kind != CatalogKey::Primary)
                add(Value(k.name), false, true, false, k.kind == CatalogKey::Unique);
        // What is not unique stands only in SQLite's own schema, its name behind the table's.
        SqliteStatement plain = s.catalog.sqlite().prepare(
            "SELECT name FROM pragma_index_list(" + sqliteText(t->bareName()) +
            ") WHERE origin = 'c' AND \"unique\" = 0 ORDER BY seq DESC");
        while (s.catalog.sqlite().step(plain)) {
            const std::string index = plain.text(0);
            add(Value(index.substr(t->indexName("").size())), false, false, false, false);
        }
    }
}

const std::vector<View>& views() {
    static const std::vector<View> all = [] {
        const SqlType integer = SqlType::of(SqlKind::Int);
        const SqlType bit = SqlType::of(SqlKind::Bit);
        const SqlType code = SqlType::text(SqlKind::Char, 2);
        const std::vector<CatalogColumn> object = {
            column("name", name128()),
            column("object_id", integer),
            column("schema_id", integer),
            column("parent_object_id", integer),
            column("type", code),
            column("type_desc", name128()),
            column("create_date", SqlType::of(SqlKind::DateTime))};
        std::vector<View> v;
        v.push_back({"sys", "objects", object, fillObjects});
        v.push_back({"sys", "tables", object, fillTables});
        v.push_back({"sys", "views", object, [](Source& s, Rows& r) {
                         fillModules(s, r, [](ModuleKind k) { return k == ModuleKind::View; });
                     }});
        v.push_back({"sys", "procedures", object, [](Source& s, Rows& r) {
                         fillModules(s, r, [](ModuleKind k) { return k == ModuleKind::Procedure; });
                     }});
        v.push_back({"sys", "triggers", object, [](Source& s, Rows& r) {
                         fillModules(s, r, [](ModuleKind k) { return k == ModuleKind::Trigger; });
                     }});
        v.push_back(
            {"sys",
             "columns",
             {column("object_id", integer), column("name", name128()), column("column_id", integer),
              column("max_length", integer), column("precision", integer), column("scale", integer),
              column("is_nullable", integer), column("is_identity", integer),
              column("default_object_id", integer)},
             fillSysColumns});
        v.push_back({"sys",
                     "sql_modules",
                     {column("object_id", integer),
                      column("definition", SqlType::text(SqlKind::NVarChar, SqlType::kMax))},
                     [](Source& s, Rows& rows) {
                         for (const CatalogModulePtr& m : s.catalog.modules())
                             rows.push_back({Value(idOf(m->name)), Value(m->source)});
                     }});
        v.push_back(
            {"sys",
             "indexes",
             {column("object_id", integer), column("name", name128()), column("index_id", integer),
              column("type", integer), column("type_desc", name128()), column("is_unique", bit),
              column("is_primary_key", bit), column("is_unique_constraint", bit)},
             fillIndexes});
        v.push_back({"information_schema",
                     "table_constraints",
                     {column("CONSTRAINT_SCHEMA", name128()), column("CONSTRAINT_NAME", name128()),
                      column("TABLE_SCHEMA", name128()), column("TABLE_NAME", name128()),
                      column("CONSTRAINT_TYPE", SqlType::text(SqlKind::VarChar, 11))},
                     [](Source& s, Rows& rows) {
                         for (const std::string& name : s.catalog.tableNames()) {
                             const CatalogTablePtr t = s.catalog.findTable(name);
                             const auto add = [&](const std::string& constraint, const char* kind) {
                                 rows.push_back({Value("dbo"), Value(constraint), Value("dbo"),
                                                 Value(name), Value(kind)});
                             };
                             for (const CatalogKey& k : t->keys)
                                 if (k.kind != CatalogKey::Index)
                                     add(k.name,
                                         k.kind == CatalogKey::Primary ? "PRIMARY KEY" : "UNIQUE");
                             for (const CatalogCheck& c : t->checks) add(c.name, "CHECK");
                         }
                     }});
        v.push_back({"information_schema",
                     "key_column_usage",
                     {column("CONSTRAINT_SCHEMA", name128()), column("CONSTRAINT_NAME", name128()),
                      column("TABLE_SCHEMA", name128()), column("TABLE_NAME", name128()),
                      column("COLUMN_NAME", name128()), column("ORDINAL_POSITION", integer)},
                     [](Source& s, Rows& rows) {
                         for (const std::string& name : s.catalog.tableNames())
                             for (const CatalogKey& k : s.catalog.findTable(name)->keys)
                                 for (size_t i = 0;
                                      k.kind != CatalogKey::Index && i < k.columns.size(); ++i)
                                     rows.push_back({Value("dbo"), Value(k.name), Value("dbo"),
                                                     Value(name), Value(k.columns[i]),
                                                     Value(static_cast<int64_t>(i + 1))});
                     }});
        v.push_back({"information_schema",
                     "views",
                     {column("TABLE_SCHEMA", name128()), column("TABLE_NAME", name128()),
                      column("VIEW_DEFINITION", SqlType::text(SqlKind::NVarChar, 4000))},
                     [](Source& s, Rows& rows) {
                         for (const CatalogModulePtr& m : s.catalog.modules())
                             if (m->kind == ModuleKind::View)
                                 rows.push_back({Value("dbo"), Value(m->name), Value(m->source)});
                     }});
        v.push_back({"sys",
                     "default_constraints",
                     {column("name", name128()), column("object_id", integer),
                      column("parent_object_id", integer), column("parent_column_id", integer),
                      column("definition", SqlType::text(SqlKind::NVarChar, SqlType::kMax))},
                     [](Source& s, Rows& rows) {
                         for (const std::string& name : s.catalog.tableNames()) {
                             const CatalogTablePtr t = s.catalog.findTable(name);
                             for (size_t i = 0; t && i < t->columns.size(); ++i)
                                 if (const CatalogColumn& c = t->columns[i]; !c.defaultName.empty())
                                     rows.push_back({Value(c.defaultName),
                                                     Value(idOf(c.defaultName)), Value(idOf(name)),
                                                     Value(static_cast<int64_t>(i + 1)),
                                                     Value(c.defaultSource)});
                         }
                     }});
        v.push_back({"sys",
                     "databases",
                     {column("name", name128()), column("database_id", integer)},
                     [](Source&, Rows& rows) {
                         rows.push_back({Value("main"), Value(1)});
                     }});
        v.push_back({"sys",
                     "dm_tran_database_transactions",
                     {column("transaction_id", integer), column("database_id", integer)},
                     [](Source& s, Rows& rows) {
                         // One connection at a time is in a transaction.
                         if (s.inTransaction() || s.catalog.sqlite().isBeingWritten())
                             rows.push_back({Value(1), Value(1)});
                     }});
        v.push_back({"information_schema",
                     "columns",
                     {column("TABLE_CATALOG", name128()), column("TABLE_SCHEMA", name128()),
                      column("TABLE_NAME", name128()), column("COLUMN_NAME", name128()),
                      column("ORDINAL_POSITION", integer),
                      column("COLUMN_DEFAULT", SqlType::text(SqlKind::NVarChar, 4000)),
                      column("IS_NULLABLE", SqlType::text(SqlKind::VarChar, 3)),
                      column("DATA_TYPE", name128()), column("CHARACTER_MAXIMUM_LENGTH", integer),
                      column("NUMERIC_PRECISION", integer), column("NUMERIC_SCALE", integer)},
                     fillInformationColumns});
        v.push_back({"information_schema",
                     "tables",
                     {column("TABLE_CATALOG", name128()), column("TABLE_SCHEMA", name128()),
                      column("TABLE_NAME", name128()), column("TABLE_TYPE", name128())},
                     [](Source& s, Rows& rows) {
                         for (const std::string& name : s.catalog.tableNames())
                             rows.push_back(
                                 {Value("main"), Value("dbo"), Value(name), Value("BASE TABLE")});
                         for (const CatalogModulePtr& m : s.catalog.modules())
                             if (m->kind == ModuleKind::View)
                                 rows.push_back(
                                     {Value("main"), Value("dbo"), Value(m->name), Value("VIEW")});
                     }});
        v.push_back({"information_schema",
                     "routines",
                     {column("ROUTINE_SCHEMA", name128()), column("ROUTINE_NAME", name128()),
                      column("ROUTINE_TYPE", name128())},
                     [](Source& s, Rows& rows) {
                         for (const CatalogModulePtr& m : s.catalog.modules()) {
                             if (m->kind == ModuleKind::View || m->kind == ModuleKind::Trigger)
                                 continue;
                             rows.push_back({Value("dbo"), Value(m->name),
                                             Value(m->kind == ModuleKind::Procedure ? "PROCEDURE"
                                                                                    : "FUNCTION")});
                         }
                     }});
        return v;
    }();
    return all;
}

class ViewRows : public ComputedRows {
  public:
    size_t count() const override { return rows.size(); }
    void give(SqliteResult result, size_t row, size_t column) const override {
        result.give(rows[row][column]);
    }
    Rows rows;
};

std::string sqliteTableOf(const View& v) {
    return std::string("t_") + v.schema + "_" + v.name;
}

}  // namespace

CatalogTablePtr findSystemView(const std::string& schema, const std::string& name) {
    std::string s = foldName(schema), n = foldName(name);
    if (n == "sysobjects" && (s.empty() || s == "dbo")) {
        s = "sys";
        n = "objects";
    }
    for (const View& v : views()) {
        if (s != v.schema || n != v.name) continue;
        auto table = std::make_shared<CatalogTable>();
        table->name = v.name;
        table->sqlName = sqliteTableOf(v);
        table->system = true;
        table->columns = v.columns;
        return table;
    }
    return nullptr;
}

void addSystemViews(Sqlite& sqlite, Catalog& catalog, const std::function<bool()>& inTransaction) {
    for (const View& v : views()) {
        ComputedTable table;
        for (const CatalogColumn& c : v.columns) table.columns.push_back(c.name);
        table.expectedRows = 100;
        table.read = [source = Source{catalog, inTransaction}, &v](SqliteArguments) mutable {
            auto view = std::make_unique<ViewRows>();
            v.fill(source, view->rows);
            return view;
        };
        sqlite.addTable(sqliteTableOf(v), std::move(table));
    }
}

}  // namespace owb::tsql
