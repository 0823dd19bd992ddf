#include "tsql/run/scalar_functions.h"

namespace owb::tsql {

namespace {

constexpr size_t kMostResults = 200000;

template <class T>
void append(std::string& key, const T& part) {
    key.append(reinterpret_cast<const char*>(&part), sizeof part);
}

std::string keyOf(int id, SqliteArguments arguments) {
    std::string key;
    append(key, id);
    for (int i = 0; i < arguments.count(); ++i) {
        const SqliteValue argument = arguments[i];
        const SqliteValue::Kind kind = argument.kind();
        key += static_cast<char>(kind);
        if (kind == SqliteValue::Integer) {
            append(key, argument.integer());
        } else if (kind == SqliteValue::Real) {
            append(key, argument.real());
        } else if (kind != SqliteValue::Null) {
            const std::string_view text = argument.text();
            append(key, static_cast<uint32_t>(text.size()));
            key += text;
        }
    }
    return key;
}

}  // namespace

const ScalarFunctions::Function& ScalarFunctions::find(int id) {
    const auto at = static_cast<size_t>(id);
    if (at >= functions_.size()) functions_.resize(at + 1);
    Function& f = functions_[at];
    if (f.version != session_.catalog.version()) {
        f.module = session_.catalog.findModule(session_.functionName(id));
        f.code = f.module ? codes_.module(*f.module) : nullptr;
        f.version = session_.catalog.version();
    }
    if (!f.module) throw makeDbError(4121, {"dbo", session_.functionName(id)});
    return f;
}

Value ScalarFunctions::call(int id, SqliteArguments arguments) {
    const Function& function = find(id);
    std::string key = keyOf(id, arguments);
    const auto known = results_.find(key);
    if (known != results_.end()) return known->second;

    CallDepth depth(session_);
    Frame frame(function.code);
    frame.procedure = function.module->name;
    frame.inFunction = true;
    const auto& parameters = frame.code->parsed->definition->parameters;
    for (int i = 0; i < arguments.count(); ++i)
        frame.variables[i] = arguments[i].as(parameters[i].type);
    {
        Restored outer(session_.frame, &frame);
        Restored functions(session_.functionDepth, session_.functionDepth + 1);
        // The statement that calls it still has its own counts to tell.
        const int64_t rows = session_.rowCount;
        const int error = session_.lastError;
        runner_.runFunction(frame);
        session_.rowCount = rows;
        session_.lastError = error;
    }
    if (results_.size() > kMostResults) results_ = {};
    results_[std::move(key)] = frame.returned;
    return frame.returned;
}

}  // namespace owb::tsql
