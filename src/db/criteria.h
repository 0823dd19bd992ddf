// The criteria text of a recordset's Filter and Find, read once and applied to many rows.
//
//   or    := and { OR and }
//   and   := term { AND term }
//   term  := "(" or ")" | field ( = | <> | < | > | <= | >= | LIKE ) value
//
// Fields stand bare or in brackets; values bare, in quotes or between #. LIKE knows * and % for
// any run of characters and _ for one. NULL fits only "= NULL"; "<> NULL" fits all others.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/value.h"

namespace owb {

class Criteria {
  public:
    // Gives the place of a column; throws when there is none of that name.
    using ColumnOf = std::function<size_t(std::string_view name)>;
    using CellOf = std::function<const Value&(size_t column)>;

    // Throws DbError when the text cannot be read.
    Criteria(const std::string& text, const ColumnOf& columnOf);
    ~Criteria();
    Criteria(Criteria&&) noexcept;

    bool fits(const CellOf& cell) const;

    struct Node;

  private:
    std::unique_ptr<Node> root_;
};

}  // namespace owb
