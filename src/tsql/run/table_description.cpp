#include "tsql/run/table_description.h"

namespace owb::tsql {

std::string joined(const std::vector<std::string>& parts, char separator) {
    std::string out;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i) out += separator;
        out += parts[i];
    }
    return out;
}

std::string generatedName(const char* kind, const std::string& table, const std::string& what) {
    char suffix[20];
    std::snprintf(suffix, sizeof suffix, "%08zX",
                  std::hash<std::string>{}(foldName(table + "." + what)) & 0xFFFFFFFF);
    return std::string(kind) + "__" + table.substr(0, 9) + "__" + suffix;
}

namespace {

void addColumn(CatalogTable& table, const ColumnDefinition& c) {
    if (table.findColumn(c.name) >= 0) throw makeDbError(2705, {c.name, table.name}, c.line);
    CatalogColumn column;
    column.name = c.name;
    column.type = c.type;
    column.nullable = c.nullable.value_or(!c.identity);
    column.identity = c.identity;
    column.defaultSource = c.defaultSource;
    if (!c.defaultSource.empty())
        column.defaultName =
            c.defaultName.empty() ? generatedName("DF", table.name, c.name) : c.defaultName;
    if (c.identity) {
        table.identitySeed = c.seed;
        table.identityIncrement = c.increment;
    }
    table.columns.push_back(std::move(column));
}

void addPrimaryKey(CatalogTable& table, const ConstraintDefinition& c,
                   const std::vector<ColumnDefinition>& columns) {
    for (const std::string& column : c.columns) {
        // Written NULL beside PRIMARY KEY is refused; unsaid becomes NOT NULL.
        for (const ColumnDefinition& d : columns)
            if (sameName(d.name, column) && d.nullable == true)
                throw followedBy(makeDbError(8111, {table.name}), makeDbError(1750, {}, c.line));
        table.columns[table.findColumn(column)].nullable = false;
    }
    for (const CatalogKey& k : table.keys)
        if (k.kind == CatalogKey::Primary) throw makeDbError(8110, {table.name}, c.line);
    table.keys.push_back({c.name.empty() ? generatedName("PK", table.name, "") : c.name, c.columns,
                          CatalogKey::Primary});
}

void addConstraint(CatalogTable& table, const ConstraintDefinition& c,
                   const std::vector<ColumnDefinition>& columns) {
    for (const std::string& column : c.columns)
        if (table.findColumn(column) < 0) throw makeDbError(1911, {column}, c.line);
    const auto named = [&](const char* kind, const std::string& what) {
        return c.name.empty() ? generatedName(kind, table.name, what) : c.name;
    };
    switch (c.kind) {
        case ConstraintDefinition::PrimaryKey:
            return addPrimaryKey(table, c, columns);
        case ConstraintDefinition::Unique:
            table.keys.push_back(
                {named("UQ", joined(c.columns, ',')), c.columns, CatalogKey::Unique});
            break;
        case ConstraintDefinition::Check:
            table.checks.push_back({named("CK", c.source), c.source});
            break;
        case ConstraintDefinition::Default: {
            CatalogColumn& column = table.columns[table.findColumn(c.columns[0])];
            column.defaultSource = c.source;
            column.defaultName = named("DF", c.columns[0]);
            break;
        }
        case ConstraintDefinition::ForeignKey:
            throw makeDbError(15281, {"A FOREIGN KEY constraint"}, c.line);
    }
}

}  // namespace

CatalogTable describeTable(const std::string& name, const std::vector<ColumnDefinition>& columns,
                           const std::vector<ConstraintDefinition>& constraints) {
    CatalogTable table;
    table.name = name;
    for (const ColumnDefinition& c : columns) addColumn(table, c);
    for (const ConstraintDefinition& c : constraints) addConstraint(table, c, columns);
    return table;
}

}  // namespace owb::tsql
