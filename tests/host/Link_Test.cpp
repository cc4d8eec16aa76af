// What the link to the controller does when the peer, the network or this machine misbehaves.
#include <signal.h>

#include <atomic>
#include <future>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Listener.h"
#include "Sim_Process.h"
#include "Tool_Run.h"
#include "host/Session.h"

namespace vornex::test {
namespace {

// Sanitized tools want their own library loaded first.
std::string slow(const std::string& calls) {
    return "LD_PRELOAD=" SLOW_CALLS " ASAN_OPTIONS=verify_asan_link_order=0 " + calls;
}

void expectEnd(const char* what, const Outcome& outcome, int code, const char* text) {
    EXPECT_EQ(outcome.code, code) << what << "\n" << outcome.text;
    EXPECT_TRUE(outcome.holds(text)) << what << "\n" << outcome.text;
}

const std::size_t SpeedRequest = 12;
std::string speedIs514() { return std::string("\0\0\0\0\x02\0\x02\x02\x48\xAB", 10); }
std::string speedIs513() { return std::string("\0\0\0\0\x02\0\x01\x02\x1B\xFE", 10); }

TEST(Link, aTargetIsCheckedBeforeAnybodyIsCalled) {
    const struct {
        const char* target;
        int code;
        const char* text;
    } rows[] = {
        {"127.0.0.1:99999", 1, "a port is a number from 1 to 65535"},
        {"127.0.0.1:0", 1, "a port is a number from 1 to 65535"},
        {"127.0.0.1:nosuchservice", 1, "a port is a number from 1 to 65535"},
        {"127.0.0.1:http", 1, "a port is a number from 1 to 65535"},
        {"127.0.0.1", 1, "there is no port"},
        {":2000", 1, "there is no host"},
        {"::1:2000", 1, "stands in brackets"},
        {"[::1]:1", 3, "no connection to [::1]:1: "},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(std::string("read Speed -l " PLANT " -t ") + row.target);
        expectEnd(row.target, outcome, row.code, row.text);
    }
}

// Each of these waits has an end of its own: nobody ends it from outside.
TEST(Link, everyWaitHasAnEnd) {
    Listener silent;
    Listener full(0);
    full.fill();
    const std::string names = " -l " PLANT " -t nowhere.invalid:2000 ";
    const struct {
        const char* what;
        std::string arguments;
        std::string environment;
        int code;
        const char* text;
    } rows[] = {
        {"a reply", "read Speed -T 100 -R 1" + on(silent.port()), "", 4, "0 of 10 bytes within 100 ms"},
        {"sending that takes longer than the reply may", "read Speed -T 100 -R 1" + on(silent.port()),
         slow("SLOW_SEND=2,300"), 4, "0 of 10 bytes within 100 ms"},
        {"a connection", "read Speed -T 100" + on(full.port()), "", 3, "no answer within 100 ms"},
        {"a name look-up", "read Speed -T 100" + names, slow("SLOW_LOOK_UP=600000"), 3, "nowhere.invalid"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments, nullptr, row.environment);
        expectEnd(row.what, outcome, row.code, row.text);
    }
}

TEST(Link, everyWaitHeedsAStop) {
    Listener silent;
    Listener full(0);
    full.fill();
    const std::string names = " -l " PLANT " -t nowhere.invalid:2000 ";
    const struct {
        const char* what;
        std::string arguments;
        std::string environment;
        const char* begun;  // the line that tells that the wait comes next
    } rows[] = {
        {"a reply", "read Speed" + on(silent.port()), "", "connected"},
        {"a connection", "read Speed" + on(full.port()), "", "connecting to"},
        {"a name look-up", "read Speed" + names, slow("SLOW_LOOK_UP=600000"), "connecting to"},
        {"the next round", "watch Speed -i 86400000 -R 0 -T 50" + on(silent.port()), "", "gave up"},
    };
    for (const int signal : {SIGINT, SIGTERM}) {
        for (const auto& row : rows) {
            const auto stop = [&](const std::string& line, pid_t process) {
                if (line.find(row.begun) != std::string::npos) kill(process, signal);
            };
            const Outcome outcome = run("-v -T 600000 " + row.arguments, stop, row.environment);
            EXPECT_EQ(outcome.code, 130) << row.what << ", signal " << signal << "\n" << outcome.text;
        }
    }
}

// By a disk that does not answer, for example. Signals that come at once with the first one are the same Ctrl-C.
TEST(Link, aSecondStopEndsAToolThatIsHeldUp) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Sim_Process sim({"-l", PLANT, "-q"});
        Process tool({"/usr/bin/env", "LD_PRELOAD=" SLOW_CALLS, "ASAN_OPTIONS=verify_asan_link_order=0",
                      "SLOW_RENAME=600000", TOOL, "-l", PLANT, "-t", "127.0.0.1:" + std::to_string(sim.port()), "watch",
                      "Speed", "--force", "--csv", WORK_DIR "/held_up.csv"});
        tool.waitForLog("standing still");
        const double first = clockMs();
        do
            tool.signal(signal);
        while (!tool.ended(10) && clockMs() < first + WaitLimit);
        EXPECT_GE(clockMs() - first, 500);
        EXPECT_EQ(tool.finish(false), -1) << tool.log();
        EXPECT_EQ(tool.endSignal(), signal);
    }
}

// What a gateway kept for the client before it hands to the next one: a reply that is right in every way but old.
TEST(Link, whatANewConnectionBringsIsNoReply) {
    const std::string acknowledgement(6, '\0');
    const auto greet = [](int socket, const std::string& old) {
        sendTo(socket, old);
        waitForClose(socket);
    };
    const auto answer = [](int socket) {
        receiveFrom(socket, SpeedRequest);
        sendTo(socket, speedIs514());
        waitForClose(socket);
    };
    const struct {
        const char* what;
        const char* arguments;
        Listener::Serve serve;
        int code;
        const char* text;
        int connections;
    } rows[] = {
        {"a read, always", "read Speed", [&](int socket, int) { greet(socket, speedIs513()); }, 3,
         "10 bytes came that nobody asked for: 00 00 00 00 02 00 01 02 1B FE", 4},
        {"a write, always", "write Speed=7", [&](int socket, int) { greet(socket, acknowledgement); }, 3,
         "6 bytes came that nobody asked for", 4},
        {"a read, once", "read Speed",
         [&](int socket, int number) { number == 1 ? greet(socket, speedIs513()) : answer(socket); }, 0,
         "Speed = 514 rpm", 2},
        {"a read, after the first connection's end", "read Speed",
         [&](int socket, int number) {
             if (number == 1) return void(receiveFrom(socket, SpeedRequest));
             number == 2 ? greet(socket, speedIs513()) : answer(socket);
         },
         0, "Speed = 514 rpm", 3},
    };
    for (const auto& row : rows) {
        Listener listener(row.serve);
        const Outcome outcome = run(row.arguments + (" --settle 500" + on(listener.port())));
        expectEnd(row.what, outcome, row.code, row.text);
        EXPECT_TRUE(outcome.holds("warning: cannot connect: on the new connection")) << row.what << "\n"
                                                                                     << outcome.text;
        EXPECT_FALSE(outcome.holds("513")) << row.what << "\n" << outcome.text;
        EXPECT_EQ(listener.connections(), row.connections) << row.what;
    }
}

// The next round would come in a day.
TEST(Link, aLossBetweenTwoRoundsIsToldAtOnce) {
    const std::pair<const char*, const char*> rows[] = {{"watch Speed -i 86400000", "Speed = "},
                                                        {"stats Speed -i 86400000", "exchanges/s"}};
    for (const auto& row : rows) {
        Sim_Process sim({"-l", PLANT, "-q"});
        const Outcome outcome = run(row.first + on(sim.port()), [&](const std::string& line, pid_t process) {
            if (line.find(row.second) != std::string::npos) sim.finish();
            if (line.find("connection lost: the controller closed") != std::string::npos) kill(process, SIGINT);
        });
        EXPECT_EQ(outcome.code, 130) << outcome.text;
    }
}

TEST(Link, aByteThatNobodyAskedForEndsTheConnection) {
    std::promise<void> shown;
    Listener listener([&](int socket, int) {
        receiveFrom(socket, SpeedRequest);
        sendTo(socket, speedIs513());
        shown.get_future().wait_for(std::chrono::milliseconds(WaitLimit));
        sendTo(socket, "X");
        waitForClose(socket);
    });
    const Outcome outcome =
        run("watch Speed -i 86400000" + on(listener.port()), [&](const std::string& line, pid_t process) {
            if (line.find("Speed = 513") != std::string::npos) shown.set_value();
            if (line.find("1 byte came that nobody asked for: 58") != std::string::npos) kill(process, SIGINT);
        });
    EXPECT_EQ(outcome.code, 130) << outcome.text;
}

// The reply to a request of the list before says nothing about the new one.
TEST(Link, aRoundIsOfTheListThatIsPolled) {
    struct Rounds : Exchange_Observer {
        void frameGiven(const Exchange&) override {
            if (!givenOnce.exchange(true)) given.set_value();
        }
        void roundDone(int) override {
            if (isNew && !doneOnce.exchange(true)) done.set_value(session->freshness(address, 2));
        }
        std::atomic<bool> givenOnce{false}, doneOnce{false}, isNew{false};
        std::promise<void> given;
        std::promise<Freshness> done;
        Session* session = nullptr;
        std::uint32_t address = 0;
    };
    Sim_Process sim({"-l", PLANT, "-q", "--fault", "stall(300)@n=1"});  // the first reply comes after the new list
    const Driver_Library driver(LIBRARY);
    Host_Settings settings;
    settings.target = "127.0.0.1:" + std::to_string(sim.port());
    const Label_File labels = readLabelFile(PLANT);
    Rounds rounds;
    Session session(driver, settings, labels);
    rounds.session = &session;
    rounds.address = session.resolve("Setpoint", 0).value();
    session.addObserver(rounds);
    session.connect();
    session.poll({{"Speed", 0, 3, 2}}, {Milliseconds(0)});
    rounds.given.get_future().wait();
    rounds.isNew = true;
    session.poll({{"Setpoint", 0, 3, 2}}, {Milliseconds(0)});
    EXPECT_EQ(rounds.done.get_future().get(), Freshness::Fresh);
    session.stop();
}

// What the driver's full queue drops leaves no sign, and a cyclic list never leaves the driver with nothing to send.
TEST(Link, writesThatTheDriverDroppedAreToldWhilePolling) {
    Sim_Process sim({"-l", PLANT, "-q", "--fault", "stall(300)@n=1"});  // time to queue more than fits
    const Driver_Library driver(LIBRARY);
    Host_Settings settings;
    settings.target = "127.0.0.1:" + std::to_string(sim.port());
    const Label_File labels = readLabelFile(PLANT);
    Session session(driver, settings, labels);
    session.connect();
    session.poll({{"Speed", 0, 3, 2}}, {Milliseconds(0)});
    std::vector<int> tickets;
    for (int i = 0; i < 3000; ++i)
        tickets.push_back(session.startWrite({"Setpoint", 0, 3, 2}, "ab"));
    std::map<Completion::State, int> ends;
    for (const int ticket : tickets)
        ++ends[session.wait(ticket).state];
    EXPECT_GE(ends[Completion::State::Good], 2000);
    EXPECT_GE(ends[Completion::State::Lost], 1);
    EXPECT_EQ(ends[Completion::State::Good] + ends[Completion::State::Lost], 3000);
}

}  // namespace
}  // namespace vornex::test
