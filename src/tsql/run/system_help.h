// sp_help, sp_helptext and sp_helptrigger: what stands in the database, with the columns and words
// that the server has for it. Also what the functions that ask after objects need.
#pragma once

#include <string>
#include <vector>

#include "tsql/run/plan_runner.h"

namespace owb::tsql {

class SystemHelp {
  public:
    SystemHelp(Session& session, PlanRunner& plans) : session_(session), plans_(plans) {}

    void call(Frame& frame, const ExecuteStatement& s, const std::string& procedure);

    CatalogTablePtr tableNamed(const std::string& text) const;  // a name that came as a text
    // Of a view; with a number of arguments, all NULL, of a function of rows.
    std::vector<CatalogColumn> viewColumns(const CatalogModule& view, size_t arguments = 0);

  private:
    CatalogModulePtr moduleNamed(const std::string& text) const;
    void helpAll();
    void help(const std::string& object, int line);
    void helpColumns(const std::vector<CatalogColumn>& columns);
    void helpIndexes(const CatalogTable& table);
    void helpConstraints(const CatalogTable& table, const std::string& object);
    void helpParameters(CatalogModule& module);
    void helpText(const std::string& object, int line);
    void helpTrigger(const std::string& object, int line);

    Session& session_;
    PlanRunner& plans_;
};

}  // namespace owb::tsql
