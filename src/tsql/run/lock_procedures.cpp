#include "tsql/run/lock_procedures.h"

#include <algorithm>
#include <chrono>

#include "base/utf8.h"
#include "tsql/run/arguments.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

using Owner = AppLocks::Owner;
using Mode = AppLocks::Mode;

std::optional<Owner> ownerNamed(const std::string& name) {
    if (equalsIgnoreCaseAscii(name, "Session")) return Owner::Session;
    if (equalsIgnoreCaseAscii(name, "Transaction")) return Owner::Transaction;
    return std::nullopt;
}

// What is locked: the name, which counts letter by letter, under its principal.
std::string lockName(const std::string& principal, const std::string& resource) {
    if (!equalsIgnoreCaseAscii(principal, "public") && !equalsIgnoreCaseAscii(principal, "dbo"))
        throw makeDbError(1202, {principal});
    return lowerCase(principal) + "\n" + utf8Substr(resource, 0, 255);
}

}  // namespace

// The arguments of a call in the order of the names, each as a text; none where nothing is given.
LockProcedures::Texts LockProcedures::namedArguments(Frame& frame, const ExecuteStatement& s,
                                                     const std::string& procedure,
                                                     const std::vector<std::string>& names) {
    const SqlType text = SqlType::text(SqlKind::NVarChar, 4000);
    std::vector<std::optional<Value>> values(names.size());
    const std::vector<size_t> places = argumentPlaces(s, procedure, names);
    for (size_t i = 0; i < places.size(); ++i)
        if (s.arguments[i].value->kind != ExprKind::Default)
            values[places[i]] = plans_.evaluate(frame, *s.arguments[i].value, text);
    return values;
}

// Hands the return code on; an error is told besides, and leaves the code as it is.
void LockProcedures::call(Frame& frame, const ExecuteStatement& s, const std::string& procedure) {
    const auto answer = [&](int code) {
        if (!s.variable.empty()) frame.variables[frame.variable(s.variable, s.line)] = Value(code);
    };
    answer(-999);
    const bool get = procedure == "sp_getapplock";
    const auto arguments =
        namedArguments(frame, s, procedure,
                       get ? std::vector<std::string>{"@Resource", "@LockMode", "@LockOwner",
                                                      "@LockTimeout", "@DbPrincipal"}
                           : std::vector<std::string>{"@Resource", "@LockOwner", "@DbPrincipal"});
    const auto text = [&](size_t at, const char* otherwise) {
        const std::optional<Value>& v = arguments[at];
        return v && !v->isNull() ? v->toText() : std::string(otherwise);
    };
    if (get && !arguments[1]) throw makeDbError(201, {procedure, "@LockMode"}, s.line);
    if (!arguments[0]) return;
    if (arguments[0]->isNull()) throw makeDbError(1224, {"xp_userlock"}, s.line);
    const std::string name = lockName(text(get ? 4 : 2, "public"), arguments[0]->toText());
    const std::optional<Owner> owner = ownerNamed(text(get ? 2 : 1, "Transaction"));
    if (!owner) return;
    if (*owner == Owner::Transaction && !transactions_.isOpen())
        throw makeDbError(3918, {}, s.line);
    if (!get) {
        if (!locks_.release(name, *owner))
            throw makeDbError(1223, {text(2, "public"), arguments[0]->toText()}, s.line);
        return answer(0);
    }
    const std::string mode = text(1, "");
    if (equalsIgnoreCaseAscii(mode, "IntentExclusive"))
        throw makeDbError(15281, {"The lock mode IntentExclusive"}, s.line);
    if (lockModeNamed(mode) == Mode::None) return;
    const SqlType kind = SqlType::of(SqlKind::Int);
    const std::optional<Value>& limit = arguments[3];
    const int64_t timeout =
        limit && !limit->isNull()
            ? convertValue(*limit, SqlType::text(SqlKind::NVarChar, 4000), kind).toInt()
            : session_.lockTimeout;
    if (timeout < -1) throw makeDbError(1227, {"xp_userlock"}, s.line);
    answer(await(name, lockModeNamed(mode), *owner, timeout));
}

// The return code of sp_getapplock; `timeout` in milliseconds, -1 without end. The command's
// time-out and a cancel end the batch instead.
int LockProcedures::await(const std::string& name, Mode mode, Owner owner, int64_t timeout) {
    if (locks_.tryLock(name, mode, owner)) return 0;
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    double nap = 0.0005;
    while (true) {
        const std::chrono::duration<double> waited = Clock::now() - start;
        const double left =
            timeout < 0 ? nap : static_cast<double>(timeout) / 1000 - waited.count();
        if (left <= 0) return -1;
        session_.sqlite.sleep(std::min(nap, left));
        nap = std::min(nap * 2, 0.02);
        if (locks_.tryLock(name, mode, owner)) return 1;
    }
}

// APPLOCK_MODE(principal, resource, owner) and, with a mode, APPLOCK_TEST(..., mode, owner).
Value LockProcedures::ask(const std::string& principal, const std::string& resource,
                          const std::optional<std::string>& mode, const std::string& owner) {
    const char* function = mode ? "applock_test" : "applock_mode";
    const std::optional<Owner> who = ownerNamed(owner);
    if (!who) throw makeDbError(1226, {function});
    if (*who == Owner::Transaction && !transactions_.isOpen()) throw makeDbError(3918);
    const std::string name = lockName(principal, resource);
    if (!mode) return Value(nameOf(locks_.held(name, *who)));
    const Mode wanted = lockModeNamed(*mode);
    if (wanted == Mode::None) throw makeDbError(1225, {function});
    return Value(locks_.isFree(name, wanted) ? 1 : 0);
}

}  // namespace owb::tsql
