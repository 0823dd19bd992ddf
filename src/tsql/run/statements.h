// Statements one after the other: control flow, errors, and which part of the engine runs what.
//
//  1. Each statement is done or undone by itself, and its triggers with it, unless a transaction is
//     open. A batch holds nothing together.
//  2. An error ends its statement, its scope or its batch (Transactions::reachOf), a TRY block
//  takes
//     it before that. It is noted once, where it stops.
#pragma once

#include "tsql/run/calls.h"
#include "tsql/run/cursors.h"
#include "tsql/run/message_statements.h"
#include "tsql/run/options.h"
#include "tsql/run/scalar_functions.h"
#include "tsql/run/table_definitions.h"
#include "tsql/run/writes.h"

namespace owb::tsql {

class Statements {
  public:
    // What a statement does to those behind it.
    struct Flow {
        enum Kind : uint8_t { Next, Break, Continue, Return, Goto } kind = Next;
        const std::string* label = nullptr;  // Goto
    };

    Statements(Session& session, Transactions& transactions, CatalogWatch& watch, PlanRunner& plans,
               Queries& queries, Writes& writes, TableDefinitions& tables, Calls& calls,
               Cursors& cursors, Options& options, MessageStatements& messages,
               ScalarFunctions& functions)
        : session_(session),
          transactions_(transactions),
          watch_(watch),
          plans_(plans),
          queries_(queries),
          writes_(writes),
          tables_(tables),
          calls_(calls),
          cursors_(cursors),
          options_(options),
          messages_(messages),
          functions_(functions) {}

    Flow run(Frame& frame, const std::vector<StatementPtr>& statements);
    // One by itself; whatever it fails with is a DbError.
    Flow runGuarded(Frame& frame, const Statement& s);

  private:
    Flow runOne(Frame& frame, const Statement& s);
    bool runPlain(Frame& frame, const Statement& s);
    Flow choose(Frame& frame, const CompoundStatement& s);
    Flow loop(Frame& frame, const CompoundStatement& s);
    Flow leave(Frame& frame, const ValueStatement& s);
    Flow tryAndCatch(Frame& frame, const CompoundStatement& s);
    void declare(Frame& frame, const DeclareStatement& s);
    void assign(Frame& frame, const SetStatement& s);
    void write(Frame& frame, const WriteStatement& s);
    void insertExecuted(Frame& frame, const InsertStatement& s);
    void execute(Frame& frame, const Statement& s);
    void changeTransaction(Frame& frame, const TransactionStatement& s);
    void waitFor(Frame& frame, const WaitStatement& s);

    Session& session_;
    Transactions& transactions_;
    CatalogWatch& watch_;
    PlanRunner& plans_;
    Queries& queries_;
    Writes& writes_;
    TableDefinitions& tables_;
    Calls& calls_;
    Cursors& cursors_;
    Options& options_;
    MessageStatements& messages_;
    ScalarFunctions& functions_;
};

}  // namespace owb::tsql
