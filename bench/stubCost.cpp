// What the API stub costs: rendering a request, reading a reply, and one exchange beside a bare
// connect, send and receive of the same bytes.
//
//     stubCost                          everything, the ratios last
//     stubCost --benchmark_filter=Reply
//
// The ratios come from short rounds of each kind in turn, so that a busy machine spoils all
// kinds alike; the spread of the rounds says whether it did.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "bench/allocationCount.h"
#include "testbed/fakeServiceDatabase.h"
#include "testbed/scriptedPeer.h"

namespace {

using AddHccToSan = APITarnHostCache::APITarnHostCacheAddHccToSanMethod;
using protoIPCMsg::GPBIPCMsg;
using ReturnPtr = std::unique_ptr<BASEApiMethodReturn>;

constexpr int kNodes = 4;
constexpr int kRounds = 101;
constexpr int kExchangesPerRound = 50;

const APIHccReqHeader kHeader{"2.3", "admin:secret", "", "hcc-1", "10.0.0.9", "10.0.0.1"};

/// The request that a cluster of four nodes sends when it joins.
void fill(AddHccToSan& method) {
    std::vector<APIIpv4AddressPort> addresses(kNodes);
    std::vector<const BASEApiMethodObject*> list;
    for (int i = 0; i < kNodes; ++i) {
        addresses[i].SetIpv4Address("10.20.30." + std::to_string(i + 1));
        addresses[i].SetPort(3260);
        list.push_back(&addresses[i]);
    }
    method.SetHccId("hcc-1");
    method.SetHccName("Cluster of four");
    method.SetHccKey("0123456789abcdef");
    method.SetIpv4AddressPortList(list);
}

/// The reply to an attached volume: one method-object with both SCSI identities.
GPBIPCMsg makeReply() {
    auto record = std::make_unique<APINorvaneScsiInformation>();
    record->SetOriginalScsiDeviceId("6000d31000006b000000000000000123");
    record->SetOriginalScsiSerialNumber("0000006b-00000123");
    record->SetAliasScsiDeviceId("6000d31000006b000000000000000456");
    record->SetAliasScsiSerialNumber("0000006b-00000456");
    METHODObjectMethodReturn outcome(false);
    outcome.SetReturnObject(record.release(), false);
    GPBIPCMsg reply;
    reply.set_msgtype(protoIPCMsg::IPC_API_RESPONSE);
    reply.mutable_apirespmsg()->set_cmdtype(protoIPCMsg::API_COMMAND);
    reply.mutable_apirespmsg()->mutable_cmdrespmsg()->set_responsedocument(
        outcome.ToString(ObjectReturnEncodeEnum::Xml));
    return reply;
}

std::string frameOf(const GPBIPCMsg& message) {
    std::string frame;
    if (!ipcFraming::encodeFrame(message, frame)) {
        std::abort();
    }
    return frame;
}

GPBIPCMsg makeRequest(const AddHccToSan& method) {
    GPBIPCMsg request;
    method.BuildGPBApiRequest(request, &kHeader, "", nullptr, "");
    return request;
}

/// All that an exchange does besides the socket: render, wrap, encode; decode, read, return.
ReturnPtr stubSide(const AddHccToSan& method, std::string_view replyBody) {
    benchmark::DoNotOptimize(frameOf(makeRequest(method)));
    GPBIPCMsg reply;
    ipcFraming::parseMessage(replyBody, reply);
    return ReturnPtr(method.ProcessResponse(reply));
}

/// Connects, sends, receives, closes; as plain as it gets.
void bareExchange(int port, const std::string& request, std::size_t replySize) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    char room[4096];
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        ::send(fd, request.data(), request.size(), MSG_NOSIGNAL) < 0 ||
        ::recv(fd, room, replySize, MSG_WAITALL) != static_cast<ssize_t>(replySize)) {
        std::abort();
    }
    ::close(fd);
}

void countAllocations(benchmark::State& state, std::size_t before) {
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocationCount() - before), benchmark::Counter::kAvgIterations);
}

void renderRequest(benchmark::State& state) {
    AddHccToSan method;
    fill(method);
    const std::size_t before = allocationCount();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(method.GetXMLString(false, true));
    }
    countAllocations(state, before);
}
BENCHMARK(renderRequest);

void buildRequestMessage(benchmark::State& state) {
    AddHccToSan method;
    fill(method);
    const std::size_t before = allocationCount();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(makeRequest(method));
    }
    countAllocations(state, before);
}
BENCHMARK(buildRequestMessage);

void processReply(benchmark::State& state) {
    const AddHccToSan method;
    const GPBIPCMsg reply = makeReply();
    const std::size_t before = allocationCount();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(ReturnPtr(method.ProcessResponse(reply)));
    }
    countAllocations(state, before);
}
BENCHMARK(processReply);

void wholeStubSide(benchmark::State& state) {
    AddHccToSan method;
    fill(method);
    const std::string reply = makeReply().SerializeAsString();
    const std::size_t before = allocationCount();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(stubSide(method, reply));
    }
    countAllocations(state, before);
}
BENCHMARK(wholeStubSide);

double seconds(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Microseconds of one call, over the rounds.
struct Cost {
    std::vector<double> processor;
    std::vector<double> wall;
};

template <class Call>
void measure(Cost& cost, const Call& call) {
    const double processor = seconds(CLOCK_THREAD_CPUTIME_ID);
    const double wall = seconds(CLOCK_MONOTONIC);
    for (int i = 0; i < kExchangesPerRound; ++i) {
        call();
    }
    constexpr double kScale = 1e6 / kExchangesPerRound;
    cost.processor.push_back((seconds(CLOCK_THREAD_CPUTIME_ID) - processor) * kScale);
    cost.wall.push_back((seconds(CLOCK_MONOTONIC) - wall) * kScale);
}

double quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

double print(const char* name, const Cost& cost) {
    const double median = quantile(cost.processor, 0.5);
    std::printf("%-28s %8.2f us of processor (quartiles %.2f to %.2f), %8.2f us of wall\n", name,
                median, quantile(cost.processor, 0.25), quantile(cost.processor, 0.75),
                quantile(cost.wall, 0.5));
    return median;
}

void printRatios() {
    const std::string replyFrame = frameOf(makeReply());
    ScriptedPeer peer([&](int fd) {
        ScriptedPeer::receive(fd);
        ScriptedPeer::send(fd, replyFrame);
    });
    fakeServiceDatabase::setPort(peer.port());
    AddHccToSan method;
    fill(method);
    const std::string requestFrame = frameOf(makeRequest(method));
    const std::string replyBody = replyFrame.substr(ipcFraming::kHeaderSize);
    Cost bare;
    Cost exchange;
    Cost stub;
    for (int round = 0; round < kRounds; ++round) {
        measure(bare, [&] { bareExchange(peer.port(), requestFrame, replyFrame.size()); });
        measure(exchange, [&] { ReturnPtr(method.Execute(&kHeader, nullptr)); });
        measure(stub, [&] { stubSide(method, replyBody); });
    }
    std::printf("\n%zu bytes out, %zu bytes back\n", requestFrame.size(), replyFrame.size());
    const double bareCost = print("bare exchange", bare);
    const double exchangeCost = print("Execute", exchange);
    const double stubCost = print("stub side without the socket", stub);
    std::printf("Execute / bare exchange: %.2f\nstub side / bare exchange: %.2f\n",
                exchangeCost / bareCost, stubCost / bareCost);
    if (quantile(bare.processor, 0.75) > 1.5 * quantile(bare.processor, 0.25)) {
        std::printf("The machine is too busy for these ratios to mean much.\n");
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    printRatios();
    return 0;
}
