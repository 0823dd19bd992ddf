// Cursors: each walks over a snapshot that its OPEN takes. The variables in its query count as they
// stood at DECLARE.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "tsql/run/queries.h"

namespace owb::tsql {

struct Cursor {
    Cursor(const CursorStatement& s, const Frame& frame);
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    const CursorStatement& statement;
    std::shared_ptr<CompiledBatch> code;  // that the statement stands in
    std::vector<Value> variables;
    ResultSet rows;
    int64_t at = -1;
    bool open = false;
    bool scroll = false;
};

class Cursors {
  public:
    Cursors(Session& session, PlanRunner& plans, Queries& queries)
        : session_(session), plans_(plans), queries_(queries) {}

    void run(Frame& frame, const CursorStatement& s);
    int fetchStatus() const { return fetchStatus_; }

  private:
    void declare(Frame& frame, const CursorStatement& s);
    std::shared_ptr<Cursor> find(Frame& frame, const std::string& name) const;
    void open(Frame& frame, Cursor& cursor);
    void close(Cursor& cursor);
    void fetch(Frame& frame, Cursor& cursor, const CursorStatement& s);
    int64_t placeOf(Frame& frame, const Cursor& cursor, const CursorStatement& s);

    Session& session_;
    PlanRunner& plans_;
    Queries& queries_;
    std::map<std::string, std::shared_ptr<Cursor>> global_;  // by folded name
    int fetchStatus_ = 0;
};

}  // namespace owb::tsql
