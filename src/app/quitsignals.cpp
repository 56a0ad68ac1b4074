#include "app/quitsignals.h"

#include "common/log.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};

// The handler may only touch these and call async-signal-safe functions:
// it writes the signal's number into a pipe that the event loop watches.
int pipeEnds[2] = {-1, -1};
volatile std::sig_atomic_t pending = 0;

extern "C" void onQuitSignal(int number)
{
    const int savedErrno = errno;
    if (pending) {
        // Asked twice: the way out through the event loop hangs.
        std::signal(number, SIG_DFL);
        std::raise(number);
    }
    pending = 1;
    const char byte = char(number);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = savedErrno;
}

} // namespace

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    Q_ASSERT(pipeEnds[0] < 0);
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
        qCWarning(lcApp, "Signals will end Quillon without clean-up: %s", strerror(errno));
        return;
    }
    m_notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &QuitSignals::handle);
    struct sigaction action { };
    action.sa_handler = onQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : quitSignals)
        ::sigaction(number, &action, nullptr);
}

QuitSignals::~QuitSignals()
{
    if (pipeEnds[0] < 0)
        return;
    for (const int number : quitSignals)
        std::signal(number, SIG_DFL);
    delete m_notifier;
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    pipeEnds[0] = pipeEnds[1] = -1;
    pending = 0;
}

void QuitSignals::handle()
{
    char number = 0;
    while (::read(pipeEnds[0], &number, 1) == 1)
        qCInfo(lcApp, "%s: quitting", strsignal(number));
    QCoreApplication::quit();
}
