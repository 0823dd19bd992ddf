// A work table of this workstation: a real table, named by the host, made anew by each use.
#pragma once

#include <string>

#include "db/sql_text.h"
#include "session/Session.h"

namespace owb {

struct WorkTable {
    WorkTable(const Session& session, const std::string& kind)
        : bare(kind + session.gHostPrefix), name("[" + bare + "]") {
        drop = Sql() << "If Exists(SELECT * FROM SYS.TABLES WHERE NAME =" << literal(bare)
                     << ") DROP TABLE " << name;
    }
    // The statement that gives it a primary key.
    std::string key(const std::string& column) const {
        return "ALTER TABLE " + name + " ADD CONSTRAINT [PK_" + bare + "] PRIMARY KEY (" + column +
               ")";
    }
    std::string bare, name;
    std::string drop;  // takes it away where it is
};

}  // namespace owb
