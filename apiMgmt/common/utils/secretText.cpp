#include "apiMgmt/common/utils/secretText.h"

#include <cstring>

void clearSecret(std::string& text) noexcept {
    ::explicit_bzero(text.data(), text.size());
    text.clear();
}
