// Batches: the parsed form of a text found or made, and run with its errors collected.
#include <algorithm>

#include "tsql/parse/parser.h"
#include "tsql/run/executor.h"

namespace owb::tsql {

namespace {

constexpr size_t kMostTokens = 200000;  // of the parsed texts that are kept, with their plans

}  // namespace

// The shape is the text with its literals taken out: texts of one shape share their plans.
std::shared_ptr<CompiledBatch> Executor::findOrCompile(std::string_view batch) {
    // The very text that was run last of its shape needs no reading.
    std::shared_ptr<CompiledBatch>& recent =
        recentTexts_[std::hash<std::string_view>{}(batch) % recentTexts_.size()];
    if (recent && recent->heldText == batch && recent->running == 0) return recent;
    std::shared_ptr<CompiledBatch> code = findShape(batch);
    if (!code->parsed->definition) {
        code->heldText = batch;
        recent = code;
    }
    return code;
}

std::shared_ptr<CompiledBatch> Executor::findShape(std::string_view batch) {
    const std::vector<Token> tokens = tokenize(batch);
    shape_.clear();
    std::vector<LiteralSlot> literals;
    literals.reserve(8);
    for (const Token& t : tokens) {
        if (t.isLiteral()) {
            literals.push_back(literalOf(t));
            shape_ += '\x01';
            shape_ += static_cast<char>('a' + static_cast<int>(literals.back().type.kind));
        } else {
            shape_ += batch.substr(t.begin, t.end - t.begin);
        }
        shape_ += ' ';
    }
    auto& known = batches_[shape_];
    for (const auto& code : known) {
        if (code->running > 0 || code->parsed->ast.literals.size() < literals.size()) continue;
        bool fits = true;
        for (size_t i = 0; i < literals.size() && fits; ++i) {
            const LiteralSlot& held = code->parsed->ast.literals[i];
            fits = (!held.fixed || held.value == literals[i].value) &&
                   (!held.typeFixed ||
                    (held.type == literals[i].type && held.digits == literals[i].digits));
        }
        if (!fits) continue;
        for (size_t i = 0; i < literals.size(); ++i) {
            LiteralSlot& held = code->parsed->ast.literals[i];
            if (held.fixed) continue;
            held.value = std::move(literals[i].value);
            held.type = literals[i].type;
            held.digits = literals[i].digits;
        }
        return code;
    }
    if (keptTokens_ >= kMostTokens) {
        // Forgetting all is rare and simple; what is used comes back at once.
        const std::string shape = shape_;
        batches_.clear();
        recentTexts_.fill(nullptr);
        keptTokens_ = 0;
        shape_ = shape;
    }
    std::shared_ptr<CompiledBatch> code = compileBatch(std::string(batch));
    if (!code->parsed->definition) {
        auto& list = batches_[shape_];
        if (list.size() >= 16) list.erase(list.begin());
        list.push_back(code);
        keptTokens_ += code->parsed->tokens.size();
    } else if (batches_[shape_].empty()) {
        batches_.erase(shape_);
    }
    return code;
}

// A name that does not exist is found out before anything of the batch runs, as long as nothing
// in the batch itself can bring it about.
void Executor::checkAhead(Frame& frame, const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& s : statements) {
        try {
            switch (s->kind) {
                case StatementKind::Query:
                case StatementKind::DeclareCursor:
                    plan(frame, s.get(), [&](Planner& p) { return p.query(*s->query); });
                    break;
                case StatementKind::Insert:
                    if (s->query || s->defaultValues)
                        plan(frame, s.get(), [&](Planner& p) {
                            return p.insert(*s, foldName(s->target.last()) == identityInsert_);
                        });
                    break;
                case StatementKind::Update:
                    plan(frame, s.get(), [&](Planner& p) { return p.update(*s); });
                    break;
                case StatementKind::Delete:
                    plan(frame, s.get(), [&](Planner& p) { return p.remove(*s); });
                    break;
                case StatementKind::If:
                case StatementKind::While:
                    plan(frame, s->condition.get(),
                         [&](Planner& p) { return p.condition(*s->condition); });
                    break;
                default:
                    break;
            }
        } catch (DbError& e) {
            if (e.line == 0) e.line = s->line;
            if (e.number != 208 && e.number != 544 && e.number != 545 && e.number != 8101) throw;
        }
        checkAhead(frame, s->body);
        checkAhead(frame, s->otherwise);
    }
}

namespace {

bool changesSchema(const std::vector<StatementPtr>& statements) {
    return std::any_of(statements.begin(), statements.end(), [](const StatementPtr& s) {
        switch (s->kind) {
            case StatementKind::CreateTable:
            case StatementKind::AlterTable:
            case StatementKind::Drop:
            case StatementKind::Execute:
            case StatementKind::ExecuteText:
            case StatementKind::Declare: {
                if (s->kind != StatementKind::Declare) return true;
                return std::any_of(s->variables.begin(), s->variables.end(),
                                   [](const VariableDeclaration& v) { return v.isTable; });
            }
            case StatementKind::Query: {
                const QueryBody* first = s->query->body.get();
                while (first->left) first = first->left.get();
                return !first->into.empty();
            }
            default:
                return changesSchema(s->body) || changesSchema(s->otherwise);
        }
    });
}

}  // namespace

BatchResult Executor::run(std::string_view batch) {
    BatchResult result;
    BatchResult* const outer = result_;
    result_ = &result;
    sqlite_->cancelled = false;
    sqlite_->startClock(commandTimeout_);
    try {
        runBatch(batch);
    } catch (const std::exception&) {
        const DbError e = caughtError();
        noteError(e);
        if (transactions_ > 0 && abortsTransaction(e)) rollbackTransaction();
    }
    endBatchTransaction();
    // SQLite gives a transaction up by itself when the disk is full or the like.
    if (transactions_ > 0 && !sqlite_->inTransaction()) {
        transactions_ = 0;
        inTransaction_ = false;
        appLocks_.endTransaction();
        catalog_.rolledBack();
    }
    sqlite_->stopClock();
    result.affected = rowCount_;
    result_ = outer;
    return result;
}

void Executor::runBatch(std::string_view batch) {
    Frame frame;
    frame.code = findOrCompile(batch);
    CompiledBatch* const code = frame.code.get();
    // A lone SELECT asks whether the catalog is current once its read has begun, for less; see
    // runQuery. What it cannot do as things stood is tried again as they stand.
    const bool loneSelect = code->checked && code->parsed->ast.statements.size() == 1 &&
                            code->parsed->ast.statements[0]->kind == StatementKind::Query &&
                            !changesSchema(code->parsed->ast.statements) &&
                            !sqlite_->inTransaction();
    if (sqlite_->rolledBack) catalog_.rolledBack();
    // Within a transaction nobody else changes anything.
    if (!loneSelect && transactions_ == 0) catalog_.refresh();
    fresh_ = true;
    frame.variables.resize(code->parsed->variables.size());
    struct Running {
        Executor& self;
        Frame& frame;
        Frame* outer;
        Running(Executor& e, Frame& f) : self(e), frame(f), outer(e.frame_) {
            e.frame_ = &f;
            ++f.code->running;
        }
        ~Running() {
            self.frame_ = outer;
            --frame.code->running;
        }
    } running(*this, frame);
    if (code->parsed->definition) {
        defineModule(frame);
        return;
    }
    if (loneSelect) {
        const uint64_t version = catalog_.version();
        catalogUnchecked_ = true;
        try {
            runGuarded(frame, *code->parsed->ast.statements[0]);
            catalogUnchecked_ = false;
            return;
        } catch (const StaleCatalog&) {
            catalogUnchecked_ = false;
        } catch (DbError& e) {
            catalogUnchecked_ = false;
            if (e.line == 0) e.line = code->parsed->ast.statements[0]->line;
            catalog_.refresh();
            if (catalog_.version() == version) throw;
        }
    }
    if (!code->checked) {
        if (!changesSchema(code->parsed->ast.statements))
            checkAhead(frame, code->parsed->ast.statements);
        code->checked = true;
    }
    runStatements(frame, code->parsed->ast.statements);
}

void Executor::noteError(const DbError& e) {
    if (e.before) noteError(*e.before);
    lastError_ = e.number;
    rowCount_ = 0;
    DbError noted = e;
    if (noted.procedure.empty() && frame_) noted.procedure = frame_->procedure;
    if (result_) result_->errors.push_back(noted);
}

}  // namespace owb::tsql
