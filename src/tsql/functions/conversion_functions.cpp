// Conversions: CAST, CONVERT, the silent ones, and a text on its way into a column.
#include "base/utf8.h"
#include "tsql/functions/functions.h"
#include "tsql/types/types.h"

namespace owb::tsql {

namespace {

void convertFunction(SqliteResult context, SqliteArguments a) {
    const SqlType from = unpackType(a[1].integer());
    const SqlType to = unpackType(a[2].integer());
    context.give(convertValue(a[0].as(from), from, to, a[3].int32()));
}

void tryConvertFunction(SqliteResult context, SqliteArguments a) {
    try {
        convertFunction(context, a);
    } catch (const DbError&) {
        context.giveNull();
    }
}

// t_fit(text, length, fixed, table, column): a text on its way into a column.
void fitFunction(SqliteResult context, SqliteArguments a) {
    if (a[0].isNull()) return context.giveNull();
    std::string_view text = a[0].text();
    const auto limit = static_cast<size_t>(a[1].integer());
    size_t length = text.size();
    if (length > limit) {
        length = utf8Length(text);
        if (length > limit) {
            const std::string_view kept = trimRight(text);
            if (utf8Length(kept) > limit)
                throw makeDbError(2628, {a[3].text(), a[4].text(), utf8Substr(text, 0, limit)});
            context.giveText(utf8Substr(text, 0, limit));
            return;
        }
    }
    if (a[2].int32()) {
        std::string padded(text);
        length = utf8Length(text);
        if (length < limit) padded.append(limit - length, ' ');
        return context.giveText(padded);
    }
    context.giveCopy(a[0]);
}

}  // namespace

void addConversionFunctions(Sqlite& sqlite) {
    sqlite.addFunction("t_cv", 4, convertFunction);
    sqlite.addFunction("t_trycv", 4, tryConvertFunction);
    sqlite.addFunction("t_fit", 5, fitFunction);
}

}  // namespace owb::tsql
