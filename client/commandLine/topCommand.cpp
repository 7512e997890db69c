#include "client/commandLine/topCommand.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>
#include <stdexcept>

#include "client/call/clock.h"
#include "client/call/session.h"

namespace client {

namespace {

constexpr double kMaxInterval = 3600;
constexpr const char* kStatusPath = "/san-status/metrics";

// The terminal while the figures are on it: a page of its own, and keys that count at once.
class Screen {
public:
    Screen() {
        tcgetattr(STDIN_FILENO, &m_before);
        termios keys = m_before;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &keys);
        std::cout << "\x1b[?1049h" << std::flush;
    }
    ~Screen() {
        std::cout << "\x1b[?1049l" << std::flush;
        tcsetattr(STDIN_FILENO, TCSANOW, &m_before);
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

private:
    termios m_before{};
};

// Waits for the next look; false when the user has seen enough.
bool waitForNext(const Interruption& interruption, double seconds, bool isScreen) {
    const double until = now() + seconds;
    for (;;) {
        const auto event =
            interruption.wait(std::max(until - now(), 0.0), isScreen ? STDIN_FILENO : -1);
        if (event != Interruption::Event::Input) {
            return event == Interruption::Event::Timeout;
        }
        char key = 0;
        if (read(STDIN_FILENO, &key, 1) <= 0 || key == 'q' || key == 'Q') {
            return false;
        }
    }
}

// Scheme, host and port of a URL.
std::string originOf(const std::string& url) {
    const std::size_t host = url.find("://") + 3;
    return url.substr(0, url.find('/', host));
}

}  // namespace

TopCommand::TopCommand(CLI::App& app)
    : m_command(app.add_subcommand("top", "Show what the service is doing, live")) {
    m_command->fallthrough()->footer(
        "Calls per second and at work, latencies and outcomes of each operation, newest interval\n"
        "only: answered, refused by the array, refused by the service, array silent, failed. q or\n"
        "Ctrl-C ends it.");
    m_command
        ->add_option(
            "--status-url", m_statusUrl,
            std::string("Where the counts are; otherwise ") + kStatusPath + " on the host of --url")
        ->type_name("URL");
    m_command->add_option("--interval", m_interval, "How long from one look to the next")
        ->check(CLI::Range(0.1, kMaxInterval).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    m_command->add_flag("--once", m_once, "Show one interval and end");
}

ServiceOptions TopCommand::statusOptions(const CommandLine& line) const {
    ServiceOptions options = line.service;
    options.url = m_statusUrl.empty() ? originOf(options.url) + kStatusPath : m_statusUrl;
    return options;
}

void TopCommand::show(const CommandLine& line, bool isScreen, const Json& activity) const {
    if (line.form == Form::Machine) {
        // One JSON document on each line, without end.
        m_once ? printJson(activity)
               : void(std::cout << activity.dump(-1, ' ', false, Json::error_handler_t::replace)
                                << std::endl);
        return;
    }
    std::cout << (isScreen ? "\x1b[H\x1b[2J" : "") << activityTable(activity) << std::flush;
}

ExitStatus TopCommand::run(const CommandLine& line) const {
    const ServiceOptions options = statusOptions(line);
    Session session(options);
    std::string text;
    const Outcome first = session.fetch(text);
    Snapshot before = readSnapshot(text);
    if (!first.isDone()) {
        reportOutcome(line.form, "top", first, {}, {});
        return first.status;
    }
    if (before.empty()) {
        throw std::runtime_error("no counts of a service are at " + options.url);
    }
    const bool isScreen = !m_once && line.form == Form::Human && isatty(STDIN_FILENO) != 0 &&
                          isatty(STDOUT_FILENO) != 0;
    const Interruption interruption;
    const auto screen = isScreen ? std::make_unique<Screen>() : nullptr;
    for (double looked = now(); waitForNext(interruption, m_interval, isScreen);) {
        const Outcome outcome = session.fetch(text);
        if (outcome.isDone()) {
            const double time = now();
            const Snapshot snapshot = readSnapshot(text);
            show(line, isScreen, activityOf(before, snapshot, time - looked));
            before = snapshot;
            looked = time;
        } else {
            std::cerr << "sanctl: top: " << failureText(outcome) << '\n';
        }
        if (m_once) {
            return outcome.status;
        }
    }
    return ExitStatus::Done;
}

}  // namespace client
