// A call of a built-in function that is being bound. The files *_functions.cpp of this folder say
// which types each function takes and gives and in which SQL it is computed; what that SQL calls
// stands in tsql/functions.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tsql/bind/binder.h"
#include "tsql/types/types.h"

namespace owb::tsql {

inline const SqlType kBit = SqlType::of(SqlKind::Bit);
inline const SqlType kInt = SqlType::of(SqlKind::Int);
inline const SqlType kBigInt = SqlType::of(SqlKind::BigInt);
inline const SqlType kFloat = SqlType::of(SqlKind::Float);
inline const SqlType kDate = SqlType::of(SqlKind::Date);
inline const SqlType kDateTime = SqlType::of(SqlKind::DateTime);
inline const SqlType kDateTime2 = SqlType::of(SqlKind::DateTime2);
inline const SqlType kVarChar = SqlType::text(SqlKind::VarChar, 8000);
inline const SqlType kNVarChar = SqlType::text(SqlKind::NVarChar, 4000);

struct FunctionCall {
    Binder& binder;
    const Expr& expr;
    const std::string& name;  // upper case
    Args args;

    BoundPtr take(size_t i) { return std::move(args[i]); }
    BoundPtr take(size_t i, const SqlType& type) {
        return binder.convert(std::move(args[i]), type);
    }
    // As text, keeping the text type that it has.
    BoundPtr text(size_t i) {
        if (args[i]->type.isText()) return take(i);
        return take(i, kVarChar);
    }
    BoundPtr op(std::string pattern, SqlType type, Args a) {
        return binder.op(std::move(pattern), type, std::move(a));
    }
    // Throws DbError 8116 for that argument's type.
    [[noreturn]] void refuse(size_t i) const;
};

struct BuiltinFunction {
    size_t minimum, maximum;
    BoundPtr (*make)(FunctionCall&);
    bool lazy = false;  // binds its arguments itself
};

using BuiltinFunctions = std::unordered_map<std::string, BuiltinFunction>;

void addTextBuiltins(BuiltinFunctions& table);
void addNumberBuiltins(BuiltinFunctions& table);
void addDateBuiltins(BuiltinFunctions& table);

}  // namespace owb::tsql
