// A context crosses from the module's C into the engine's library and the plug-in's C++. That the
// two languages agree is what the module asks of each plug-in before it takes it into use.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "host/include/soapInterface.h"

// The library was built elsewhere: what it sets must lie where the headers say, from the first
// member to the last that it sets, and nothing behind the whole.
TEST(ContextLayout, IsTheLibrarysOwn) {
    constexpr size_t guardSize = 4096;
    constexpr unsigned char filler = 0xA5;
    const auto room = std::make_unique<unsigned char[]>(sizeof(struct soap) + guardSize);
    std::memset(room.get(), filler, sizeof(struct soap) + guardSize);
    auto* context = reinterpret_cast<struct soap*>(room.get());
    soap_init(context);
    EXPECT_EQ(context->state, SOAP_INIT);
    EXPECT_EQ(context->socket, SOAP_INVALID_SOCKET);
    constexpr int usualCompression = 6;
    EXPECT_EQ(context->z_level, usualCompression);
    for (size_t at = 0; at < guardSize; ++at) {
        ASSERT_EQ(room[sizeof(struct soap) + at], filler);
    }
    soap_done(context);
}
