// The functions that ask the session which runs the statement.
#include <ctime>
#include <random>

#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

using Body = Value (*)(FunctionHost&, SqliteArguments);

// Adds functions of one host.
struct HostFunctions {
    Sqlite& sqlite;
    FunctionHost& host;
    void operator()(const char* name, int count, Body body, bool deterministic) const {
        sqlite.addFunction(
            name, count,
            [&h = host, body](SqliteResult result, SqliteArguments a) { result.give(body(h, a)); },
            deterministic);
    }
};

// What belongs to the statement that runs.
void addStatementFunctions(const HostFunctions& add) {
    // A user's function gives the same value for the same arguments throughout one statement.
    add(
        "t_udf", -1,
        [](FunctionHost& h, SqliteArguments a) { return h.callFunction(a[0].int32(), a.from(1)); },
        true);
    add(
        "t_var", 1, [](FunctionHost& h, SqliteArguments a) { return h.liveVariable(a[0].int32()); },
        false);
    add(
        "t_setvar", 4,
        [](FunctionHost& h, SqliteArguments a) {
            const SqlType from = unpackType(a[1].integer());
            const Value value = a[3].as(from);
            h.setVariable(a[0].int32(), convertValue(value, from, unpackType(a[2].integer())));
            return value;
        },
        false);
    add(
        "t_system", 1,
        [](FunctionHost& h, SqliteArguments a) { return h.systemValue(std::string(a[0].text())); },
        false);
    add(
        "t_now", 0, [](FunctionHost& h, SqliteArguments) { return Value(h.statementTime()); },
        true);
    add(
        "t_utcnow", 0,
        [](FunctionHost& h, SqliteArguments) {
            const std::time_t now = std::time(nullptr);
            std::tm local{};
            localtime_r(&now, &local);
            return Value(DateTime::fromDays(h.statementTime().toDays() -
                                            static_cast<double>(local.tm_gmtoff) / 86400));
        },
        true);
}

// Objects of the database, identity values, locks.
void addObjectFunctions(const HostFunctions& add) {
    add(
        "t_objectid", 2,
        [](FunctionHost& h, SqliteArguments a) {
            if (a[0].isNull()) return Value();
            return h.objectId(std::string(a[0].text()), std::string(a[1].text()));
        },
        false);
    add(
        "t_collength", 2,
        [](FunctionHost& h, SqliteArguments a) {
            if (a.anyNull()) return Value();
            return h.columnLength(std::string(a[0].text()), std::string(a[1].text()));
        },
        false);
    add(
        "t_identity", 0, [](FunctionHost& h, SqliteArguments) { return Value(h.nextIdentity()); },
        false);
    add(
        "t_identcurrent", 1,
        [](FunctionHost& h, SqliteArguments a) { return h.identityOf(std::string(a[0].text())); },
        false);
    add(
        "t_applock", 4,
        [](FunctionHost& h, SqliteArguments a) {
            std::optional<std::string> mode;
            if (!a[2].isNull()) mode = a[2].text();
            const bool owned = !a[3].isNull();
            return h.applicationLock(std::string(a[0].text()), std::string(a[1].text()), mode,
                                     owned ? std::string(a[3].text()) : "Transaction");
        },
        false);
    add(
        "t_newid", 0,
        [](FunctionHost&, SqliteArguments) {
            static thread_local std::mt19937_64 random{std::random_device{}()};
            char b[40];
            const uint64_t x = random(), y = random();
            std::snprintf(b, sizeof b, "%08X-%04X-4%03X-%04X-%012llX",
                          static_cast<unsigned>(x >> 32), static_cast<unsigned>((x >> 16) & 0xFFFF),
                          static_cast<unsigned>(x & 0xFFF),
                          static_cast<unsigned>(((y >> 48) & 0x3FFF) | 0x8000),
                          static_cast<unsigned long long>(y & 0xFFFFFFFFFFFFull));
            return Value(std::string(b));
        },
        false);
}

}  // namespace

void addSessionFunctions(Sqlite& sqlite, FunctionHost& host) {
    const HostFunctions add{sqlite, host};
    addStatementFunctions(add);
    addObjectFunctions(add);
}

}  // namespace owb::tsql
