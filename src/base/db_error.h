// An error of a database, as SQL Server tells it: the only exception that leaves tsql/ and db/. Its
// numbers and texts are those of the server; the table of them holds what the embedded database
// says.
#pragma once

#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace owb {

struct DbError : std::runtime_error {
    DbError(int number, int severity, int state, int line, const std::string& text)
        : std::runtime_error(text), number(number), severity(severity), state(state), line(line) {}

    int number;    // SQL Server's number; negative for the client's own
    int severity;  // 11 to 16: the statement's or the batch's; 20 and above: the connection's
    int state;
    int line;        // in the batch or routine, from 1; 0 when not known
    int column = 0;  // place of a syntax error in its line, from 1; 0 otherwise
    std::shared_ptr<const DbError> before;  // told ahead of it, as part of the same failure
    std::string procedure;                  // routine in which it happened; "" for the batch itself
};

// Builds the error of that number from the table; each "%" of its text takes the next argument.
DbError makeDbError(int number, std::initializer_list<std::string_view> args = {}, int line = 0);
// `last`, told after `first`, as the server does where one failure makes two errors.
DbError followedBy(DbError first, DbError last);

}  // namespace owb
