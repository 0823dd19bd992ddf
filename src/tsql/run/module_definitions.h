// CREATE and ALTER of views, functions, procedures and triggers. Such a statement is a batch of its
// own; the catalog keeps its text.
#pragma once

#include "tsql/run/forward_check.h"

namespace owb::tsql {

class ModuleDefinitions {
  public:
    ModuleDefinitions(Session& session, CatalogWatch& watch, CodeCache& codes, ForwardCheck& check)
        : session_(session), watch_(watch), codes_(codes), check_(check) {}

    // The frame of the batch that defines the module.
    void define(Frame& frame);

  private:
    void requireName(const ModuleStatement& s, const CatalogModulePtr& old) const;
    std::string starsOf(Frame& frame, const ModuleStatement& s) const;
    int eventsOf(const ModuleStatement& s) const;
    void checkBody(const ModuleDefinition& m);

    Session& session_;
    CatalogWatch& watch_;
    CodeCache& codes_;
    ForwardCheck& check_;
};

}  // namespace owb::tsql
