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
    constexpr size_t kGuardSize = 4096;
    constexpr unsigned char kFiller = 0xA5;
    const auto room = std::make_unique<unsigned char[]>(sizeof(struct soap) + kGuardSize);
    std::memset(room.get(), kFiller, sizeof(struct soap) + kGuardSize);
    auto* context = reinterpret_cast<struct soap*>(room.get());
    soap_init(context);
    EXPECT_EQ(context->state, SOAP_INIT);
    EXPECT_EQ(context->socket, SOAP_INVALID_SOCKET);
    constexpr int kUsualCompression = 6;
    EXPECT_EQ(context->z_level, kUsualCompression);
    for (size_t at = 0; at < kGuardSize; ++at) {
        ASSERT_EQ(room[sizeof(struct soap) + at], kFiller);
    }
    soap_done(context);
}
