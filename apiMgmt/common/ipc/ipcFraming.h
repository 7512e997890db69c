#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace protoIPCMsg {
class GPBIPCMsg;
}

/// How one message travels on a TCP connection, in both directions: a 4-byte unsigned length
/// in network byte order, then that many bytes of one serialized GPBIPCMsg.
///
///     std::string frame;
///     if (ipcFraming::encodeFrame(request, frame) && ipcFraming::sendAll(fd, frame)) {
///         ipcFraming::FrameReader reader;
///         if (ipcFraming::receiveFrame(fd, reader) == ipcFraming::ReceiveResult::complete)
///             ipcFraming::parseMessage(reader.body(), reply);
///     }
namespace ipcFraming {

constexpr std::size_t kHeaderSize = 4;
/// The longest body that may be announced, in bytes (64 MiB). A length of 0 is an error too.
constexpr std::size_t kMaxBodySize = std::size_t{64} * 1024 * 1024;

/// Writes the length of a body as the four bytes of a header.
void encodeLength(std::uint32_t bodySize, std::span<char, kHeaderSize> header);
std::uint32_t decodeLength(std::span<const char, kHeaderSize> header);

/// Puts the header and the serialized message into `frame`, replacing what it held.
/// False when the message is empty or longer than kMaxBodySize; `frame` is then empty.
bool encodeFrame(const protoIPCMsg::GPBIPCMsg& message, std::string& frame);

/// Replaces `message` by the one in `body`. False when the bytes are not a GPBIPCMsg.
bool parseMessage(std::string_view body, protoIPCMsg::GPBIPCMsg& message);

/// Collects one frame from pieces of any size, for a blocking or a polling reader:
/// receive into room(), tell added() how much came, repeat while it wants more.
/// Memory grows with the bytes that came, never with the length that was announced.
class FrameReader {
public:
    enum class State { wantsMore, complete, badLength };

    /// Where the next bytes go; never empty while the state is wantsMore. It may take bytes
    /// beyond the frame: a connection carries one frame each way, so they are of no use.
    /// Valid until the next call of added().
    std::span<char> room();
    /// Takes note of `count` bytes written at the start of room().
    State added(std::size_t count);
    State state() const { return m_state; }
    /// The serialized message once complete; lives as long as the reader.
    std::string_view body() const;
    /// The bytes taken so far, header included.
    std::size_t received() const { return m_filled; }

private:
    // Replies are far below this size, so that most need no memory of their own.
    std::array<char, 4096> m_inline;
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };
    // The C library's own, since it enlarges a large piece of memory without a copy of it.
    std::unique_ptr<char, Free> m_heap;
    std::size_t m_capacity = sizeof(m_inline);
    std::size_t m_filled = 0;
    std::size_t m_bodySize = 0;  // 0 until the header is whole
    State m_state = State::wantsMore;

    char* data() { return m_heap ? m_heap.get() : m_inline.data(); }
    const char* data() const { return m_heap ? m_heap.get() : m_inline.data(); }
    void grow();
};

enum class ReceiveResult { complete, closed, badLength, ioError };

/// Sends all bytes over the blocking socket `fd`. Signals do not interrupt it, and a peer that
/// is gone raises no SIGPIPE. False on an error, which is then in errno.
bool sendAll(int fd, std::string_view bytes);

/// Receives into `reader` until its frame is complete, however small the pieces, and whatever
/// signals arrive. `closed`: the peer ended before that. `ioError`: the reason is in errno; a
/// receive timeout set on the socket shows as EAGAIN.
ReceiveResult receiveFrame(int fd, FrameReader& reader);

}  // namespace ipcFraming
