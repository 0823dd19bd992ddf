#include "tsql/run/travelling_error.h"

namespace owb::tsql {

TravellingError::TravellingError(const DbError& e) : DbError(e) {
    if (const auto* t = dynamic_cast<const TravellingError*>(&e)) *this = *t;
}

ErrorReach reachOf(const DbError& e) {
    if (const auto* t = dynamic_cast<const TravellingError*>(&e)) {
        if (t->endsBatch || t->undoes) return ErrorReach::Batch;
        if (t->raised) return ErrorReach::Statement;
    }
    switch (e.number) {
        case 207:
        case 208:
        case 209:
        case 213:
        case 4104:
        case 4121:
        case 195:
        case 8120:
        case 8121:
        case 8127:
        case 2714:
        case 206:
        case 15281:
            return ErrorReach::Scope;
        case 241:
        case 242:
        case 244:
        case 245:
        case 248:
        case 8114:
        case 217:
        case 701:  // out of memory
        case 1222:
        case 1105:
        case 3906:
        case 3930:
        case 3998:
        case 8630:  // a failure of the engine itself
            return ErrorReach::Batch;
        case 127:  // counts of rows are judged as the statement runs
        case 1031:
        case 1060:
        case 10742:
        case 10744:
            return ErrorReach::Statement;
        default:
            break;
    }
    if (e.number < 0 || e.severity >= 20) return ErrorReach::Batch;
    if (e.severity == 15) return ErrorReach::Scope;  // found while binding
    return ErrorReach::Statement;
}

}  // namespace owb::tsql
