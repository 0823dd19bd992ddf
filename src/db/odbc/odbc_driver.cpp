#include "db/odbc/odbc_driver.h"

namespace owb {

std::unique_ptr<Driver> openOdbc(const std::string&, int) {
    throw DbError(-2147467259, 16, 1, 0,
                  "This build has no SQL Server driver. It opens embedded databases: "
                  "Provider=OWBEmbedded;Data Source=<file>.");
}

}  // namespace owb
