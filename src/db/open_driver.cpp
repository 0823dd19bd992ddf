#include "db/open_driver.h"

#include "base/utf8.h"
#include "db/client_error.h"
#include "db/connection.h"
#include "db/embedded/embedded_driver.h"
#include "db/odbc/odbc_driver.h"

namespace owb {

std::unique_ptr<Driver> openDriver(const std::string& connectionString, int connectionTimeout) {
    const std::string provider = upperCase(connectionEntry(connectionString, "Provider"));
    if (provider == "OWBEMBEDDED")
        return openEmbedded(connectionEntry(connectionString, "Data Source"), connectionTimeout);
    // A provider may carry its version: SQLOLEDB.1.
    const std::string family = provider.substr(0, provider.find('.'));
    if (family == "SQLOLEDB" || family == "SQLNCLI")
        return openOdbc(connectionString, connectionTimeout);
    throw clientError(ClientError::UnknownProvider, provider);
}

}  // namespace owb
