#include "tsql/run/catalog_watch.h"

namespace owb::tsql {

void CatalogWatch::look() {
    if (!transactions_.isOpen() && session_.functionDepth == 0 && !unchecked_)
        session_.catalog.refresh();
}

// Whether a statement may have failed for a change that somebody made between the look at the
// catalog and the statement. It did nothing, and may be tried again as things stand now.
bool CatalogWatch::wasOutrun() {
    if (transactions_.isOpen() || session_.functionDepth > 0 || unchecked_) return false;
    const uint64_t version = session_.catalog.version();
    session_.catalog.refresh();
    return session_.catalog.version() != version;
}

void CatalogWatch::checkWhileReading(bool readsFile) {
    unchecked_ = false;
    if (!session_.catalog.stillCurrent(readsFile)) throw StaleCatalog();
}

}  // namespace owb::tsql
