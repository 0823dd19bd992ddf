#include "session/lenient_queries.h"

#include "session/Session.h"
#include "session/months.h"
#include "session/queries.h"

namespace owb {

namespace {

// A known failure of snapshots under the server's transactions; it means nothing to the user.
constexpr const char* kStaleSnapshot = "Not a valid bookmark.";

std::pair<DateTime, DateTime> periodOf(Session& session, int32_t lngMonthYear) {
    try {
        DateTime first, last;
        GetMonthPeriod(session, lngMonthYear, first, last);
        return {first, last};
    } catch (const DbError& e) {
        session.boxes.critical(e.what());
        return {};
    }
}

}  // namespace

Value FnVarGetValue(Session& session, const std::string& sql, const Value& defaultValue) {
    try {
        return FnVarValueOrThrow(session, sql, defaultValue);
    } catch (const DbError& e) {
        if (std::string(e.what()) != kStaleSnapshot && e.number != 0)
            session.boxes.critical(std::string(e.what()) + " : " + std::to_string(e.number));
        return {};
    }
}

Value FnVarGetJetValue(Session& session, const std::string& sql, const Value& defaultValue) {
    return FnVarGetValue(session, sql, defaultValue);
}

bool FnBlnRecordExists(Session& session, const std::string& sql) {
    try {
        return FnBlnExistsOrThrow(session, sql);
    } catch (const DbError&) {
        return false;
    }
}

bool FnBlnExecute(Session& session, const std::string& sql) {
    try {
        session.gConn.Execute(sql);
        return true;
    } catch (const DbError&) {
        return false;
    }
}

DateTime FnDteMonthStart(Session& session, int32_t lngMonthYear) {
    return periodOf(session, lngMonthYear).first;
}

DateTime FnDteMonthEnd(Session& session, int32_t lngMonthYear) {
    return periodOf(session, lngMonthYear).second;
}

}  // namespace owb
