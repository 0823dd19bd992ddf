#include "tsql/run/identity_values.h"

namespace owb::tsql {

namespace {

std::string lastOf(const std::string& table) {
    return "SELECT last FROM tsql_identity WHERE tbl = " + sqliteText(foldName(table));
}

}  // namespace

void IdentityValues::load(const CatalogTable& table) {
    step_ = table.identityIncrement;
    used_ = false;
    next_ = table.identitySeed;
    const std::optional<int64_t> last = session_.sqlite.number(
        table.temporary ? "SELECT max(" + sqliteName(table.columns[table.identityColumn()].name) +
                              ") FROM " + table.sqlName
                        : lastOf(table.name));
    if (last) next_ = *last + step_;
}

int64_t IdentityValues::next() {
    used_ = true;
    const int64_t value = next_;
    next_ += step_;
    return value;
}

void IdentityValues::store(const CatalogTable& table) {
    std::optional<int64_t> last;
    if (used_)
        last = next_ - step_;
    else
        last = session_.sqlite.number(std::string("SELECT ") + (step_ > 0 ? "max(" : "min(") +
                                      sqliteName(table.columns[table.identityColumn()].name) +
                                      ") FROM " + table.sqlName);
    if (!last) return;
    ofScope_ = last_ = Value(*last);
    if (table.temporary) return;
    session_.sqlite.run("UPDATE tsql_identity SET last = " + std::to_string(*last) +
                        " WHERE tbl = " + sqliteText(foldName(table.name)));
}

Value IdentityValues::current(const std::string& table) {
    const Name written = nameInText(table);
    if (written.empty() || written.parts.size() > 3 || !session_.catalog.isHere(written)) return {};
    const auto last = session_.sqlite.number(lastOf(written.last()));
    return last ? Value(Decimal(*last, 0)) : Value();
}

void IdentityValues::allowExplicit(const Name& written, bool on, int line) {
    const CatalogTablePtr table = session_.catalog.findTable(written);
    if (!table) throw makeDbError(1088, {written.text()}, line);
    if (table->identityColumn() < 0) throw makeDbError(8106, {table->name}, line);
    const std::string name = foldName(table->name);
    if (on && !explicit_.empty() && explicit_ != name)
        throw makeDbError(8107, {explicit_, table->name}, line);
    if (on || explicit_ == name) explicit_ = on ? name : "";
}

}  // namespace owb::tsql
