#include "tsql/sqlite/extensions.h"

#include <sqlite3.h>

#include "tsql/sqlite/sql_text.h"
#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

namespace {

// --- functions and aggregates ---

template <class Body>
struct Registered {
    Sqlite& sqlite;
    Body body;
};

template <class Body, class Work>
void guarded(sqlite3_context* context, Work work) {
    auto* r = static_cast<Registered<Body>*>(sqlite3_user_data(context));
    try {
        work(r->body);
    } catch (...) {
        r->sqlite.keepException();
        sqlite3_result_error(context, "failed", -1);
    }
}

void callFunction(sqlite3_context* context, int count, sqlite3_value** arguments) {
    guarded<FunctionBody>(context, [&](const FunctionBody& body) {
        body(SqliteResult(context), SqliteArguments(count, arguments));
    });
}

void stepAggregate(sqlite3_context* context, int count, sqlite3_value** arguments) {
    guarded<AggregateBody>(context, [&](const AggregateBody& body) {
        body.step(SqliteResult(context), SqliteArguments(count, arguments));
    });
}

void leaveAggregate(sqlite3_context* context, int count, sqlite3_value** arguments) {
    guarded<AggregateBody>(context, [&](const AggregateBody& body) {
        body.leave(SqliteResult(context), SqliteArguments(count, arguments));
    });
}

void finishAggregate(sqlite3_context* context) {
    guarded<AggregateBody>(context,
                           [&](const AggregateBody& body) { body.finish(SqliteResult(context)); });
}

template <class Body>
void forget(void* registered) {
    delete static_cast<Registered<Body>*>(registered);
}

// --- computed tables: the visible columns first, then the arguments as hidden ones ---

using RegisteredTable = Registered<ComputedTable>;

struct Table {
    sqlite3_vtab base;
    const RegisteredTable* registered;
};

struct Cursor {
    sqlite3_vtab_cursor base;
    std::unique_ptr<ComputedRows> rows;
    size_t at = 0;
};

int connect(sqlite3* db, void* aux, int, const char* const*, sqlite3_vtab** out, char**) {
    const auto* registered = static_cast<const RegisteredTable*>(aux);
    const ComputedTable& table = registered->body;
    std::string ddl = "CREATE TABLE x(";
    for (const std::string& column : table.columns) ddl += sqliteName(column) + ",";
    for (int i = 0; i < table.arguments; ++i) ddl += "a" + std::to_string(i) + " HIDDEN,";
    ddl.back() = ')';
    const int rc = sqlite3_declare_vtab(db, ddl.c_str());
    if (rc != SQLITE_OK) return rc;
    *out = &(new Table{{}, registered})->base;
    return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
    delete reinterpret_cast<Table*>(table);
    return SQLITE_OK;
}

// The arguments must be known: SQLite then reads what they name first.
int bestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
    const ComputedTable& table = reinterpret_cast<Table*>(base)->registered->body;
    const auto columns = static_cast<int>(table.columns.size());
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& c = info->aConstraint[i];
        if (c.iColumn < columns) continue;
        if (!c.usable || c.op != SQLITE_INDEX_CONSTRAINT_EQ) return SQLITE_CONSTRAINT;
        info->aConstraintUsage[i].argvIndex = c.iColumn - columns + 1;
        info->aConstraintUsage[i].omit = 1;
    }
    info->estimatedRows = table.expectedRows;
    info->estimatedCost = static_cast<double>(table.expectedRows) * 10;
    return SQLITE_OK;
}

int open(sqlite3_vtab*, sqlite3_vtab_cursor** out) {
    *out = &(new Cursor{})->base;
    return SQLITE_OK;
}

int close(sqlite3_vtab_cursor* cursor) {
    delete reinterpret_cast<Cursor*>(cursor);
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* base, int, const char*, int count, sqlite3_value** arguments) {
    auto* cursor = reinterpret_cast<Cursor*>(base);
    const RegisteredTable& registered = *reinterpret_cast<Table*>(base->pVtab)->registered;
    cursor->at = 0;
    try {
        cursor->rows = registered.body.read(SqliteArguments(count, arguments));
    } catch (...) {
        registered.sqlite.keepException();
        return SQLITE_ERROR;
    }
    return SQLITE_OK;
}

int next(sqlite3_vtab_cursor* base) {
    ++reinterpret_cast<Cursor*>(base)->at;
    return SQLITE_OK;
}

int atEnd(sqlite3_vtab_cursor* base) {
    const auto* cursor = reinterpret_cast<Cursor*>(base);
    return cursor->at >= cursor->rows->count();
}

int columnOf(sqlite3_vtab_cursor* base, sqlite3_context* context, int column) {
    const auto* cursor = reinterpret_cast<Cursor*>(base);
    cursor->rows->give(SqliteResult(context), cursor->at, static_cast<size_t>(column));
    return SQLITE_OK;
}

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* id) {
    *id = static_cast<sqlite3_int64>(reinterpret_cast<Cursor*>(base)->at);
    return SQLITE_OK;
}

const sqlite3_module& tableMethods() {
    static const sqlite3_module methods = [] {
        sqlite3_module m{};
        m.iVersion = 1;
        m.xConnect = connect;  // no xCreate: the tables exist by themselves
        m.xBestIndex = bestIndex;
        m.xDisconnect = disconnect;
        m.xOpen = open;
        m.xClose = close;
        m.xFilter = filter;
        m.xNext = next;
        m.xEof = atEnd;
        m.xColumn = columnOf;
        m.xRowid = rowId;
        return m;
    }();
    return methods;
}

}  // namespace

void Sqlite::addFunction(const char* name, int count, FunctionBody body, bool deterministic) {
    sqlite3_create_function_v2(db_, name, count,
                               SQLITE_UTF8 | (deterministic ? SQLITE_DETERMINISTIC : 0),
                               new Registered<FunctionBody>{*this, std::move(body)}, callFunction,
                               nullptr, nullptr, forget<FunctionBody>);
}

void Sqlite::addAggregate(const char* name, int count, const AggregateBody& body) {
    auto* registered = new Registered<AggregateBody>{*this, body};
    if (body.leave)
        sqlite3_create_window_function(db_, name, count, SQLITE_UTF8, registered, stepAggregate,
                                       finishAggregate, finishAggregate, leaveAggregate,
                                       forget<AggregateBody>);
    else
        sqlite3_create_function_v2(db_, name, count, SQLITE_UTF8, registered, nullptr,
                                   stepAggregate, finishAggregate, forget<AggregateBody>);
}

void Sqlite::addTable(const std::string& name, ComputedTable table) {
    sqlite3_create_module_v2(db_, name.c_str(), &tableMethods(),
                             new RegisteredTable{*this, std::move(table)}, forget<ComputedTable>);
}

}  // namespace owb::tsql
