// Registration, conversions, and the functions that ask the session.
#include "tsql/functions/functions.h"

#include <ctime>
#include <random>

#include "base/utf8.h"
#include "tsql/functions/apply.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

struct Registered {
    Sqlite* sqlite;
    FunctionBody body;
};

void trampoline(sqlite3_context* context, int count, sqlite3_value** arguments) {
    const auto* r = static_cast<Registered*>(sqlite3_user_data(context));
    try {
        r->body(context, count, arguments);
    } catch (...) {
        r->sqlite->raise(caughtError());
        sqlite3_result_error(context, "failed", -1);
    }
}

struct HostCall {
    Sqlite* sqlite;
    FunctionHost* host;
    Value (*body)(FunctionHost&, int, sqlite3_value**);
};

void hostTrampoline(sqlite3_context* context, int count, sqlite3_value** arguments) {
    const auto* h = static_cast<HostCall*>(sqlite3_user_data(context));
    try {
        resultValue(context, h->body(*h->host, count, arguments));
    } catch (...) {
        h->sqlite->raise(caughtError());
        sqlite3_result_error(context, "failed", -1);
    }
}

void registerHostFunction(Sqlite& sqlite, FunctionHost& host, const char* name, int count,
                          Value (*body)(FunctionHost&, int, sqlite3_value**), bool deterministic) {
    auto* h = new HostCall{&sqlite, &host, body};
    sqlite3_create_function_v2(
        sqlite.handle(), name, count, SQLITE_UTF8 | (deterministic ? SQLITE_DETERMINISTIC : 0), h,
        hostTrampoline, nullptr, nullptr, [](void* p) { delete static_cast<HostCall*>(p); });
}

void convertFunction(sqlite3_context* context, int, sqlite3_value** a) {
    const SqlType from = unpackType(sqlite3_value_int64(a[1]));
    const SqlType to = unpackType(sqlite3_value_int64(a[2]));
    resultValue(context,
                convertValue(argumentValue(a[0], from), from, to, sqlite3_value_int(a[3])));
}

void tryConvertFunction(sqlite3_context* context, int n, sqlite3_value** a) {
    try {
        convertFunction(context, n, a);
    } catch (const DbError&) {
        sqlite3_result_null(context);
    }
}

// t_fit(text, length, fixed, table, column): a text on its way into a column.
void fitFunction(sqlite3_context* context, int, sqlite3_value** a) {
    if (sqlite3_value_type(a[0]) == SQLITE_NULL) return sqlite3_result_null(context);
    std::string_view text = argumentText(a[0]);
    const auto limit = static_cast<size_t>(sqlite3_value_int64(a[1]));
    size_t length = text.size();
    if (length > limit) {
        length = utf8Length(text);
        if (length > limit) {
            const std::string_view kept = trimRight(text);
            if (utf8Length(kept) > limit)
                throw makeDbError(
                    2628, {argumentText(a[3]), argumentText(a[4]), utf8Substr(text, 0, limit)});
            resultText(context, utf8Substr(text, 0, limit));
            return;
        }
    }
    if (sqlite3_value_int(a[2])) {
        std::string padded(text);
        length = utf8Length(text);
        if (length < limit) padded.append(limit - length, ' ');
        return resultText(context, padded);
    }
    sqlite3_result_value(context, a[0]);
}

// t_one: the single value of a scalar subquery.
struct OneState {
    sqlite3_value* value;
    int rows;
};

void oneStep(sqlite3_context* context, int, sqlite3_value** a) {
    auto* s = static_cast<OneState*>(sqlite3_aggregate_context(context, sizeof(OneState)));
    if (!s) return;
    if (++s->rows > 1) {
        auto* sqlite = static_cast<Sqlite*>(sqlite3_user_data(context));
        sqlite->raise(makeDbError(512));
        sqlite3_result_error(context, "more than one row", -1);
        return;
    }
    s->value = sqlite3_value_dup(a[0]);
}

void oneFinal(sqlite3_context* context) {
    auto* s = static_cast<OneState*>(sqlite3_aggregate_context(context, 0));
    if (!s) return;
    if (s->value && s->rows == 1) sqlite3_result_value(context, s->value);
    sqlite3_value_free(s->value);
}

}  // namespace

void registerFunction(Sqlite& sqlite, const char* name, int count, FunctionBody body,
                      bool deterministic) {
    auto* r = new Registered{&sqlite, body};
    sqlite3_create_function_v2(
        sqlite.handle(), name, count, SQLITE_UTF8 | (deterministic ? SQLITE_DETERMINISTIC : 0), r,
        trampoline, nullptr, nullptr, [](void* p) { delete static_cast<Registered*>(p); });
}

bool anyNull(int count, sqlite3_value** arguments) {
    for (int i = 0; i < count; ++i)
        if (sqlite3_value_type(arguments[i]) == SQLITE_NULL) return true;
    return false;
}

std::string_view argumentText(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return text ? std::string_view(text, sqlite3_value_bytes(value)) : std::string_view();
}

void resultText(sqlite3_context* context, std::string_view text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void registerFunctions(Sqlite& sqlite, FunctionHost& host) {
    registerFunction(sqlite, "t_cv", 4, convertFunction);
    registerFunction(sqlite, "t_trycv", 4, tryConvertFunction);
    registerFunction(sqlite, "t_fit", 5, fitFunction);
    sqlite3_create_function_v2(sqlite.handle(), "t_one", 1, SQLITE_UTF8, &sqlite, nullptr, oneStep,
                               oneFinal, nullptr);
    registerNumberFunctions(sqlite);
    registerTextFunctions(sqlite);
    registerDateFunctions(sqlite);
    registerClockFunctions(sqlite);
    registerFormatFunction(sqlite);
    registerAggregates(sqlite);
    registerRowFunctions(sqlite);
    registerApply(sqlite, host);

    // A user's function gives the same value for the same arguments throughout one statement.
    registerHostFunction(
        sqlite, host, "t_udf", -1,
        [](FunctionHost& h, int n, sqlite3_value** a) {
            return h.callFunction(sqlite3_value_int(a[0]), n - 1, a + 1);
        },
        true);
    registerHostFunction(
        sqlite, host, "t_var", 1,
        [](FunctionHost& h, int, sqlite3_value** a) {
            return h.liveVariable(sqlite3_value_int(a[0]));
        },
        false);
    registerHostFunction(
        sqlite, host, "t_setvar", 4,
        [](FunctionHost& h, int, sqlite3_value** a) {
            const SqlType from = unpackType(sqlite3_value_int64(a[1]));
            const Value value = argumentValue(a[3], from);
            h.setVariable(sqlite3_value_int(a[0]),
                          convertValue(value, from, unpackType(sqlite3_value_int64(a[2]))));
            return value;
        },
        false);
    registerHostFunction(
        sqlite, host, "t_system", 1,
        [](FunctionHost& h, int, sqlite3_value** a) {
            return h.systemValue(std::string(argumentText(a[0])));
        },
        false);
    registerHostFunction(
        sqlite, host, "t_now", 0,
        [](FunctionHost& h, int, sqlite3_value**) { return Value(h.statementTime()); }, true);
    registerHostFunction(
        sqlite, host, "t_utcnow", 0,
        [](FunctionHost& h, int, sqlite3_value**) {
            const std::time_t now = std::time(nullptr);
            std::tm local{};
            localtime_r(&now, &local);
            return Value(DateTime::fromDays(h.statementTime().toDays() -
                                            static_cast<double>(local.tm_gmtoff) / 86400));
        },
        true);
    registerHostFunction(
        sqlite, host, "t_objectid", 2,
        [](FunctionHost& h, int, sqlite3_value** a) {
            if (sqlite3_value_type(a[0]) == SQLITE_NULL) return Value();
            return h.objectId(std::string(argumentText(a[0])), std::string(argumentText(a[1])));
        },
        false);
    registerHostFunction(
        sqlite, host, "t_collength", 2,
        [](FunctionHost& h, int n, sqlite3_value** a) {
            if (anyNull(n, a)) return Value();
            return h.columnLength(std::string(argumentText(a[0])), std::string(argumentText(a[1])));
        },
        false);
    registerHostFunction(
        sqlite, host, "t_identity", 0,
        [](FunctionHost& h, int, sqlite3_value**) { return Value(h.nextIdentity()); }, false);
    registerHostFunction(
        sqlite, host, "t_identcurrent", 1,
        [](FunctionHost& h, int, sqlite3_value** a) {
            return h.identityOf(std::string(argumentText(a[0])));
        },
        false);
    registerHostFunction(
        sqlite, host, "t_applock", 4,
        [](FunctionHost& h, int, sqlite3_value** a) {
            std::optional<std::string> mode;
            if (sqlite3_value_type(a[2]) != SQLITE_NULL) mode = argumentText(a[2]);
            const bool owned = sqlite3_value_type(a[3]) != SQLITE_NULL;
            return h.applicationLock(std::string(argumentText(a[0])),
                                     std::string(argumentText(a[1])), mode,
                                     owned ? std::string(argumentText(a[3])) : "Transaction");
        },
        false);
    registerHostFunction(
        sqlite, host, "t_newid", 0,
        [](FunctionHost&, int, sqlite3_value**) {
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

}  // namespace owb::tsql
