// Keeps the steps of one statement together: all of them or none.
#pragma once

#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

class AtomicSteps {
  public:
    // `temporary`: nothing but temporary tables is written, for which nobody needs to wait.
    explicit AtomicSteps(Sqlite& sqlite, bool temporary = false);
    ~AtomicSteps();  // undoes what was not committed
    AtomicSteps(const AtomicSteps&) = delete;
    AtomicSteps& operator=(const AtomicSteps&) = delete;

    void commit();

  private:
    Sqlite& sqlite_;
    bool own_;  // a transaction of its own, otherwise a savepoint
    bool finished_ = false;
};

}  // namespace owb::tsql
