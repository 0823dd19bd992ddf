// The companies that the launcher knows: the one that is open, for the programs that it starts, and
// those that were open before. Both stand in the settings store, scrambled as the family scrambles
// connection strings, since one may hold a password.
#pragma once

#include <string>
#include <vector>

#include "session/Session.h"

namespace owb {

class Companies {
  public:
    explicit Companies(Session& session) : session_(session) {}

    // Connection strings, the last one open first.
    std::vector<std::string> recent() const;
    // The first of them, or the one that the settings name for the family's programs; "" none.
    std::string last() const;
    // Opens a company in the session and remembers it; one that cannot be opened is not remembered,
    // and leaves the session without a connection. Throws with a sentence for the user.
    void open(const std::string& connection);
    // Tells programs to come which company they open: the one that the session has open.
    void announce();

    // A file of a company, or a connection string as it is.
    static std::string connectionOf(const std::string& company);
    // "sample.owb - /home/asha/sample.owb", "server: database" - without user and password.
    static std::string inWords(const std::string& connection);

  private:
    void remember(const std::string& connection);

    Session& session_;
};

}  // namespace owb
