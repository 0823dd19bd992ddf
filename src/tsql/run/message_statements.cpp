#include "tsql/run/message_statements.h"

#include <algorithm>

#include "tsql/run/raised_message.h"

namespace owb::tsql {

void MessageStatements::run(Frame& frame, const Statement& s) {
    switch (s.kind) {
        case StatementKind::Print:
            return print(frame, as<ValueStatement>(s));
        case StatementKind::RaiseError:
            return raise(frame, as<MessageStatement>(s));
        default:
            return throwError(frame, as<MessageStatement>(s));
    }
}

int MessageStatements::whole(Frame& frame, const Argument& a) {
    return static_cast<int>(plans_.evaluate(frame, *a.value).toInt());
}

void MessageStatements::print(Frame& frame, const ValueStatement& s) {
    session_.tell(
        plans_.evaluate(frame, *s.value, SqlType::text(SqlKind::NVarChar, 4000)).toText());
    session_.rowCount = 0;
}

void MessageStatements::raise(Frame& frame, const MessageStatement& s) {
    if (s.arguments.size() < 3) throw makeDbError(102, {"RAISERROR"}, s.line);
    const Value message = plans_.evaluate(frame, *s.arguments[0].value);
    const int severity = whole(frame, s.arguments[1]);
    const int state = whole(frame, s.arguments[2]);
    if (severity > 18 && !s.log) throw makeDbError(2754, {}, s.line);
    std::string text;
    if (message.isText()) {
        std::vector<Value> values;
        for (size_t i = 3; i < s.arguments.size(); ++i)
            values.push_back(plans_.evaluate(frame, *s.arguments[i].value));
        text = raisedMessage(message.asText(), values);
    } else {
        text = "Error " + message.toText() + ", severity " + std::to_string(severity) + ", state " +
               std::to_string(state) +
               " was raised, but no message with that error number was found in sys.messages. If "
               "error is larger than 50000, make sure the user-defined message is added using "
               "sp_addmessage.";
    }
    const int number = message.isText() ? 50000 : static_cast<int>(message.toInt());
    if (severity <= 10) {
        session_.tell(text);
        session_.lastError = s.setsError ? number : 0;
        return;
    }
    TravellingError error(DbError(number, severity, std::max(state, 0), s.line, text));
    error.raised = true;
    throw error;
}

void MessageStatements::throwError(Frame& frame, const MessageStatement& s) {
    if (s.arguments.empty()) {
        if (!session_.caught)
            throw DbError(10704, 15, 1, s.line,
                          "To rethrow an error, a THROW statement must be used inside a CATCH "
                          "block. Insert the THROW statement inside a CATCH block, or add error "
                          "parameters to the THROW statement.");
        TravellingError again = *session_.caught;
        again.endsBatch = true;
        throw again;
    }
    const int number = whole(frame, s.arguments[0]);
    const std::string text = plans_.evaluate(frame, *s.arguments[1].value).toText();
    const int state = whole(frame, s.arguments[2]);
    if (number < 50000) throw makeDbError(35100, {std::to_string(number)}, s.line);
    TravellingError error(DbError(number, 16, state, s.line, text));
    error.endsBatch = true;
    throw error;
}

}  // namespace owb::tsql
