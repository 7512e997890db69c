// Any bytes as a frame, taken in pieces whose sizes the first byte chooses.
#include <algorithm>

#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "fuzz/fuzzTarget.h"

namespace {

// What a reader may hold beyond twice the bytes that came: its own first buffer.
constexpr std::size_t kFirstBuffer = 4096;

ipcFraming::FrameReader::State feed(ipcFraming::FrameReader& reader, std::string_view bytes,
                                    std::size_t step) {
    while (!bytes.empty() && reader.state() == ipcFraming::FrameReader::State::wantsMore) {
        const auto room = reader.room();
        require(!room.empty() && room.size() <= kFirstBuffer + 2 * reader.received());
        const std::size_t count = std::min({step, bytes.size(), room.size()});
        std::copy_n(bytes.begin(), count, room.begin());
        reader.added(count);
        bytes.remove_prefix(count);
    }
    return reader.state();
}

}  // namespace

void drive(std::string_view bytes) {
    if (bytes.empty()) {
        return;
    }
    const std::size_t step = std::size_t{1} + static_cast<unsigned char>(bytes[0]);
    ipcFraming::FrameReader reader;
    protoIPCMsg::GPBIPCMsg message;
    if (feed(reader, bytes.substr(1), step) == ipcFraming::FrameReader::State::complete &&
        ipcFraming::parseMessage(reader.body(), message)) {
        std::string frame;
        ipcFraming::encodeFrame(message, frame);
    }
}
