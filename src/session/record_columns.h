// How the loaders of session records read a row: columns matched to members, NULL as the default.
#pragma once

#include <cstdint>
#include <string>

#include "db/recordset.h"
#include "family/modCommon.h"

namespace owb {

template <class Record, class Type>
struct RecordColumn {
    const char* name;
    Type Record::*member;
};

// NULL is false.
template <class Record, size_t N>
void readFlags(Recordset& rs, Record& record, const RecordColumn<Record, bool> (&columns)[N]) {
    for (const auto& column : columns) record.*column.member = rs.Fields(column.name).toBool();
}

inline int32_t numberField(Recordset& rs, const char* name, int32_t defaultValue = 0) {
    return static_cast<int32_t>(FnVarNz(rs.Fields(name).value(), defaultValue).toInt());
}

inline std::string textField(Recordset& rs, const char* name,
                             const std::string& defaultValue = "") {
    return FnVarNz(rs.Fields(name).value(), defaultValue).toText();
}

}  // namespace owb
