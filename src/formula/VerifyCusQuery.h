// Tries a user's own query, which must give one number, without a trace in the data.
#pragma once

#include <string>

namespace owb {

struct Session;
class MessageBoxes;

// False after a box that tells what is wrong: a word that changes data, a failing run, more than
// one field, a field that is no number. The parameters ($EMPID$, $EMPDETID$, $MONTHYEAR$,
// $HOSTNAME$, $LEVID$, $ATTHEADID$) stand for sample values. The run is undone, whatever the query
// did.
bool VerifyCusQuery(Session& session, MessageBoxes& boxes, const std::string& strQuery);

}  // namespace owb
