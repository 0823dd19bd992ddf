#include "formula/VerifyCusQuery.h"

#include "base/utf8.h"
#include "data/Session.h"
#include "data/modCommon.h"
#include "db/client_error.h"

namespace owb {

namespace {

bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || c == '_' || c == '@' || c == '#';
}

// Words that would begin or end a transaction, for the query is tried in one, and texts run as
// statements, which could hide them; a procedure may be called by its name.
bool escapesTrial(const std::string& capitals) {
    for (size_t at = 0; at < capitals.size();) {
        size_t end = at;
        while (end < capitals.size() &&
               (isLetter(capitals[end]) || (capitals[end] >= '0' && capitals[end] <= '9')))
            ++end;
        const std::string word = capitals.substr(at, end - at);
        for (const char* refused : {"COMMIT", "ROLLBACK", "TRAN", "TRANSACTION", "SP_EXECUTESQL"})
            if (word == refused) return true;
        if (word == "EXEC" || word == "EXECUTE") {
            const size_t next = capitals.find_first_not_of(" \t\r\n", end);
            const bool named =
                next != std::string::npos &&
                ((capitals[next] >= 'A' && capitals[next] <= 'Z') || capitals[next] == '[');
            if (!named) return true;
        }
        at = std::max(end, at + 1);
    }
    return false;
}

bool changesData(const std::string& query) {
    const std::string capitals = upperCase(query);
    for (const char* word : {"DROP", "DELETE", "ALTER", "UPDATE"})
        if (capitals.find(word) != std::string::npos) return true;
    return escapesTrial(capitals);
}

std::string withSamples(const Session& session, std::string query) {
    const std::string month = std::to_string(FnLngMonthYearOfDate(session.now()));
    for (const auto& [parameter, sample] : {std::pair<std::string, std::string>{"$EMPID$", "1"},
                                            {"$EMPDETID$", "1"},
                                            {"$MONTHYEAR$", month},
                                            {"$HOSTNAME$", session.gHostPrefix},
                                            {"$LEVID$", "1"},
                                            {"$ATTHEADID$", "1"}}) {
        std::string capitals = upperCase(query);
        if (capitals.size() != query.size()) capitals = query;
        std::string result;
        size_t at = 0;
        for (size_t found; (found = capitals.find(parameter, at)) != std::string::npos;
             at = found + parameter.size())
            result.append(query, at, found - at).append(sample);
        query = result.append(query, at);
    }
    return query;
}

// Undoes what is done on the connection while it lives. The start of the program may hold a
// transaction of its own, which goes on.
class Trial {
  public:
    explicit Trial(Session& session)
        : connection_(session.gConn),
          inside_(FnVarReadValue(session, "SELECT @@TRANCOUNT", 0).toInt() > 0) {
        if (inside_)
            connection_.Execute("SAVE TRANSACTION VerifyCusQuery");
        else
            connection_.BeginTrans();
    }
    ~Trial() {
        try {
            if (inside_)
                connection_.Execute("ROLLBACK TRANSACTION VerifyCusQuery");
            else
                connection_.RollbackTrans();
        } catch (const DbError&) {  // the failure of the query has undone it already
        }
    }
    Trial(const Trial&) = delete;

  private:
    Connection& connection_;
    bool inside_;
};

}  // namespace

bool VerifyCusQuery(Session& session, MessageBoxes& boxes, const std::string& strQuery) {
    if (changesData(strQuery)) {
        boxes.information("Data Manupulation Query is not allowed in this window");
        return false;
    }
    std::string failure;
    try {
        const Trial trial(session);
        Recordset rs(session.gConn, withSamples(session, strQuery));
        if (rs.State() == 0) throw clientError(ClientError::Closed);  // nothing was selected
        if (rs.FieldCount() > 1)
            failure = "Query Contains More than one fields, can't save details ";
        else if (!rs.Fields(size_t{0}).type().isNumber())
            failure = "Query Should return only Numeric value ";
    } catch (const DbError& error) {
        failure = std::to_string(error.number) + " : " + error.what();
    }
    if (!failure.empty()) boxes.information(failure);
    return failure.empty();
}

}  // namespace owb
