#include <gtest/gtest.h>

#include <sstream>

#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/apiStub/base/methodReturns/tarnResponseStatus.h"

namespace {

template <class Error>
std::string Streamed(const Error& error) {
    std::ostringstream stream;
    stream << error;
    return stream.str();
}

TEST(GeneralError, LogMessageStandsBeforeTheMessage) {
    const struct {
        std::string message, logMessage, logged;
    } cases[] = {{"m", "log", "log"}, {"m", "", "m"}, {"", "log", "log"}, {"", "", ""}};
    for (const auto& test : cases) {
        const GENERALError error("some/source", 12, test.message, test.logMessage);
        EXPECT_EQ(error.what(), test.message);
        EXPECT_EQ(error.GetLogMessage(), test.logged);
        EXPECT_EQ(Streamed(error), test.logged);
        EXPECT_EQ(error.GetSourceFile(), "some/source");
        EXPECT_EQ(error.GetSourceLine(), 12);
        EXPECT_EQ(error.GetLocalizedMsgId(), 0U);
    }
}

TEST(GeneralError, KeepsTheArgumentsOfEachConversion) {
    const GENERALError error("m %s", "f", 1, 10763, "%s|%lld 100%% %-5.*s %#06x %c %hhd %zu %5.1f",
                             "Name", -5000000000LL, 2, "cut here", 255U, 'c', -3,
                             static_cast<std::size_t>(9), 2.5);
    EXPECT_STREQ(error.what(), "m %s");
    EXPECT_EQ(error.GetLocalizedMsgId(), 10763U);
    EXPECT_EQ(error.GetMsgParameters(), "Name|-5000000000|cu|255|c|-3|9|2.5");
}

TEST(GeneralError, KeepsNothingWithoutAFormat) {
    const GENERALError error("m", "f", 1, 10001, nullptr);
    EXPECT_EQ(error.GetMsgParameters(), "");
    EXPECT_EQ(error.GetLogMessage(), "m");
}

TEST(ApiMethodError, LogsItsStateWhenThereIsNoCode) {
    const APIMethodError plain(ErrorStateEnum::InvalidRequest, "f", 324, "100% wrong");
    EXPECT_EQ(plain.GetLogMessage(), "Error state[8], Summary[100% wrong]");
    EXPECT_EQ(plain.GetErrorCode(), 0);

    const APIMethodError logged(ErrorStateEnum::InvalidValue, "f", 1, "m", "log");
    EXPECT_EQ(logged.GetLogMessage(), "Error state[25], Summary[log]");

    const APIMethodError formatted("m", ErrorStateEnum::ParsingError, "f", 1, 10761, "%s|%d",
                                   "Port", 0);
    EXPECT_EQ(formatted.GetLogMessage(), "Error state[4], Summary[m]");
    EXPECT_EQ(formatted.GetLocalizedMsgId(), 10761U);
    EXPECT_EQ(formatted.GetMsgParameters(), "Port|0");
}

TEST(ApiMethodError, TakesTheCodesOfAStatusRecord) {
    TARNResponseStatus status;
    status.errorCode = 5;
    status.extErrorCode1 = 7;
    status.extErrorCode2 = -9;
    status.errorMessages = {"first", "second"};
    status.summary = "summary";
    status.statusText = "status";
    const APIMethodError error(status, "f", 3);
    EXPECT_STREQ(error.what(), "summary");
    EXPECT_EQ(error.GetErrorState(), ErrorStateEnum{10});
    EXPECT_EQ(error.GetStatusText(), "status");
    EXPECT_EQ(error.GetLogMessage(), "Error code[5], extErrorCode[4294967287:7], Summary[first]");
    const GENERALError& base = error;
    EXPECT_EQ(Streamed(base), error.GetLogMessage()) << "the most derived form is streamed";

    status.errorCode = 0;
    EXPECT_EQ(APIMethodError(status, "f", 3).GetLogMessage(), "Error state[10], Summary[summary]");
}

TEST(TarnResponseStatus, SummaryAndDetail) {
    const struct {
        int errorCode;
        std::vector<std::string> messages;
        std::string summary, expectedSummary, expectedDetail;
    } cases[] = {
        // clang-format off
        {0, {"a", "b"}, "", "", ""},   {0, {"a"}, "s", "s", "s"}, {-1, {"a"}, "", "", ""},
        {1, {"a", "b"}, "", "a", "a"}, {1, {"a"}, "s", "s", "a"}, {1, {}, "s", "s", "s"},
        // clang-format on
    };
    for (const auto& test : cases) {
        TARNResponseStatus status;
        status.errorCode = test.errorCode;
        status.errorMessages = test.messages;
        status.summary = test.summary;
        EXPECT_EQ(status.GetSummaryErrorMsg(), test.expectedSummary);
        EXPECT_EQ(status.GetDetailErrorMsg(), test.expectedDetail);
    }
}

}  // namespace
