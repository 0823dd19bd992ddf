#include "tsql/run/options.h"

#include <algorithm>

#include "base/utf8.h"

namespace owb::tsql {

void Options::setCommandTimeout(int seconds) {
    commandTimeout_ = seconds;
    if (session_.lockTimeout < 0) session_.sqlite.setBusySeconds(seconds);
}

void Options::setLockTimeout(int64_t milliseconds) {
    session_.lockTimeout = std::max<int64_t>(-1, milliseconds);
    if (session_.lockTimeout < 0)
        session_.sqlite.setBusySeconds(commandTimeout_);
    else
        session_.sqlite.setBusyMilliseconds(session_.lockTimeout);
}

bool Options::changesNothing(const OptionStatement& s) const {
    static constexpr const char* kAnyway[] = {"QUOTED_IDENTIFIER", "ARITHABORT",
                                              "NUMERIC_ROUNDABORT", "STATISTICS"};
    static constexpr const char* kOnlyOn[] = {"ANSI_NULLS",    "ANSI_PADDING",
                                              "ANSI_WARNINGS", "ANSI_NULL_DFLT_ON",
                                              "ANSI_DEFAULTS", "CONCAT_NULL_YIELDS_NULL"};
    for (const char* name : kAnyway)
        if (s.option.starts_with(name)) return true;
    for (const char* name : kOnlyOn)
        if (s.option == name && s.on) return true;
    return s.option.starts_with("TRANSACTION ISOLATION");
}

void Options::set(Frame& frame, const OptionStatement& s) {
    if (s.option == "IDENTITY_INSERT") return identity_.allowExplicit(s.table, s.on, s.line);
    if (s.option == "NOCOUNT") {
        session_.noCount = s.on;
        return;
    }
    if (s.option == "XACT_ABORT") {
        session_.options.xactAbort = s.on;
        return;
    }
    if (s.option == "ROWCOUNT") {
        session_.options.rowCount =
            plans_.evaluate(frame, *s.value, SqlType::of(SqlKind::BigInt)).toInt();
        return;
    }
    if (s.option == "LOCK_TIMEOUT")
        return setLockTimeout(plans_.evaluate(frame, *s.value, SqlType::of(SqlKind::Int)).toInt());
    if (changesNothing(s)) return;
    if (s.option == "DATEFIRST" && s.value && plans_.evaluate(frame, *s.value).toText() == "7")
        return;
    // Dates are read in one way alone.
    std::string choice = s.option;
    if (s.value) choice += " " + upperCase(plans_.evaluate(frame, *s.value).toText());
    for (const char* ours : {"DATEFORMAT MDY", "LANGUAGE US_ENGLISH", "LANGUAGE ENGLISH"})
        if (choice == ours) return;
    throw makeDbError(15281, {"SET " + choice}, s.line);
}

}  // namespace owb::tsql
