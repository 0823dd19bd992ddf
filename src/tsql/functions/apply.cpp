// APPLY: a table-valued function of SQLite, t_apply(plan, argument...), gives the rows that one row
// on its left makes. The plan and the session that runs it are behind FunctionHost.
#include "tsql/functions/apply.h"

namespace owb::tsql {

namespace {

struct Table {
    sqlite3_vtab base;
    Sqlite* sqlite;
    FunctionHost* host;
};

struct Cursor {
    sqlite3_vtab_cursor base;
    AppliedRows rows;
    size_t at = 0;
};

struct Module {
    Sqlite* sqlite;
    FunctionHost* host;
};

int connect(sqlite3* db, void* aux, int, const char* const*, sqlite3_vtab** out, char**) {
    std::string ddl = "CREATE TABLE x(";
    for (int i = 0; i < kMostApplied; ++i) ddl += "c" + std::to_string(i) + ",";
    ddl += "plan HIDDEN";
    for (int i = 0; i < kMostApplied; ++i) ddl += ",a" + std::to_string(i) + " HIDDEN";
    const int rc = sqlite3_declare_vtab(db, (ddl + ")").c_str());
    if (rc != SQLITE_OK) return rc;
    const auto* module = static_cast<Module*>(aux);
    auto* table = new Table{{}, module->sqlite, module->host};
    *out = &table->base;
    return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
    delete reinterpret_cast<Table*>(table);
    return SQLITE_OK;
}

// The arguments must be known: SQLite then reads what they name first.
int bestIndex(sqlite3_vtab*, sqlite3_index_info* info) {
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& c = info->aConstraint[i];
        if (c.iColumn < kMostApplied) continue;
        if (!c.usable || c.op != SQLITE_INDEX_CONSTRAINT_EQ) return SQLITE_CONSTRAINT;
        info->aConstraintUsage[i].argvIndex = c.iColumn - kMostApplied + 1;
        info->aConstraintUsage[i].omit = 1;
    }
    info->estimatedCost = 100;
    info->estimatedRows = 10;
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
    const auto* table = reinterpret_cast<Table*>(base->pVtab);
    cursor->rows.clear();
    cursor->at = 0;
    try {
        auto* plan = reinterpret_cast<ApplyPlan*>(sqlite3_value_int64(arguments[0]));
        table->host->applyRows(*plan, count - 1, arguments + 1, cursor->rows);
    } catch (...) {
        table->sqlite->raise(caughtError());
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
    return cursor->at >= cursor->rows.size();
}

int columnOf(sqlite3_vtab_cursor* base, sqlite3_context* context, int i) {
    const auto* cursor = reinterpret_cast<Cursor*>(base);
    const auto& row = cursor->rows[cursor->at];
    if (static_cast<size_t>(i) < row.size()) sqlite3_result_value(context, row[i].get());
    return SQLITE_OK;
}

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* id) {
    *id = static_cast<sqlite3_int64>(reinterpret_cast<Cursor*>(base)->at);
    return SQLITE_OK;
}

}  // namespace

void registerApply(Sqlite& sqlite, FunctionHost& host) {
    static const sqlite3_module methods = [] {
        sqlite3_module m{};
        m.iVersion = 1;
        m.xConnect = connect;  // no xCreate: the function exists by itself
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
    sqlite3_create_module_v2(sqlite.handle(), "t_apply", &methods, new Module{&sqlite, &host},
                             [](void* p) { delete static_cast<Module*>(p); });
}

}  // namespace owb::tsql
