// Sees to it that nobody else's change of a table or routine is overlooked: the catalog is looked
// at before every statement that stands in no transaction. Within one nobody else can change it.
#pragma once

#include "tsql/run/transactions.h"

namespace owb::tsql {

class CatalogWatch {
  public:
    CatalogWatch(Session& session, const Transactions& transactions)
        : session_(session), transactions_(transactions) {}

    void look();
    // For the statement that runs; more than one look at it is not needed.
    void lookOnce() {
        if (looked_) return;
        look();
        looked_ = true;
    }
    void statementEnded() { looked_ = false; }
    void batchBegins() { looked_ = true; }

    // Does the work, again while others change the catalog under it.
    template <typename Work>
    void upToDate(Work work) {
        for (int tries = 0;; ++tries) {
            try {
                return work();
            } catch (const RefusedSql&) {
                if (tries == 10 || !wasOutrun()) throw;
            }
        }
    }

    // A SELECT that stands alone is planned on the catalog as it was and asks whether that was
    // right once its read has begun, for less. StaleCatalog is thrown when it was not.
    struct StaleCatalog {};
    bool isUnchecked() const { return unchecked_; }
    void setUnchecked(bool unchecked) { unchecked_ = unchecked; }
    void checkWhileReading(bool readsFile);

  private:
    bool wasOutrun();

    Session& session_;
    const Transactions& transactions_;
    bool looked_ = false;
    bool unchecked_ = false;
};

}  // namespace owb::tsql
