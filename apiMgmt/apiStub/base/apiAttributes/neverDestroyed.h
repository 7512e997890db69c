#pragma once

#include <cstddef>
#include <new>

/// Storage for a process-wide value that is built once and never destroyed, so that code which
/// still runs while the process ends (another thread, a late static) can read it.
///
///     static const NEVERDestroyed<std::string> text([] { return std::string("Ping"); });
///     return text.Get();
///
/// As a function-local static it is safe when first used by many threads at once. The value
/// lies inside the object, so what it owns stays reachable for a leak checker.
template <class Value>
class NEVERDestroyed {
public:
    /// `make` returns the value; it is built in place and need be neither copied nor moved.
    template <class Make>
    explicit NEVERDestroyed(Make make) {
        ::new (static_cast<void*>(m_storage)) Value(make());
    }
    NEVERDestroyed(const NEVERDestroyed&) = delete;
    NEVERDestroyed& operator=(const NEVERDestroyed&) = delete;

    const Value& Get() const { return *std::launder(reinterpret_cast<const Value*>(m_storage)); }
    Value& Get() { return *std::launder(reinterpret_cast<Value*>(m_storage)); }

private:
    alignas(Value) std::byte m_storage[sizeof(Value)];
};
