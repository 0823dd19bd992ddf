#include "formula/VerifyCusQuery.h"

#include "base/utf8.h"
#include "db/client_error.h"
#include "db/recordset.h"
#include "family/modCommon.h"
#include "formula/CustomQuery.h"
#include "session/Session.h"

namespace owb {

namespace {

bool changesData(const std::string& query) {
    const std::string capitals = upperCase(query);
    for (const char* word : {"DROP", "DELETE", "ALTER", "UPDATE"})
        if (capitals.find(word) != std::string::npos) return true;
    return FnBlnEndsTransaction(query);
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

}  // namespace

bool VerifyCusQuery(Session& session, MessageBoxes& boxes, const std::string& strQuery) {
    if (changesData(strQuery)) {
        boxes.information("Data Manupulation Query is not allowed in this window");
        return false;
    }
    std::string failure;
    try {
        Recordset rs;
        OpenCustomQuery(session, withSamples(session, strQuery), rs);
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
