// The tables that names may refer to at one level of a query. Private to the binder.
#pragma once

#include <vector>

#include "tsql/bind/binder.h"

namespace owb::tsql {

struct Binder::Scope {
    std::vector<BoundSource*> sources;
    bool outerJoined = false;  // columns may be NULL whatever their tables say
};

}  // namespace owb::tsql
