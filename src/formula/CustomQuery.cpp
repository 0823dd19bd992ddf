#include "formula/CustomQuery.h"

#include <algorithm>
#include <functional>

#include "base/utf8.h"
#include "db/recordset.h"
#include "session/Session.h"

namespace owb {

namespace {

bool isWordLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '@' || c == '#';
}

// Calls `found(word, place behind it)` for the words of the text, in capitals, until it says true.
bool anyWord(const std::string& capitals,
             const std::function<bool(const std::string&, size_t)>& found) {
    for (size_t at = 0; at < capitals.size();) {
        size_t end = at;
        while (end < capitals.size() && isWordLetter(capitals[end])) ++end;
        if (end > at && found(capitals.substr(at, end - at), end)) return true;
        at = std::max(end, at + 1);
    }
    return false;
}

template <size_t n>
bool isOneOf(const std::string& word, const char* const (&words)[n]) {
    return std::any_of(words, words + n, [&](const char* w) { return word == w; });
}

// Every statement that does more than read and compute holds one of these words. Texts in quotes
// and names count as well: too much is run in a transaction, never too little.
bool mayWrite(const std::string& query) {
    static constexpr const char* kWords[] = {
        "INSERT",    "UPDATE",     "DELETE",  "MERGE",          "TRUNCATE",   "INTO",
        "EXEC",      "EXECUTE",    "CREATE",  "ALTER",          "DROP",       "GRANT",
        "DENY",      "REVOKE",     "BULK",    "DBCC",           "BACKUP",     "RESTORE",
        "KILL",      "SHUTDOWN",   "USE",     "ENABLE",         "DISABLE",    "ADD",
        "WRITETEXT", "UPDATETEXT", "SEND",    "RECEIVE",        "NEXT",       "CHECKPOINT",
        "OPENQUERY", "OPENROWSET", "OPENXML", "OPENDATASOURCE", "RECONFIGURE"};
    static constexpr const char* kFirst[] = {"SELECT", "WITH", "DECLARE", "IF", "SET", "BEGIN"};
    const std::string capitals = upperCase(query);
    std::string first;
    const bool writes = anyWord(capitals, [&](const std::string& word, size_t) {
        if (first.empty()) first = word;
        return isOneOf(word, kWords);
    });
    return writes || !isOneOf(first, kFirst);  // a procedure may be called by its bare name
}

// Undoes what is done on the connection while it lives.
class Undone {
  public:
    explicit Undone(Connection& connection) : connection_(connection) {
        connection_.Execute("IF @@TRANCOUNT = 0 BEGIN TRAN CustomQuery ELSE SAVE TRAN CustomQuery");
    }
    // Throws DbError when it cannot be undone.
    void undo() {
        undone_ = true;
        connection_.Execute("IF @@TRANCOUNT > 0 ROLLBACK TRAN CustomQuery");
    }
    ~Undone() {
        try {
            if (!undone_) undo();
        } catch (const DbError&) {  // the query's own failure is on its way
        }
    }
    Undone(const Undone&) = delete;

  private:
    Connection& connection_;
    bool undone_ = false;
};

}  // namespace

bool FnBlnEndsTransaction(const std::string& query) {
    static constexpr const char* kWords[] = {"COMMIT", "ROLLBACK", "TRAN", "TRANSACTION",
                                             "SP_EXECUTESQL"};
    const std::string capitals = upperCase(query);
    return anyWord(capitals, [&](const std::string& word, size_t end) {
        if (word != "EXEC" && word != "EXECUTE") return isOneOf(word, kWords);
        const size_t next = capitals.find_first_not_of(" \t\r\n", end);
        const bool named =
            next != std::string::npos &&
            ((capitals[next] >= 'A' && capitals[next] <= 'Z') || capitals[next] == '[');
        return !named;
    });
}

void OpenCustomQuery(Session& session, const std::string& query, Recordset& rs) {
    if (FnBlnEndsTransaction(query))
        throw DbError(-3, 16, 1, 0,
                      "A custom query may not begin or end a transaction, nor run a text.");
    if (!mayWrite(query)) return rs.Open(query, session.gConn);
    Undone undone(session.gConn);
    rs.Open(query, session.gConn);
    undone.undo();
}

Value FnVarCustomQuery(Session& session, const std::string& query, const Value& defaultValue) {
    Recordset rs;
    OpenCustomQuery(session, query, rs);
    if (rs.State() == 0 || rs.IsEOF() || rs.Fields(0).isNull()) return defaultValue;
    return rs.Fields(0).value();
}

}  // namespace owb
