#include "tsql/run/session_functions.h"

#include <unistd.h>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

std::string ownHostName() {
    char name[256] = "localhost";
    gethostname(name, sizeof name - 1);
    return name;
}

Value identityText(const Value& identity) {
    return identity.isNull() ? Value() : Value(Decimal(identity.asInt(), 0));
}

// ERROR_NUMBER() and its like, in a CATCH block.
Value caughtValue(const DbError& caught, const std::string& name) {
    if (name == "ERROR_NUMBER") return Value(caught.number);
    if (name == "ERROR_MESSAGE") return Value(std::string(caught.what()));
    if (name == "ERROR_SEVERITY") return Value(caught.severity);
    if (name == "ERROR_STATE") return Value(caught.state);
    if (name == "ERROR_LINE") return Value(caught.line);
    if (name == "ERROR_PROCEDURE")
        return caught.procedure.empty() ? Value() : Value(caught.procedure);
    return {};
}

}  // namespace

SessionFunctions::SessionFunctions(Session& session, const Transactions& transactions,
                                   ScalarFunctions& functions, TableFunctions& tables,
                                   IdentityValues& identity, const Triggers& triggers,
                                   const Cursors& cursors, LockProcedures& locks,
                                   const SystemHelp& help, const std::string& hostName)
    : session_(session),
      transactions_(transactions),
      functions_(functions),
      tables_(tables),
      identity_(identity),
      triggers_(triggers),
      cursors_(cursors),
      locks_(locks),
      help_(help),
      hostName_(hostName.empty() ? ownHostName() : hostName) {}

Value SessionFunctions::systemValue(const std::string& name) {
    if (name == "ROWCOUNT") return Value(session_.rowCount);
    if (name == "ERROR") return Value(session_.lastError);
    if (name == "TRANCOUNT") return Value(transactions_.level());
    if (name == "IDENTITY") return identityText(identity_.last());
    if (name == "SCOPE_IDENTITY") return identityText(identity_.ofScope());
    if (name == "HOST_NAME") return Value(hostName_);
    if (name == "NESTLEVEL") return Value(session_.depth);
    if (name == "SPID") return Value(static_cast<int64_t>(getpid() % 32768));
    if (name == "DATEFIRST") return Value(7);
    if (name == "LOCK_TIMEOUT") return Value(session_.lockTimeout);
    if (name == "FETCH_STATUS") return Value(cursors_.fetchStatus());
    if (name == "DB_ID") return Value(1);
    if (name == "DB_NAME") return Value(session_.sqlite.databaseName());
    if (name == "APP_NAME") return Value("Orvane Wagebook");
    if (name == "VERSION") return Value("Orvane Wagebook embedded database");
    if (name == "SERVERNAME") return Value("(embedded)");
    if (name.ends_with("USER_NAME") || name.ends_with("SUSER_SNAME") || name == "SUSER_NAME" ||
        name == "SYSTEM_USER" || name == "CURRENT_USER")
        return Value(name == "USER_NAME" || name == "CURRENT_USER" ? "dbo" : "sa");
    if (name.starts_with("UPDATED:")) return Value(triggers_.isUpdated(name.substr(8)));
    if (name == "XACT_STATE")
        return Value(transactions_.isDoomed() ? -1 : transactions_.isOpen() ? 1 : 0);
    return session_.caught ? caughtValue(*session_.caught, name) : Value();
}

Value SessionFunctions::objectId(const std::string& name, const std::string& kind) {
    const Name written = nameInText(name);
    if (written.empty() || written.parts.size() > 3 || !session_.catalog.isHere(written)) return {};
    const std::string& object = written.last();
    const std::string wanted = upperCase(trim(kind));
    std::string found;
    if (session_.catalog.findTable(object)) {
        found = "U";
    } else if (CatalogModulePtr m = session_.catalog.findModule(object)) {
        found = m->kind == ModuleKind::View             ? "V"
                : m->kind == ModuleKind::Procedure      ? "P"
                : m->kind == ModuleKind::Trigger        ? "TR"
                : m->kind == ModuleKind::ScalarFunction ? "FN"
                : m->kind == ModuleKind::InlineFunction ? "IF"
                                                        : "TF";
    }
    if (found.empty() || (!wanted.empty() && wanted != found)) return {};
    return Value(static_cast<int64_t>(std::hash<std::string>{}(foldName(object)) & 0x7FFFFFFF));
}

Value SessionFunctions::columnLength(const std::string& table, const std::string& column) {
    CatalogTablePtr t = help_.tableNamed(table);
    const int at = t ? t->findColumn(column) : -1;
    if (at < 0) return {};
    const SqlType& type = t->columns[at].type;
    switch (type.kind) {
        case SqlKind::Bit:
        case SqlKind::TinyInt:
            return Value(1);
        case SqlKind::SmallInt:
            return Value(2);
        case SqlKind::Int:
        case SqlKind::SmallMoney:
        case SqlKind::Real:
        case SqlKind::SmallDateTime:
            return Value(4);
        case SqlKind::Time:
            return Value(type.scale <= 2 ? 3 : type.scale <= 4 ? 4 : 5);
        case SqlKind::DateTime2:
            return Value(type.scale <= 2 ? 6 : type.scale <= 4 ? 7 : 8);
        case SqlKind::Date:
            return Value(3);
        case SqlKind::Numeric:
            return Value(type.precision <= 9    ? 5
                         : type.precision <= 19 ? 9
                         : type.precision <= 28 ? 13
                                                : 17);
        default:
            break;
    }
    if (type.isText()) return Value(type.length * (type.isUnicode() && type.length > 0 ? 2 : 1));
    return Value(8);
}

}  // namespace owb::tsql
