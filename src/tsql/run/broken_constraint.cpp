#include "tsql/run/broken_constraint.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

// The first key among the rows that the table, or a row before it, holds already.
std::string duplicateKey(Sqlite& sqlite, const CatalogTable& table, const CatalogKey& key,
                         const RowsOnTheirWay& rows) {
    std::string columns, match;
    std::vector<SqlType> types;
    for (const std::string& c : key.columns) {
        const CatalogColumn& column = table.columns[table.findColumn(c)];
        columns += (columns.empty() ? "" : ",") + sqliteName(column.name);
        match += (match.empty() ? "" : " AND ") + sqliteName(column.name) + " IS ?" +
                 std::to_string(types.size() + 1);
        types.push_back(column.type);
    }
    SqliteStatement walk = sqlite.prepare(rows.with + " SELECT " + columns + " FROM src");
    if (rows.bind) rows.bind(walk);
    SqliteStatement held = sqlite.prepare("SELECT 1 FROM " + table.sqlName + " WHERE " + match);
    std::vector<std::string> seen;
    while (sqlite.step(walk)) {
        std::string text;
        for (size_t i = 0; i < types.size(); ++i) {
            const Value v = walk.value(static_cast<int>(i), types[i]);
            held.bind(static_cast<int>(i) + 1, v);
            text += (i ? ", " : "") + (v.isNull() ? "<NULL>" : v.toText());
        }
        const bool there = sqlite.step(held);
        held.rewind();
        const std::string folded = foldText(text);
        if (there || std::find(seen.begin(), seen.end(), folded) != seen.end()) return text;
        if (seen.size() < 10000) seen.push_back(folded);
    }
    return "";
}

std::string checkedColumn(const CatalogTable& table, const std::string& check) {
    int column = -1;
    for (const CatalogCheck& c : table.checks) {
        if (c.name != check) continue;
        for (const Token& t : tokenize(c.source)) {
            if (t.kind != TokenKind::Name && t.kind != TokenKind::QuotedName) continue;
            const int at = table.findColumn(unquoted(t));
            if (at < 0 || at == column) continue;
            if (column >= 0) return "";
            column = at;
        }
    }
    return column < 0 ? "" : ", column '" + table.columns[column].name + "'";
}

// Whether `named`, SQLite's "table.column, table.column", is these columns of the table, which may
// be the one that is to become it.
bool namesColumns(const std::string& named, const CatalogTable& table,
                  const std::vector<std::string>& columns) {
    for (const std::string& name : {table.bareName(), std::string(kRebuiltTable)}) {
        std::string list;
        for (const std::string& c : columns) {
            const int at = table.findColumn(c);
            list += (list.empty() ? "" : ", ") + name + "." + (at < 0 ? c : table.columns[at].name);
        }
        if (sameName(list, named)) return true;
    }
    return false;
}

DbError uniqueError(Session& session, const CatalogTable& table, const std::string& named,
                    const RowsOnTheirWay& rows) {
    const CatalogKey* key = nullptr;
    for (const CatalogKey& k : table.keys)
        if (namesColumns(named, table, k.columns) ||
            named == "index '" + table.nullIndexName(k.name) + "'")
            key = &k;
    std::string value;
    if (key && !rows.with.empty()) {
        const std::string text = duplicateKey(session.sqlite, table, *key, rows);
        if (!text.empty()) value = " The duplicate key value is (" + text + ").";
    }
    const std::string object = "dbo." + table.name;
    if (key && key->kind != CatalogKey::Index)
        return makeDbError(2627, {key->kind == CatalogKey::Primary ? "PRIMARY KEY" : "UNIQUE KEY",
                                  key->name, object, value});
    return makeDbError(2601, {object, key ? key->name : "", value});
}

}  // namespace

DbError constraintError(Session& session, const BrokenConstraint& broken, const CatalogTable& table,
                        const char* verb, const RowsOnTheirWay& rows) {
    const std::string text = broken.what();
    const size_t colon = text.find(": ");
    const std::string named = colon == std::string::npos ? "" : text.substr(colon + 2);
    if (text.starts_with("NOT NULL")) {
        for (const CatalogColumn& c : table.columns)
            if (namesColumns(named, table, {c.name}))
                return makeDbError(515, {c.name, session.catalog.fullName(table), verb});
    }
    if (broken.isUnique()) return uniqueError(session, table, named, rows);
    if (text.starts_with("CHECK"))
        return makeDbError(547, {verb, "CHECK", named, session.sqlite.databaseName(),
                                 "dbo." + table.name, checkedColumn(table, named)});
    return broken;
}

}  // namespace owb::tsql
