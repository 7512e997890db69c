#pragma once

#include <string>

/// Overwrites what `text` holds, also where nobody reads it again, and empties it.
void clearSecret(std::string& text) noexcept;

/// Clears a text that holds a secret when its scope ends, however it ends.
///
///     std::string frame;
///     const SecretScope cleared(frame);
class SecretScope {
public:
    /// `text` outlives the scope.
    explicit SecretScope(std::string& text) : m_text(text) {}
    ~SecretScope() { clearSecret(m_text); }
    SecretScope(const SecretScope&) = delete;
    SecretScope& operator=(const SecretScope&) = delete;

private:
    std::string& m_text;
};
