#include <gtest/gtest.h>

#include <sstream>

#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/apiStub/base/methodReturns/tarnResponseStatus.h"

namespace {

std::string streamed(const GENERALError& error) {
    std::ostringstream stream;
    stream << error;
    return stream.str();
}

TARNResponseStatus statusOf(int code, const std::vector<std::string>& messages,
                            const std::string& summary) {
    TARNResponseStatus status;
    status.errorCode = code;
    status.errorMessages = messages;
    status.summary = summary;
    return status;
}

TEST(GeneralError, LogMessageStandsBeforeTheMessage) {
    const struct {
        std::string message, logMessage, logged;
    } cases[] = {{"m", "log", "log"}, {"m", "", "m"}, {"", "log", "log"}, {"", "", ""}};
    for (const auto& test : cases) {
        const GENERALError error("some/source", 12, test.message, test.logMessage);
        EXPECT_EQ(error.what(), test.message);
        EXPECT_EQ(error.GetLogMessage(), test.logged);
        EXPECT_EQ(streamed(error), test.logged);
    }
}

TEST(GeneralError, KeepsTheArgumentsOfEachConversion) {
    const GENERALError error("m %s", "f", 1, 10763, "%s|%lld 100%% %-5.*s %#06x %c %i %zu %5.1f",
                             "Name", -5000000000LL, 2, "cut here", 255U, 'c', -3,
                             static_cast<std::size_t>(9), 2.5);
    EXPECT_STREQ(error.what(), "m %s");
    EXPECT_EQ(error.GetMsgParameters(), "Name|-5000000000|cu|255|c|-3|9|2.5");
    EXPECT_EQ(GENERALError("m", "f", 1, 10001, nullptr).GetMsgParameters(), "");
}

TEST(ApiMethodError, LogsItsStateOrTheCodesOfAStatusRecord) {
    const auto invalid = ErrorStateEnum::InvalidValue;
    TARNResponseStatus status = statusOf(5, {"first", "second"}, "summary");
    status.extErrorCode1 = 7;
    status.extErrorCode2 = -9;
    const std::pair<APIMethodError, std::string> cases[] = {
        // clang-format off
        {{invalid, "f", 1, "100% wrong"},              "Error state[25], Summary[100% wrong]"},
        {{invalid, "f", 1, "m", "log"},                "Error state[25], Summary[log]"},
        {{"m", invalid, "f", 1, 10761, "%s", "Port"},  "Error state[25], Summary[m]"},
        {{status, "f", 3}, "Error code[5], extErrorCode[4294967287:7], Summary[first]"},
        {{statusOf(0, {"first"}, "summary"), "f", 3},  "Error state[10], Summary[summary]"},
        // clang-format on
    };
    for (const auto& [error, logged] : cases) {
        EXPECT_EQ(error.GetLogMessage(), logged);
        EXPECT_EQ(streamed(error), logged) << "the most derived form is streamed";
    }
    EXPECT_STREQ(cases[3].first.what(), "summary");
}

TEST(TarnResponseStatus, SummaryAndDetail) {
    const struct {
        TARNResponseStatus status;
        std::string summary, detail;
    } cases[] = {
        // clang-format off
        {statusOf(0, {"a", "b"}, ""), "", ""},   {statusOf(0, {"a"}, "s"), "s", "s"},
        {statusOf(-1, {"a"}, ""), "", ""},       {statusOf(1, {"a", "b"}, ""), "a", "a"},
        {statusOf(1, {"a"}, "s"), "s", "a"},     {statusOf(1, {}, "s"), "s", "s"},
        // clang-format on
    };
    for (const auto& test : cases) {
        EXPECT_EQ(test.status.GetSummaryErrorMsg(), test.summary);
        EXPECT_EQ(test.status.GetDetailErrorMsg(), test.detail);
    }
}

}  // namespace
