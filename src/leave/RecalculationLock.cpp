#include "leave/RecalculationLock.h"

#include <chrono>
#include <thread>

#include "db/recordset.h"
#include "db/sql_text.h"
#include "session/Session.h"
#include "session/lenient_queries.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr auto kBetweenTries = std::chrono::milliseconds(200);

}  // namespace

std::string RecalculationLock::Resource() const {
    return literal("OWB recalculation " + session_.gHostPrefix);
}

RecalculationLock::RecalculationLock(Session& session, Progress& frm) : session_(session) {
    held_ = session_.gRecalculating > 0 || TryToTake();
    while (!held_ && !frm.cancelled()) {
        frm.status("Waiting for the recalculation of " + Holder() + " ...");
        std::this_thread::sleep_for(kBetweenTries);
        held_ = TryToTake();
    }
    if (held_) ++session_.gRecalculating;
}

// A lock that cannot be given back has ended with its connection.
RecalculationLock::~RecalculationLock() {
    if (!held_ || --session_.gRecalculating > 0) return;
    FnBlnExecute(session_,
                 "EXEC sp_releaseapplock @Resource = " + Resource() + ", @LockOwner = 'Session'");
}

// The name of the holder is for those who wait alone, so that it may fail.
bool RecalculationLock::TryToTake() {
    if (FnVarValueOrThrow(session_,
                          "DECLARE @GOT int EXEC @GOT = sp_getapplock @Resource = " + Resource() +
                              ", @LockMode = 'Exclusive', @LockOwner = 'Session', "
                              "@LockTimeout = 0 SELECT @GOT")
            .toInt() < 0)
        return false;
    const std::string host = literal(session_.gHostPrefix);
    FnBlnExecute(session_, Sql() << "DELETE FROM LEV_RECALCULATION WHERE HOSTNAME = " << host
                                 << " INSERT INTO LEV_RECALCULATION (HOSTNAME, USERNAME) VALUES ("
                                 << host << ", " << literal(session_.gUser) << ")");
    return true;
}

std::string RecalculationLock::Holder() {
    try {
        return FnVarValueOrThrow(
                   session_,
                   "SELECT USERNAME FROM LEV_RECALCULATION WITH (NOLOCK) WHERE HOSTNAME "
                   "= " +
                       literal(session_.gHostPrefix),
                   "another user")
            .toText();
    } catch (const DbError&) {
        return "another user";
    }
}

}  // namespace owb
