// Errors of the client side of the database layer: those that never reach the server. Numbers and
// texts are the ones that the family's screens have always shown.
#pragma once

#include <string_view>

#include "base/db_error.h"

namespace owb {

enum class ClientError {
    BadCriteria,      // a Filter or Find text that cannot be read
    NoCurrentRow,     // before the first or behind the last row, or on a deleted one
    NotUpdatable,     // read-only, or a column that is not the table's own
    NoSuchField,      // no column of that name or number
    Closed,           // the operation needs an open object
    Open,             // the operation needs a closed object
    UnknownProvider,  // the connection string names no provider of ours
    RowChanged,       // the row has gone or was changed since it was read
    NoBaseTable,      // the source text does not name exactly one table
    NoKey,            // nothing in the row can tell it from others
};

// The error; `detail` stands behind the text, in brackets, where it helps to find the place.
DbError clientError(ClientError which, std::string_view detail = {});

}  // namespace owb
