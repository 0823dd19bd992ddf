#include "app/LocalTalk.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace owb {

namespace {

constexpr size_t kLongest = 4096;

bool addressOf(const std::string& path, sockaddr_un& address) {
    address = {};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, path.data(), path.size());
    return true;
}

int openSocket() {
    return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

}  // namespace

bool SendLocalMessage(const std::string& path, const std::string& message) {
    sockaddr_un address;
    if (!addressOf(path, address)) return false;
    const int descriptor = openSocket();
    if (descriptor < 0) return false;
    const ssize_t sent =
        ::sendto(descriptor, message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::close(descriptor);
    return sent == static_cast<ssize_t>(message.size());
}

LocalListener::LocalListener(std::string path) : path_(std::move(path)) {
    sockaddr_un address;
    if (!addressOf(path_, address))
        throw std::runtime_error("The name of the socket is too long: " + path_);
    ::unlink(path_.c_str());
    descriptor_ = openSocket();
    if (descriptor_ < 0 ||
        ::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const std::string reason = std::strerror(errno);
        if (descriptor_ >= 0) ::close(descriptor_);
        throw std::runtime_error("Cannot listen on " + path_ + ": " + reason);
    }
}

LocalListener::~LocalListener() {
    ::close(descriptor_);
    ::unlink(path_.c_str());
}

std::vector<std::string> LocalListener::take() {
    std::vector<std::string> messages;
    char buffer[kLongest];
    for (ssize_t got; (got = ::recv(descriptor_, buffer, sizeof buffer, MSG_DONTWAIT)) >= 0;)
        messages.emplace_back(buffer, static_cast<size_t>(got));
    return messages;
}

}  // namespace owb
