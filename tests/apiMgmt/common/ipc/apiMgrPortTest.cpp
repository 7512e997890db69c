#include "apiMgmt/common/ipc/apiMgrPort.h"

#include <gtest/gtest.h>

#include "tests/support/fakeServiceDatabase.h"

namespace {

struct LookUp {
    const char* why;
    int entry;
    std::size_t neededBuffer;
    int port;
    int lookUpsOfTwoCalls;
};

class ApiMgrPortTest : public testing::TestWithParam<LookUp> {};

TEST_P(ApiMgrPortTest, IsLookedUpOnce) {
    const LookUp& expected = GetParam();
    fakeServiceDatabase::setPort(expected.entry);
    fakeServiceDatabase::setNeededBuffer(expected.neededBuffer);
    const int before = fakeServiceDatabase::lookUps();
    std::atomic<int> cache{0};

    EXPECT_EQ(getApiMgrPort(cache), expected.port) << expected.why;
    EXPECT_EQ(getApiMgrPort(cache), expected.port) << expected.why;
    EXPECT_EQ(fakeServiceDatabase::lookUps() - before, expected.lookUpsOfTwoCalls) << expected.why;

    // Once known, it stays.
    fakeServiceDatabase::setPort(36009);
    EXPECT_EQ(getApiMgrPort(cache), expected.port == 0 ? 36009 : expected.port) << expected.why;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Ports, ApiMgrPortTest, testing::Values(
    LookUp{"no entry",                  fakeServiceDatabase::noEntry, 1,       35000, 1},
    LookUp{"entry",                     36001,                        1,       36001, 1},
    LookUp{"byte order",                0x1234,                       1,       0x1234, 1},
    LookUp{"upper half",                65535,                        1,       65535, 1},
    LookUp{"port 0 is not kept",        0,                            1,       0,     2},
    LookUp{"entry with many aliases",   36002,                        5000,    36002, 3},
    LookUp{"entry beyond all measure",  36003,                        1 << 24, 35000, 6}
));
// clang-format on

}  // namespace
