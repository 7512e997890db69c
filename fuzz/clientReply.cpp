// Any bytes as what a server answers sanctl: the first chooses the operation, or asks for the
// counts; whatever comes is shown, and a failure in one line.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "client/commandLine/operations.h"
#include "client/report/report.h"
#include "client/top/activity.h"
#include "fuzz/fuzzTarget.h"

namespace {

std::string gAnswer;  // what the next connection brings
int gPeer = -1;       // its other end

void show(const client::Outcome& outcome, const client::Json& reply) {
    require(outcome.isDone() == (outcome.faultCode.empty() && outcome.text.empty()));
    require(client::failureText(outcome).find_first_of("\n\r\x1b") == std::string::npos);
    reportOutcome(client::Form::Human, "Ping", outcome, reply, {});
    reportOutcome(client::Form::Machine, "Ping", outcome, reply, {});
}

}  // namespace

// Stands in front of the C library's: in place of the server there is the answer.
int connect(int socket, const sockaddr* /*address*/, socklen_t /*size*/) {
    std::array<int, 2> ends{};
    require(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0);
    require(::send(ends[1], gAnswer.data(), gAnswer.size(), 0) ==
            static_cast<ssize_t>(gAnswer.size()));
    require(::shutdown(ends[1], SHUT_WR) == 0 && ::dup2(ends[0], socket) == socket);
    ::close(ends[0]);
    gPeer = ends[1];
    return 0;
}

void drive(std::string_view bytes) {
    std::cout.setstate(std::ios::failbit);
    std::cerr.setstate(std::ios::failbit);
    const auto& operations = client::allOperations();
    const std::size_t chosen = (bytes.empty() ? 0U : static_cast<unsigned char>(bytes[0])) % 32;
    gAnswer = bytes.substr(std::min<std::size_t>(1, bytes.size()));
    if (!gAnswer.starts_with("HTTP")) {
        gAnswer.insert(0, "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n\r\n");
    }
    client::ServiceOptions options;
    options.dump = true;
    client::Session session(options);
    if (chosen < operations.size()) {
        const auto request = operations[chosen].makeRequest();
        const client::Outcome outcome = request->send(session);
        show(outcome, outcome.isDone() ? request->reply() : client::Json());
    } else {
        std::string counts;
        show(session.fetch(counts), {});
        const client::Snapshot snapshot = client::readSnapshot(counts);
        client::activityTable(client::activityOf(snapshot, snapshot, 1));
    }
    ::close(gPeer);
}
