#include "apiMgmt/common/ipc/ipcFraming.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "apiMgmt/proto/apiMgrMsg.pb.h"

namespace ipcFraming {

void encodeLength(std::uint32_t bodySize, std::span<char, kHeaderSize> header) {
    for (std::size_t i = 0; i < kHeaderSize; ++i) {
        header[i] = static_cast<char>(bodySize >> (8 * (kHeaderSize - 1 - i)) & 0xFFU);
    }
}

std::uint32_t decodeLength(std::span<const char, kHeaderSize> header) {
    std::uint32_t bodySize = 0;
    for (const char byte : header) {
        bodySize = bodySize << 8U | static_cast<unsigned char>(byte);
    }
    return bodySize;
}

bool encodeFrame(const protoIPCMsg::GPBIPCMsg& message, std::string& frame) {
    frame.clear();
    const std::size_t bodySize = message.ByteSizeLong();
    if (bodySize == 0 || bodySize > kMaxBodySize) {
        return false;
    }
    frame.resize(kHeaderSize + bodySize);
    encodeLength(static_cast<std::uint32_t>(bodySize),
                 std::span<char, kHeaderSize>(frame.data(), kHeaderSize));
    message.SerializeWithCachedSizesToArray(
        reinterpret_cast<std::uint8_t*>(frame.data() + kHeaderSize));
    return true;
}

bool parseMessage(std::string_view body, protoIPCMsg::GPBIPCMsg& message) {
    return message.ParseFromArray(body.data(), static_cast<int>(body.size()));
}

std::span<char> FrameReader::room() {
    if (m_filled == m_capacity) {
        grow();
    }
    return {data() + m_filled, m_capacity - m_filled};
}

void FrameReader::grow() {
    // Only a known body can fill the buffer, since the header fits it by far.
    const std::size_t capacity = std::min(2 * m_capacity, kHeaderSize + m_bodySize);
    char* const larger = static_cast<char*>(std::realloc(m_heap.get(), capacity));
    if (larger == nullptr) {
        throw std::bad_alloc();
    }
    if (!m_heap) {
        std::memcpy(larger, m_inline.data(), m_filled);
    }
    (void)m_heap.release();
    m_heap.reset(larger);
    m_capacity = capacity;
}

FrameReader::State FrameReader::added(std::size_t count) {
    m_filled += count;
    if (m_bodySize == 0 && m_filled >= kHeaderSize) {
        m_bodySize = decodeLength(std::span<const char, kHeaderSize>(data(), kHeaderSize));
        if (m_bodySize == 0 || m_bodySize > kMaxBodySize) {
            m_state = State::badLength;
        }
    }
    if (m_state == State::wantsMore && m_bodySize > 0 && m_filled >= kHeaderSize + m_bodySize) {
        m_state = State::complete;
    }
    return m_state;
}

std::string_view FrameReader::body() const {
    return m_state == State::complete ? std::string_view(data() + kHeaderSize, m_bodySize)
                                      : std::string_view();
}

bool sendAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

ReceiveResult receiveFrame(int fd, FrameReader& reader) {
    while (reader.state() == FrameReader::State::wantsMore) {
        const std::span<char> room = reader.room();
        const ssize_t got = ::recv(fd, room.data(), room.size(), 0);
        if (got > 0) {
            reader.added(static_cast<std::size_t>(got));
        } else if (got == 0) {
            return ReceiveResult::closed;
        } else if (errno != EINTR) {
            return ReceiveResult::ioError;
        }
    }
    return reader.state() == FrameReader::State::complete ? ReceiveResult::complete
                                                          : ReceiveResult::badLength;
}

}  // namespace ipcFraming
