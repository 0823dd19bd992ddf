#include "tsql/functions/functions.h"

namespace owb::tsql {

void addFunctions(Sqlite& sqlite, FunctionHost& host) {
    addConversionFunctions(sqlite);
    addNumberFunctions(sqlite);
    addTextFunctions(sqlite);
    addDateFunctions(sqlite);
    addDateTime2Functions(sqlite);
    addFormatFunction(sqlite);
    addAggregates(sqlite);
    addRowLimitFunctions(sqlite);
    addSessionFunctions(sqlite, host);
    addApply(sqlite, host);
}

}  // namespace owb::tsql
