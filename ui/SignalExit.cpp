#include "ui/SignalExit.h"

#include <QSocketNotifier>
#include <QWidget>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace {

// The pipe's two ends: [0] read by the GUI thread, [1] written by the handler.
int signalPipe[2] = {-1, -1};

void SetHandler(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

} // namespace

SignalExit::SignalExit(QWidget* target) : QObject(target), window(target) {
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &SignalExit::OnReadable);
    SetHandler(&SignalExit::OnSignal);
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGINT);
    pthread_sigmask(SIG_UNBLOCK, &stopSignals, nullptr);
}

SignalExit::~SignalExit() {
    SetHandler(SIG_DFL);
    for (int& end : signalPipe) {
        if (end >= 0)
            close(end);
        end = -1;
    }
}

// Signal handler, any thread: one write, nothing else.
void SignalExit::OnSignal(int signal) {
    const int savedErrno = errno;
    const char byte = char(signal);
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}

// GUI thread: empties the pipe and closes the window.
void SignalExit::OnReadable() {
    char bytes[16];
    while (read(signalPipe[0], bytes, sizeof bytes) > 0) {
    }
    window->close();
}
