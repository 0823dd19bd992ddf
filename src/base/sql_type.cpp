#include "base/sql_type.h"

namespace owb {

const char* SqlType::name() const {
    switch (kind) {
        case SqlKind::Null:
            return "int";  // an untyped NULL column becomes int
        case SqlKind::Bit:
            return "bit";
        case SqlKind::TinyInt:
            return "tinyint";
        case SqlKind::SmallInt:
            return "smallint";
        case SqlKind::Int:
            return "int";
        case SqlKind::BigInt:
            return "bigint";
        case SqlKind::SmallMoney:
            return "smallmoney";
        case SqlKind::Money:
            return "money";
        case SqlKind::Numeric:
            return "numeric";
        case SqlKind::Real:
            return "real";
        case SqlKind::Float:
            return "float";
        case SqlKind::Char:
            return "char";
        case SqlKind::VarChar:
            return "varchar";
        case SqlKind::NChar:
            return "nchar";
        case SqlKind::NVarChar:
            return "nvarchar";
        case SqlKind::Date:
            return "date";
        case SqlKind::SmallDateTime:
            return "smalldatetime";
        case SqlKind::DateTime:
            return "datetime";
        case SqlKind::Time:
            return "time";
        case SqlKind::DateTime2:
            return "datetime2";
    }
    return "";
}

std::string SqlType::ddl() const {
    std::string text = name();
    if (kind == SqlKind::Numeric)
        text += "(" + std::to_string(precision) + "," + std::to_string(scale) + ")";
    else if (isClock())
        text += "(" + std::to_string(scale) + ")";
    else if (isText())
        text += "(" + (length == kMax ? "MAX" : std::to_string(length)) + ")";
    return text;
}

}  // namespace owb
