#include "tsql/run/session.h"

#include <ctime>

namespace owb::tsql {

namespace {

constexpr int kDeepestCall = 32;

}  // namespace

size_t Frame::variable(const std::string& name, int line) const {
    const int at = code->parsed->findVariable(name);
    if (at < 0) throw makeDbError(137, {name}, line);
    return static_cast<size_t>(at);
}

void Session::noteError(const DbError& e) {
    if (e.before) noteError(*e.before);
    lastError = e.number;
    rowCount = 0;
    DbError noted = e;
    if (noted.procedure.empty() && frame) noted.procedure = frame->procedure;
    if (result) result->errors.push_back(noted);
}

DateTime Session::statementTime() {
    if (statementTime_ == DateTime{}) {
        timespec t{};
        clock_gettime(CLOCK_REALTIME, &t);
        tm local{};
        localtime_r(&t.tv_sec, &local);
        statementTime_ = DateTime::fromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
        statementTime_.tick = (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) * 300 +
                              static_cast<int32_t>(t.tv_nsec / 3333334);
    }
    return statementTime_;
}

std::string Session::workTable(const char* what) {
    return std::string("temp.\"") + what + "~" + std::to_string(++workTables_) + "\"";
}

int Session::functionId(const std::string& name) {
    const std::string folded = foldName(name);
    for (size_t i = 0; i < functionNames_.size(); ++i)
        if (functionNames_[i] == folded) return static_cast<int>(i);
    functionNames_.push_back(folded);
    return static_cast<int>(functionNames_.size() - 1);
}

BindContext Session::bindContext(Frame& f) {
    BindContext context{catalog};
    context.literals = &f.code->parsed->ast.literals;
    context.variables = &f.code->parsed->variables;
    context.pseudoTables = f.pseudoTables;
    context.functionId = [this](const std::string& name) { return functionId(name); };
    return context;
}

CallDepth::CallDepth(Session& session) : session_(session) {
    if (session.depth >= kDeepestCall) throw makeDbError(217);
    ++session.depth;
}

}  // namespace owb::tsql
