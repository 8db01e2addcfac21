#include "Interruption.h"

#include "CommandError.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int forever = -1;

constexpr std::array endingSignals = {SIGINT, SIGTERM, SIGHUP};

// Handlers have no other way to their object. The byte in the pipe is never taken out again: one
// signal ends the command, however many places ask.
std::array<int, 2> interruptionPipe = {-1, -1};
volatile std::sig_atomic_t arrivedSignal = 0; // the last one

void writeToPipe(int signal)
{
    arrivedSignal = signal;
    const int errorOfInterruptedCode = errno;
    static_cast<void>(!write(interruptionPipe[1], "", 1)); // full means that one has arrived
    errno = errorOfInterruptedCode;
}

void handleSignalsWith(void (*handler)(int))
{
    struct sigaction wanted = {};
    wanted.sa_handler = handler;
    wanted.sa_flags = SA_RESTART;
    for (const int signal : endingSignals) {
        struct sigaction present = {};
        sigaction(signal, nullptr, &present);
        const bool isUnwanted = signal == SIGHUP && present.sa_handler == SIG_IGN; // by nohup
        if (!isUnwanted)
            sigaction(signal, &wanted, nullptr);
    }
}

[[noreturn]] void throwInterrupted()
{
    throw CommandError(ExitStatus(int(ExitStatus::Interrupted) + arrivedSignal),
                       QStringLiteral("interrupted, nothing written"));
}

} // namespace

Interruption::Interruption()
{
    if (pipe2(interruptionPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // signals then end the program in the system's own way
    m_notifier = std::make_unique<QSocketNotifier>(interruptionPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        Q_EMIT arrived();
    });
    handleSignalsWith(writeToPipe);
}

Interruption::~Interruption()
{
    if (!m_notifier)
        return;
    handleSignalsWith(SIG_DFL);
    m_notifier.reset();
    close(interruptionPipe[0]);
    close(interruptionPipe[1]);
}

void Interruption::check() const
{
    pollfd pipe = {interruptionPipe[0], POLLIN, 0};
    if (m_notifier && poll(&pipe, 1, 0) > 0)
        throwInterrupted();
}

void Interruption::waitForInput(int fileDescriptor) const
{
    std::array<pollfd, 2> waited = {
            {{fileDescriptor, POLLIN, 0}, {interruptionPipe[0], POLLIN, 0}}};
    while (poll(waited.data(), waited.size(), forever) < 0 && errno == EINTR)
        continue;
    check();
}
