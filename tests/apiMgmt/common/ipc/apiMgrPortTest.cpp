#include "apiMgmt/common/ipc/apiMgrPort.h"

#include <gtest/gtest.h>

#include "testbed/fakeServiceDatabase.h"

namespace {

TEST(ApiMgrPortTest, IsLookedUpOnce) {
    const struct {
        const char* why;
        int entry;
        std::size_t neededBuffer;
        int port, lookUpsOfTwoCalls;
    } cases[] = {
        // clang-format off
        {"no entry",                  fakeServiceDatabase::kNoEntry, 1,       35000, 1},
        {"entry",                     36001,                        1,       36001, 1},
        {"byte order",                0x1234,                       1,       0x1234, 1},
        {"upper half",                65535,                        1,       65535, 1},
        {"port 0 is not kept",        0,                            1,       0,     2},
        {"entry with many aliases",   36002,                        5000,    36002, 3},
        {"entry beyond all measure",  36003,                        1 << 24, 35000, 6},
        // clang-format on
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        fakeServiceDatabase::setPort(expected.entry);
        fakeServiceDatabase::neededBuffer = expected.neededBuffer;
        const int before = fakeServiceDatabase::lookUps;
        std::atomic<int> cache{0};
        EXPECT_EQ(getApiMgrPort(cache), expected.port);
        EXPECT_EQ(getApiMgrPort(cache), expected.port);
        EXPECT_EQ(fakeServiceDatabase::lookUps - before, expected.lookUpsOfTwoCalls);
        fakeServiceDatabase::setPort(36009);  // once known, it stays
        EXPECT_EQ(getApiMgrPort(cache), expected.port == 0 ? 36009 : expected.port);
    }
}

}  // namespace
