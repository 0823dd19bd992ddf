// Look-ups that controls rest on: is a text in a master's list, and the next key of a table. A
// failing query throws DbError.
#pragma once

#include <cstdint>
#include <string>

#include "base/value.h"

namespace owb {

struct Session;

class clsCtrlDep {
  public:
    explicit clsCtrlDep(Session& session) : session_(session) {}

    bool FnBlnMatchedWithList(const std::string& table, const std::string& field,
                              const std::string& value, const std::string& condition = "") const;
    // MAX + 1 of the field, 1 for an empty table. Nothing guards the number: it is for
    // showing, a save takes the key where it writes it (SaveBatch::newKey).
    int64_t FnLngGetNextNumber(const std::string& table, const std::string& field,
                               const std::string& condition = "") const;
    // A yes/no cell: "Yes", "True" or a number that is not 0.
    bool FnBlnGetYesNo(const Value& cell) const;

  private:
    Session& session_;
};

}  // namespace owb
