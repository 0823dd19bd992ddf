// Builds typed expressions: operators, comparisons and conversions. It knows T-SQL's types and puts
// in the conversions that T-SQL makes silently; names and queries are the Binder's.
//
// An expression of kind Op is a pattern in SQLite's words, its operands named $0, $1; ... in it.
#pragma once

#include <string>
#include <vector>

#include "tsql/bind/bind_context.h"
#include "tsql/bind/bound.h"

namespace owb::tsql {

using Args = std::vector<BoundPtr>;

template <class... A>
Args list(A... a) {
    Args v;
    (v.push_back(std::move(a)), ...);
    return v;
}

class TypedExpressions {
  public:
    explicit TypedExpressions(BindContext& context) : context_(context) {}

    BoundPtr op(std::string pattern, SqlType type, Args args);
    BoundPtr predicate(std::string pattern, Args args);  // a three-valued truth
    BoundPtr verbatim(std::string sql, SqlType type);
    BoundPtr constant(Value value, SqlType type);
    BoundPtr null(SqlType type = {});

    BoundPtr compare(const std::string& op, BoundPtr a, BoundPtr b);
    // + - * / % & | ^ (arithmetic.cpp)
    BoundPtr arithmetic(char op, BoundPtr a, BoundPtr b, int line);
    // Brings all to their common type.
    SqlType unify(const std::vector<BoundPtr*>& values);

    // --- conversions (conversion.cpp) ---
    // The silent one, and that of CAST and CONVERT. `checked`: a value that its new type cannot
    // hold is an error even where the old representation would do.
    BoundPtr convert(BoundPtr e, const SqlType& to);
    BoundPtr cast(BoundPtr e, const SqlType& to, int style, bool tryCast, bool checked);
    // As an assignment to that column: text that does not fit is an error.
    BoundPtr assign(BoundPtr e, const CatalogTable& table, const CatalogColumn& column);

  protected:
    BindContext& context_;
    int conditional_ = 0;  // depth in CASE and its like, where a conversion may never run

  private:
    BoundPtr joined(BoundPtr a, BoundPtr b);
    BoundPtr bitwise(char op, BoundPtr a, BoundPtr b, int line);
    BoundPtr onDates(char op, BoundPtr a, BoundPtr b, const SqlType& type);
    BoundPtr onFloats(char op, BoundPtr a, BoundPtr b, const SqlType& type);
    BoundPtr onMoney(char op, BoundPtr a, BoundPtr b, const SqlType& type);
    BoundPtr onWhole(char op, BoundPtr a, BoundPtr b, const SqlType& type);
    BoundPtr onNumeric(char op, BoundPtr a, BoundPtr b);
    BoundPtr total(char op, BoundPtr a, BoundPtr b, const SqlType& type);
    SqlType operandNumeric(const BoundExpr& e) const;
    std::string directPattern(const BoundExpr& e, const SqlType& to, bool checked) const;
};

bool isWide(const SqlType& type);  // a numeric beyond 64 bits
std::string powerText(int n);      // 10^n

}  // namespace owb::tsql
