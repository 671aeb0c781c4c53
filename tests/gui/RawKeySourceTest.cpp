#include "ui/RawKeySource.h"
#include "engine/Engine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

// A virtual X server of its own for the test, on the first free display.
class VirtualDisplay {
  public:
    VirtualDisplay() {
        int fds[2];
        if (pipe(fds) != 0)
            return;
        server = fork();
        if (server == 0) {
            close(fds[0]);
            const std::string fd = std::to_string(fds[1]);
            execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-nolisten", "tcp", "-screen", "0",
                   "320x240x24", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(fds[1]);
        // The server writes the number and then a newline; the pipe stays
        // open until both are read.
        std::string number;
        char c = 0;
        while (server > 0 && read(fds[0], &c, 1) == 1 && c != '\n')
            number += c;
        if (c == '\n')
            name = ":" + number;
        close(fds[0]);
    }
    ~VirtualDisplay() {
        if (server > 0) {
            kill(server, SIGTERM);
            waitpid(server, nullptr, 0);
        }
    }
    std::string name; // empty when no server could be started

  private:
    pid_t server = -1;
};

struct KeyLog : KeyTarget {
    void OnKey(uint8_t pressed, uint32_t scanCode) override {
        keys.emplace_back(pressed, scanCode);
    }
    std::vector<std::pair<uint8_t, uint32_t>> keys;
};

using Keys = std::vector<std::pair<uint8_t, uint32_t>>;

// Ticks until `count` events have come or two seconds have passed, then a
// little longer, for any event that should not come.
Keys Collect(Engine& engine, size_t count) {
    KeyLog log;
    engine.SetKeyTarget(&log);
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (log.keys.size() < count && std::chrono::steady_clock::now() < end) {
        engine.OnTimer();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    for (int tick = 0; tick < 40; ++tick) {
        engine.OnTimer();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    engine.SetKeyTarget(nullptr);
    return log.keys;
}

// XTEST key presses on a virtual display reach the queue as raw events, each
// press and release once, while no window of the test exists at all.
TEST(RawKeySource, KeysOfTheWholeDisplayReachTheQueueOnce) {
    VirtualDisplay display;
    if (display.name.empty())
        GTEST_SKIP() << "no Xvfb";
    if (std::system("command -v xdotool > /dev/null") != 0)
        GTEST_SKIP() << "no xdotool";
    setenv("DISPLAY", display.name.c_str(), 1);

    Engine engine;
    RawKeySource source(engine);
    ASSERT_TRUE(source.Start(nullptr));
    ASSERT_EQ(std::system("xdotool key --delay 0 grave Right KP_Enter 1"), 0);
    const Keys expected = {{1, 41},  {0, 41},  {1, 205}, {0, 205},
                           {1, 156}, {0, 156}, {1, 2},   {0, 2}};
    EXPECT_EQ(Collect(engine, expected.size()), expected);
    source.Stop();
    EXPECT_FALSE(source.Running());
}

} // namespace
