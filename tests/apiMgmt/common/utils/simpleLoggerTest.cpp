#include "apiMgmt/common/utils/simpleLogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/syslogCapture.h"

namespace {

using namespace std::string_literals;
using namespace testing;

class SimpleLoggerTest : public Test {
protected:
    SimpleLoggerTest() { SyslogCapture::clear(); }
    ~SimpleLoggerTest() override {
        SimpleLogger::setMask(0xFF);
        SimpleLogger::setIncludeHeader(false);
    }

    static void Log(SimpleLogger::LOGLevel level, const std::string& message,
                    const std::string& category = "SANService") {
        SimpleLogger::DoLog(level, "some/source", "SomeFunction", -7, category, message);
    }
};

TEST_F(SimpleLoggerTest, OpensTheLogForUserProcesses) {
    SimpleLogger::open("SANService");
    SimpleLogger::close();
    EXPECT_THAT(SyslogCapture::lines(),
                ElementsAre(SyslogCapture::Line{LOG_CONS | LOG_USER, "openlog", "SANService"},
                            SyslogCapture::Line{0, "closelog", ""}));
}

TEST_F(SimpleLoggerTest, EachLevelHasItsBitAndItsPriority) {
    const struct {
        int level, priority;
    } cases[] = {{1, 0},  {2, 1},   {4, 2}, {8, 3}, {16, 4},  {32, 5},
                 {64, 6}, {128, 7}, {0, 6}, {3, 6}, {256, 6}, {255, 6}};
    for (const auto& test : cases) {
        EXPECT_EQ(
            SimpleLogger::ConvertToSyslogPriority(static_cast<SimpleLogger::LOGLevel>(test.level)),
            test.priority)
            << test.level;
    }
}

TEST_F(SimpleLoggerTest, MaskAndHeaderDecideWhatIsWritten) {
    EXPECT_EQ(logLevelMask, 255);
    SimpleLogger::setMask(0x17F);  // eight bits are kept
    EXPECT_EQ(logLevelMask, 127);
    Log(SimpleLogger::LOGDebug, "quiet");
    Log(SimpleLogger::LOGWarning, "M");
    SimpleLogger::setIncludeHeader(true);
    Log(SimpleLogger::LOGError, "M");
    EXPECT_THAT(SyslogCapture::lines(),
                ElementsAre(SyslogCapture::Line{LOG_WARNING, "%s",
                                                "level(4) category(SANService) message(M)\n"},
                            SyslogCapture::Line{LOG_ERR, "%s",
                                                "level(3) category(SANService) file(some/source) "
                                                "func(SomeFunction) line(-7) message(M)\n"}));
}

TEST_F(SimpleLoggerTest, ClientTextStaysOneLineAndIsNoFormat) {
    const struct {
        std::string message, written;
    } cases[] = {
        {"100%s %n %d", "100%s %n %d"},
        {"a\nlevel(3) category(SANService) message(forged)",
         "a\\x0alevel(3) category(SANService) message(forged)"},
        {"nothing is\0hidden \xc2\x9b"s, "nothing is\\x00hidden \\xc2\\x9b"},
        {std::string(5000, 'x'), std::string(5000, 'x')},
        {"", ""},
    };
    for (const auto& test : cases) {
        SyslogCapture::clear();
        Log(SimpleLogger::LOGWarning, test.message, test.message);
        EXPECT_THAT(SyslogCapture::lines(),
                    ElementsAre(Field(&SyslogCapture::Line::text, "level(4) category(" +
                                                                      test.written + ") message(" +
                                                                      test.written + ")\n")));
    }
}

// A line is written with the identity that the log has at that moment, whoever opened it.
TEST_F(SimpleLoggerTest, NoThreadTakesTheIdentityFromAnother) {
    constexpr std::size_t kThreads = 8, kRequests = 500;
    std::vector<std::jthread> threads;
    for (std::size_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([] {
            for (std::size_t i = 0; i < kRequests; ++i) {
                SimpleLogger::setMask(127);
                SimpleLogger::open("SANService");
                Log(SimpleLogger::LOGWarning, "M");
                Log(SimpleLogger::LOGDebug, "quiet");
                SimpleLogger::close();
            }
        });
    }
    threads.clear();
    std::string identity;
    std::size_t written = 0, nameless = 0;
    for (const SyslogCapture::Line& line : SyslogCapture::lines()) {
        if (line.format == "openlog" || line.format == "closelog") {
            identity = line.text;
        } else {
            ++written;
            nameless += identity.empty() ? 1 : 0;
        }
    }
    EXPECT_EQ(logLevelMask, 127);
    EXPECT_EQ(written, kThreads * kRequests);
    EXPECT_EQ(nameless, 0U);
    EXPECT_EQ(identity, "") << "the last one closes it";
}

}  // namespace
