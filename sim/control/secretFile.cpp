#include "sim/control/secretFile.h"

#include <openssl/rand.h>
#include <sys/stat.h>

#include <array>
#include <fstream>
#include <stdexcept>

namespace sim {

std::string readSecretFile(const std::string& file) {
    struct stat facts {};
    std::ifstream in(file);
    std::string secret;
    if (::stat(file.c_str(), &facts) != 0 || !std::getline(in, secret)) {
        throw std::runtime_error(file + ": no token can be read from it");
    }
    if ((facts.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw std::runtime_error(file + ": others may read it; chmod 600 it first");
    }
    if (secret.empty()) {
        throw std::runtime_error(file + ": its first line is empty");
    }
    return secret;
}

std::string makeToken() {
    std::array<unsigned char, 16> bytes{};
    if (::RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error("no token can be made: the system has no random bytes");
    }
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string out;
    for (const unsigned char byte : bytes) {
        out += kDigits[byte >> 4U];
        out += kDigits[byte & 15U];
    }
    return out;
}

}  // namespace sim
