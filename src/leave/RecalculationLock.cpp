#include "leave/RecalculationLock.h"

#include <chrono>
#include <thread>

#include "db/recordset.h"
#include "session/Session.h"
#include "session/lenient_queries.h"
#include "session/queries.h"

namespace owb {

namespace {

constexpr auto kBetweenTries = std::chrono::milliseconds(200);

std::string quoted(const Session& session, const std::string& text) {
    return "N'" + session.gSpChar.FnStrSpSQL(text) + "'";
}

}  // namespace

std::string RecalculationLock::Resource() const {
    return quoted(session_, "OWB recalculation " + session_.gHostPrefix);
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
    const std::string host = quoted(session_, session_.gHostPrefix);
    FnBlnExecute(session_, "DELETE FROM LEV_RECALCULATION WHERE HOSTNAME = " + host +
                               " INSERT INTO LEV_RECALCULATION (HOSTNAME, USERNAME) VALUES (" +
                               host + ", " + quoted(session_, session_.gUser) + ")");
    return true;
}

std::string RecalculationLock::Holder() {
    try {
        return FnVarValueOrThrow(
                   session_,
                   "SELECT USERNAME FROM LEV_RECALCULATION WITH (NOLOCK) WHERE HOSTNAME "
                   "= " +
                       quoted(session_, session_.gHostPrefix),
                   "another user")
            .toText();
    } catch (const DbError&) {
        return "another user";
    }
}

}  // namespace owb
