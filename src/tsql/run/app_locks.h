// Application locks: names that sessions lock among themselves (sp_getapplock).
//
// They hold between all connections to one database file, in one process or several. Each name is a
// pair of bytes of a file beside the database ("company.owb-locks"), locked by this connection's
// own descriptor: the system ends the locks when the descriptor goes, however its process ends. The
// file holds nothing, and it stays: one that is removed and made anew would part those who wait.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "tsql/sqlite/sqlite.h"

namespace owb::tsql {

class AppLocks {
  public:
    enum class Owner : uint8_t { Session, Transaction };
    // Each includes those before it. IntentShared goes with all but Exclusive; Update with
    // IntentShared and Shared.
    enum class Mode : uint8_t { None, IntentShared, Shared, Update, Exclusive };

    explicit AppLocks(Sqlite& sqlite) : sqlite_(sqlite) {}
    ~AppLocks();
    AppLocks(const AppLocks&) = delete;
    AppLocks& operator=(const AppLocks&) = delete;

    // Locks without waiting; false when another connection stands in the way. What an owner holds
    // is counted. Throws 3906 for a database that may only be read.
    bool tryLock(const std::string& name, Mode mode, Owner owner);
    // Whether tryLock would succeed now.
    bool isFree(const std::string& name, Mode mode);
    // Undoes one tryLock; false when the owner holds nothing of that name.
    bool release(const std::string& name, Owner owner);
    Mode held(const std::string& name, Owner owner) const;
    void endTransaction();  // releases what transactions own

  private:
    struct Holding {
        std::array<Mode, 2> mode{};  // by owner
        std::array<int, 2> count{};
        Mode strongest() const { return std::max(mode[0], mode[1]); }
    };

    void openFile();
    void loosen(const std::string& name, Mode from, Mode to);
    bool change(const std::string& name, int byte, short type);
    bool foreign(const std::string& name, int byte, short type);

    Sqlite& sqlite_;
    int file_ = -1;  // -1: not opened yet, or a database in memory
    bool opened_ = false;
    std::map<std::string, Holding> holdings_;
};

// The mode of that name, whatever its letters' case; None for a name that is none.
AppLocks::Mode lockModeNamed(const std::string& name);
const char* nameOf(AppLocks::Mode mode);

}  // namespace owb::tsql
