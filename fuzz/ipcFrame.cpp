// Any bytes as a frame, taken in pieces whose sizes the first byte chooses.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

namespace {

// What a reader may hold beyond twice the bytes that came: its own first buffer.
constexpr std::size_t firstBuffer = 4096;

ipcFraming::FrameReader::State feed(ipcFraming::FrameReader& reader, std::string_view bytes,
                                    std::size_t step) {
    while (!bytes.empty() && reader.state() == ipcFraming::FrameReader::State::wantsMore) {
        const auto room = reader.room();
        if (room.empty() || room.size() > firstBuffer + 2 * reader.received()) {
            std::abort();
        }
        const std::size_t count = std::min({step, bytes.size(), room.size()});
        std::copy_n(bytes.begin(), count, room.begin());
        reader.added(count);
        bytes.remove_prefix(count);
    }
    return reader.state();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    ipcFraming::FrameReader reader;
    protoIPCMsg::GPBIPCMsg message;
    if (feed(reader, bytes, std::size_t{1} + data[0]) == ipcFraming::FrameReader::State::complete &&
        ipcFraming::parseMessage(reader.body(), message)) {
        std::string frame;
        ipcFraming::encodeFrame(message, frame);
    }
    return 0;
}
