#include "tsql/run/file_care.h"

#include <unistd.h>

namespace owb::tsql {

void FileCare::backup(const std::string& path) {
    if (access(path.c_str(), F_OK) == 0)
        throw makeDbError(-3, {"The file " + path + " exists already."});
    try {
        // Reads in one transaction, so that it needs no pause of those who write.
        session_.sqlite.run("VACUUM main INTO " + sqliteText(path));
    } catch (const DbError&) {
        ::unlink(path.c_str());
        throw;
    }
}

std::vector<std::string> FileCare::problems() {
    std::vector<std::string> problems;
    SqliteStatement s = session_.sqlite.prepare("PRAGMA integrity_check(50)");
    while (session_.sqlite.step(s)) {
        const std::string line = s.text(0);
        if (line != "ok") problems.push_back("file: " + line);
    }
    try {
        checkCatalog(problems);
    } catch (const DbError& e) {
        problems.push_back(std::string("catalog: ") + e.what());
    }
    return problems;
}

void FileCare::checkCatalog(std::vector<std::string>& problems) {
    session_.catalog.refresh();
    for (const CatalogModulePtr& m : session_.catalog.modules()) {
        try {
            // A view and a function of one query are all name and query: they must fit together.
            if (session_.catalog.parsed(*m).definition->query)
                help_.viewColumns(*m, session_.catalog.parsed(*m).definition->parameters.size());
            if (m->kind == ModuleKind::Trigger && !session_.catalog.findTable(m->table))
                problems.push_back("catalog: the trigger " + m->name + " stands on " + m->table +
                                   ", which is gone");
        } catch (const DbError& e) {
            problems.push_back("catalog: the routine " + m->name + " does not work: " + e.what());
        }
    }
    SqliteStatement lost = session_.sqlite.prepare(
        "SELECT tbl, name FROM tsql_constraint WHERE tbl NOT IN (SELECT lower(name) FROM "
        "main.sqlite_master WHERE type = 'table')");
    while (session_.sqlite.step(lost))
        problems.push_back("catalog: the constraint " + lost.text(1) + " belongs to no table");
}

}  // namespace owb::tsql
