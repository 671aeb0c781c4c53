#pragma once

#include <jack/jack.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

constexpr int32_t Rate = 48000;

// A jackd of the test's own, on the dummy driver, gone with the object. The
// environment points every JACK client of this process at it.
class JackServer {
  public:
    explicit JackServer(int32_t rate = Rate, int32_t period = 256)
        : name("oxtest-" + std::to_string(static_cast<long>(getpid()))) {
        setenv("JACK_NO_AUDIO_RESERVATION", "1", 1); // no D-Bus session is needed
        setenv("JACK_NO_START_SERVER", "1", 1);
        setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
        pid = fork();
        if (pid == 0) {
            const std::string log = Log();
            if (freopen(log.c_str(), "w", stdout) == nullptr ||
                freopen(log.c_str(), "a", stderr) == nullptr)
                _exit(126);
            const std::string r = std::to_string(rate), p = std::to_string(period);
            execlp("jackd", "jackd", "-n", name.c_str(), "-d", "dummy", "-r", r.c_str(), "-p",
                   p.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    ~JackServer() {
        if (pid <= 0)
            return;
        kill(pid, SIGTERM);
        for (int i = 0; i < 100 && waitpid(pid, nullptr, WNOHANG) == 0; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (waitpid(pid, nullptr, WNOHANG) == 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        unlink(Log().c_str());
    }

    std::string Log() const { return "/tmp/" + name + ".log"; }
    static void Quiet(const char*) {}

    // A client on this server, waiting up to ten seconds for it to come up.
    // libjack's complaints while the server is not there yet are not shown.
    jack_client_t* Connect(const char* clientName) const {
        jack_set_error_function(Quiet);
        for (int i = 0; i < 200; ++i) {
            jack_status_t status;
            jack_client_t* c = jack_client_open(
                clientName, static_cast<jack_options_t>(JackNoStartServer | JackServerName),
                &status, name.c_str());
            if (c != nullptr)
                return c;
            if (pid <= 0 || waitpid(pid, nullptr, WNOHANG) != 0)
                return nullptr;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return nullptr;
    }

    std::string name;
    pid_t pid;
};
