// Care of the file: its copy, and whether it and its catalog are sound.
#include <unistd.h>

#include "tsql/run/executor.h"

namespace owb::tsql {

void Executor::backup(const std::string& path) {
    if (access(path.c_str(), F_OK) == 0)
        throw makeDbError(-3, {"The file " + path + " exists already."});
    try {
        // Reads in one transaction, so that it needs no pause of those who write.
        sqlite_->run("VACUUM main INTO " + sqliteText(path));
    } catch (const DbError&) {
        ::unlink(path.c_str());
        throw;
    }
}

std::vector<std::string> Executor::checkIntegrity() {
    std::vector<std::string> problems;
    SqliteStatement s = sqlite_->prepare("PRAGMA integrity_check(50)");
    while (sqlite_->step(s)) {
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

void Executor::checkCatalog(std::vector<std::string>& problems) {
    catalog_.refresh();
    for (const CatalogModulePtr& m : catalog_.modules()) {
        try {
            // A view and a function of one query are all name and query: they must fit together.
            if (catalog_.parsed(*m).definition->query)
                viewColumns(*m, catalog_.parsed(*m).definition->parameters.size());
            if (m->kind == ModuleKind::Trigger && !catalog_.findTable(m->table))
                problems.push_back("catalog: the trigger " + m->name + " stands on " + m->table +
                                   ", which is gone");
        } catch (const DbError& e) {
            problems.push_back("catalog: the routine " + m->name + " does not work: " + e.what());
        }
    }
    SqliteStatement lost = sqlite_->prepare(
        "SELECT tbl, name FROM tsql_constraint WHERE tbl NOT IN (SELECT lower(name) FROM "
        "main.sqlite_master WHERE type = 'table')");
    while (sqlite_->step(lost))
        problems.push_back("catalog: the constraint " + lost.text(1) + " belongs to no table");
}

}  // namespace owb::tsql
