// One recalculation at a time for a database and host: its work tables bear the host's name.
// Whoever comes second waits, is told for whom, and may cancel. The lock is the server's (an
// application lock of the connection), so it ends with the session that holds it, however that
// ends.
#pragma once

#include "screen/progress.h"

namespace owb {

struct Session;

class RecalculationLock {
  public:
    // Waits for the lock. A session that holds it already gets it at once. Throws DbError.
    RecalculationLock(Session& session, Progress& frm);
    ~RecalculationLock();
    RecalculationLock(const RecalculationLock&) = delete;
    // False when the user cancelled the waiting.
    bool Held() const { return held_; }

  private:
    bool TryToTake();
    std::string Holder();
    std::string Resource() const;

    Session& session_;
    bool held_ = false;
};

}  // namespace owb
