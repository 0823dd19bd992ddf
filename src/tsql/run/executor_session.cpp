// What the session holds: the options of SET, and the values that functions ask for.
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include "base/utf8.h"
#include "tsql/run/executor.h"
#include "tsql/types/types.h"

namespace owb::tsql {

// Options that change nothing here are taken; one that would change answers is refused.
void Executor::setOption(Frame& frame, const Statement& s) {
    if (s.option == "IDENTITY_INSERT") {
        const CatalogTablePtr table = catalog_.findTable(s.target);
        if (!table) throw makeDbError(1088, {s.target.text()}, s.line);
        if (table->identityColumn() < 0) throw makeDbError(8106, {table->name}, s.line);
        const std::string name = foldName(table->name);
        if (s.on && !identityInsert_.empty() && identityInsert_ != name)
            throw makeDbError(8107, {identityInsert_, table->name}, s.line);
        if (s.on || identityInsert_ == name) identityInsert_ = s.on ? name : "";
        return;
    }
    if (s.option == "NOCOUNT") {
        noCount_ = s.on;
        return;
    }
    if (s.option == "ROWCOUNT") {
        const SqlType big = SqlType::of(SqlKind::BigInt);
        options_.rowCount = evaluate(frame, *s.value, &big).toInt();
        return;
    }
    if (s.option == "DATEFIRST" && s.value && evaluate(frame, *s.value).toText() == "7") return;
    if (s.option == "LOCK_TIMEOUT") {
        const SqlType whole = SqlType::of(SqlKind::Int);
        lockTimeout_ = std::max<int64_t>(-1, evaluate(frame, *s.value, &whole).toInt());
        if (lockTimeout_ < 0)
            sqlite_->setBusySeconds(commandTimeout_);
        else
            sqlite_->setBusyMilliseconds(lockTimeout_);
        return;
    }
    static constexpr const char* kAnyway[] = {"QUOTED_IDENTIFIER", "ARITHABORT",
                                              "NUMERIC_ROUNDABORT", "STATISTICS"};
    static constexpr const char* kOnlyOn[] = {"ANSI_NULLS",    "ANSI_PADDING",
                                              "ANSI_WARNINGS", "ANSI_NULL_DFLT_ON",
                                              "ANSI_DEFAULTS", "CONCAT_NULL_YIELDS_NULL"};
    for (const char* name : kAnyway)
        if (s.option.starts_with(name)) return;
    for (const char* name : kOnlyOn)
        if (s.option == name && s.on) return;
    if (s.option == "XACT_ABORT") {
        options_.xactAbort = s.on;
        return;
    }
    if (s.option.starts_with("TRANSACTION ISOLATION")) return;
    // Dates are read in one way alone.
    std::string choice = s.option;
    if (s.value) choice += " " + upperCase(evaluate(frame, *s.value).toText());
    for (const char* ours : {"DATEFORMAT MDY", "LANGUAGE US_ENGLISH", "LANGUAGE ENGLISH"})
        if (choice == ours) return;
    throw makeDbError(15281, {"SET " + choice}, s.line);
}

Value Executor::liveVariable(int index) {
    return frame_->variables[index];
}

void Executor::setVariable(int index, Value value) {
    frame_->variables[index] = std::move(value);
}

DateTime Executor::statementTime() {
    if (statementTime_ == DateTime{}) {
        timespec t{};
        clock_gettime(CLOCK_REALTIME, &t);
        tm local{};
        localtime_r(&t.tv_sec, &local);
        statementTime_ = DateTime::fromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
        statementTime_.tick = (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) * 300 +
                              static_cast<int32_t>(t.tv_nsec / 3333334);
    }
    return statementTime_;
}

Value Executor::systemValue(const std::string& name) {
    if (name == "ROWCOUNT") return Value(rowCount_);
    if (name == "ERROR") return Value(lastError_);
    if (name == "TRANCOUNT") return Value(transactions_);
    if (name == "IDENTITY")
        return lastIdentity_.isNull() ? Value() : Value(Decimal(lastIdentity_.asInt(), 0));
    if (name == "SCOPE_IDENTITY")
        return scopeIdentity_.isNull() ? Value() : Value(Decimal(scopeIdentity_.asInt(), 0));
    if (name == "HOST_NAME") return Value(hostName_);
    if (name == "NESTLEVEL") return Value(depth_);
    if (name == "SPID") return Value(static_cast<int64_t>(getpid() % 32768));
    if (name == "DATEFIRST") return Value(7);
    if (name == "LOCK_TIMEOUT") return Value(lockTimeout_);
    if (name == "FETCH_STATUS") return Value(fetchStatus_);
    if (name == "DB_ID") return Value(1);
    if (name == "DB_NAME") return Value(sqlite_->databaseName());
    if (name == "APP_NAME") return Value("Orvane Wagebook");
    if (name == "VERSION") return Value("Orvane Wagebook embedded database");
    if (name == "SERVERNAME") return Value("(embedded)");
    if (name.ends_with("USER_NAME") || name.ends_with("SUSER_SNAME") || name == "SUSER_NAME" ||
        name == "SYSTEM_USER" || name == "CURRENT_USER")
        return Value(name == "USER_NAME" || name == "CURRENT_USER" ? "dbo" : "sa");
    if (name.starts_with("UPDATED:"))
        return Value(std::find(updatedColumns_.begin(), updatedColumns_.end(), name.substr(8)) !=
                     updatedColumns_.end());
    if (name == "XACT_STATE") return Value(doomed_ ? -1 : transactions_ > 0 ? 1 : 0);
    if (!caught_) return {};
    if (name == "ERROR_NUMBER") return Value(caught_->number);
    if (name == "ERROR_MESSAGE") return Value(std::string(caught_->what()));
    if (name == "ERROR_SEVERITY") return Value(caught_->severity);
    if (name == "ERROR_STATE") return Value(caught_->state);
    if (name == "ERROR_LINE") return Value(caught_->line);
    if (name == "ERROR_PROCEDURE")
        return caught_->procedure.empty() ? Value() : Value(caught_->procedure);
    return {};
}

}  // namespace owb::tsql
