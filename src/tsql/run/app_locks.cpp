#include "tsql/run/app_locks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/utf8.h"

namespace owb::tsql {

namespace {

using Mode = AppLocks::Mode;

// The first byte of a name says who is there: everybody reads it, Exclusive writes it. The second
// one parts those who mean to update.
constexpr int kPresence = 0, kUpdate = 1;

constexpr std::pair<Mode, const char*> kNames[] = {{Mode::None, "NoLock"},
                                                   {Mode::IntentShared, "IntentShared"},
                                                   {Mode::Shared, "Shared"},
                                                   {Mode::Update, "Update"},
                                                   {Mode::Exclusive, "Exclusive"}};

short presenceOf(Mode mode) {
    return mode == Mode::Exclusive ? F_WRLCK : mode == Mode::None ? F_UNLCK : F_RDLCK;
}

struct flock range(const std::string& name, int byte, short type) {
    uint64_t hash = 14695981039346656037ull;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(hash >> 3) * 2 + byte;
    lock.l_len = 1;
    return lock;
}

}  // namespace

Mode lockModeNamed(const std::string& name) {
    for (const auto& [mode, its] : kNames)
        if (mode != Mode::None && equalsIgnoreCaseAscii(name, its)) return mode;
    return Mode::None;
}

const char* nameOf(Mode mode) {
    return kNames[static_cast<int>(mode)].second;
}

AppLocks::~AppLocks() {
    if (file_ >= 0) close(file_);
}

void AppLocks::openFile() {
    if (opened_) return;
    const std::string database = sqlite_.file();
    if (!database.empty()) {
        if (sqlite_.isReadOnly()) throw makeDbError(3906, {sqlite_.path()});
        const std::string path = database + "-locks";
        // Whoever may write the database may lock.
        struct stat s {};
        const bool known = ::stat(database.c_str(), &s) == 0;
        const mode_t mode = known ? s.st_mode & 0666 : 0600;
        file_ = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file_ >= 0)
            (void)fchmod(file_, mode);
        else if (errno == EEXIST)
            file_ = open(path.c_str(), O_RDWR | O_CLOEXEC);
        if (file_ < 0)
            throw makeDbError(
                -3, {"The lock file " + path + " cannot be opened: " + std::strerror(errno) + "."});
    }
    opened_ = true;
}

// False when another connection's lock is in the way.
bool AppLocks::change(const std::string& name, int byte, short type) {
    if (file_ < 0) return true;
    struct flock lock = range(name, byte, type);
    if (fcntl(file_, F_OFD_SETLK, &lock) == 0) return true;
    if (errno == EAGAIN || errno == EACCES) return false;
    throw makeDbError(-3,
                      {std::string("An application lock failed: ") + std::strerror(errno) + "."});
}

bool AppLocks::foreign(const std::string& name, int byte, short type) {
    if (file_ < 0) return false;
    struct flock lock = range(name, byte, type);
    return fcntl(file_, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

// Goes down from one mode to another, which nobody can stand in the way of.
void AppLocks::loosen(const std::string& name, Mode from, Mode to) {
    if (from >= Mode::Update && to < Mode::Update) change(name, kUpdate, F_UNLCK);
    if (presenceOf(from) != presenceOf(to)) change(name, kPresence, presenceOf(to));
}

bool AppLocks::tryLock(const std::string& name, Mode mode, Owner owner) {
    openFile();
    Holding& h = holdings_[name];
    const Mode before = h.strongest();
    if (mode > before) {
        const bool update = mode >= Mode::Update && before < Mode::Update;
        bool granted = !update || change(name, kUpdate, F_WRLCK);
        if (granted && !change(name, kPresence, presenceOf(mode))) {
            if (update) change(name, kUpdate, F_UNLCK);
            granted = false;
        }
        if (!granted) {
            if (before == Mode::None) holdings_.erase(name);
            return false;
        }
    }
    const auto at = static_cast<size_t>(owner);
    h.mode[at] = std::max(h.mode[at], mode);
    ++h.count[at];
    return true;
}

bool AppLocks::isFree(const std::string& name, Mode mode) {
    openFile();
    const auto own = holdings_.find(name);
    if (own != holdings_.end() && own->second.strongest() >= mode) return true;
    if (mode >= Mode::Update && foreign(name, kUpdate, F_WRLCK)) return false;
    return !foreign(name, kPresence, presenceOf(mode));
}

bool AppLocks::release(const std::string& name, Owner owner) {
    const auto at = static_cast<size_t>(owner);
    const auto found = holdings_.find(name);
    if (found == holdings_.end() || found->second.count[at] == 0) return false;
    Holding& h = found->second;
    if (--h.count[at] > 0) return true;
    const Mode before = h.strongest();
    h.mode[at] = Mode::None;
    loosen(name, before, h.strongest());
    if (h.strongest() == Mode::None) holdings_.erase(found);
    return true;
}

Mode AppLocks::held(const std::string& name, Owner owner) const {
    const auto found = holdings_.find(name);
    return found == holdings_.end() ? Mode::None : found->second.mode[static_cast<size_t>(owner)];
}

void AppLocks::endTransaction() {
    for (auto it = holdings_.begin(); it != holdings_.end();) {
        const std::string name = it->first;
        int& count = it->second.count[static_cast<size_t>(Owner::Transaction)];
        ++it;
        count = std::min(count, 1);
        release(name, Owner::Transaction);
    }
}

}  // namespace owb::tsql
