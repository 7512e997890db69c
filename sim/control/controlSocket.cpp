#include "sim/control/controlSocket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace sim {

namespace {

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof(address.sun_path)) {
        throw std::runtime_error("control socket: \"" + path + "\" is too long or empty");
    }
    path.copy(address.sun_path, path.size());
    return address;
}

/// Only what a dead simulator left may go: a file at the path is somebody's, and a mistake.
void removeDeadSocket(const std::string& path) {
    struct stat facts {};
    if (::lstat(path.c_str(), &facts) != 0) {
        return;
    }
    if (!S_ISSOCK(facts.st_mode)) {
        throw std::runtime_error("control socket: " + path +
                                 " is there already and is no socket; it is left as it is");
    }
    ::unlink(path.c_str());
}

bool answers(const sockaddr_un& address) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected =
        ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(fd);
    return connected;
}

/// Nobody else may put a socket of their own where ours is looked for.
void makeOwnFolder(const std::string& folder) {
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        throw std::system_error(errno, std::generic_category(), folder);
    }
    struct stat facts {};
    if (::lstat(folder.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode) ||
        facts.st_uid != ::geteuid() || (facts.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        throw std::runtime_error("control socket: " + folder + " is not a folder of your own");
    }
}

}  // namespace

std::string defaultControlPath(int port) {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const std::string folder = runtime != nullptr && *runtime != '\0'
                                   ? std::string(runtime) + "/sanSim"
                                   : "/tmp/sanSim-" + std::to_string(::geteuid());
    return folder + "/" + std::to_string(port) + ".sock";
}

void prepareControlPath(const std::string& path) {
    const sockaddr_un address = addressOf(path);
    const auto slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash);
    if (::access(folder.c_str(), F_OK) != 0 || folder.rfind("/tmp/sanSim-", 0) == 0) {
        makeOwnFolder(folder);
    }
    if (answers(address)) {
        throw std::runtime_error("control socket: another simulator answers at " + path +
                                 "; choose another one with --control");
    }
    removeDeadSocket(path);
}

}  // namespace sim
