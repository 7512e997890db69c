// What one request costs the plug-in in a host that looks at nothing before it.
//
//     aloneCost ROUNDS < BODY
//
// Prints the median of the processor time that the requests took, in microseconds, and the first
// words of the fault, if there is one. The API manager is where the plug-in finds it.
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "apiMgmt/webservices/sanService/sanService.h"

namespace {

struct Exchange {
    std::string request, reply;
    std::size_t read = 0;
};
Exchange exchange;

std::size_t receive(soap*, char* target, std::size_t room) {
    const std::size_t size = exchange.request.copy(target, room, exchange.read);
    exchange.read += size;
    return size;
}

int sendReply(soap*, const char* data, std::size_t size) {
    exchange.reply.append(data, size);
    return SOAP_OK;
}

double processorTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

double costOfOne(const soap& context) {
    exchange.reply.clear();
    exchange.read = 0;
    const double before = processorTime();
    SANService service(context, "127.0.0.1", 0);
    service.serve();
    service.destroy();
    return processorTime() - before;
}

}  // namespace

int main(int count, char** arguments) {
    const int rounds = count > 1 ? std::max(std::atoi(arguments[1]), 1) : 7;
    exchange.request.assign(std::istreambuf_iterator<char>(std::cin), {});
    soap* const context = soap_new1(SOAP_C_UTFSTRING);
    context->frecv = receive;
    context->fsend = sendReply;
    costOfOne(*context);
    std::vector<double> costs(static_cast<std::size_t>(rounds));
    std::generate(costs.begin(), costs.end(), [&] { return costOfOne(*context); });
    std::nth_element(costs.begin(), costs.begin() + rounds / 2, costs.end());
    constexpr std::string_view kFault = "<faultstring>";
    const std::size_t fault = exchange.reply.find(kFault);
    std::cout << costs[costs.size() / 2] << ' '
              << (fault == std::string::npos
                      ? "served"
                      : exchange.reply.substr(fault + kFault.size(), 40)
                            .substr(0, exchange.reply.find('<', fault + 1) - fault - kFault.size()))
              << '\n';
    soap_destroy(context);
    soap_end(context);
    soap_free(context);
}
