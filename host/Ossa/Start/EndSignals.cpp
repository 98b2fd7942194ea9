#include "Ossa/Start/EndSignals.h"

#include <QSocketNotifier>

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int signalNumbers[] = {SIGTERM, SIGHUP, SIGINT};
int pipeEnds[2] = {-1, -1};

extern "C" void tellPipe(int number)
{
    // Nothing else is safe here. It cannot block: one byte is all that ever comes.
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
}

} // namespace

EndSignals::EndSignals(QObject *parent)
    : QObject(parent)
{
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals do what they always did
    m_notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &EndSignals::take);
    for (const int number : signalNumbers) {
        struct sigaction action = {};
        action.sa_handler = tellPipe;
        action.sa_flags = SA_RESTART | int(SA_RESETHAND);
        ::sigaction(number, &action, nullptr);
    }
}

EndSignals::~EndSignals()
{
    if (!m_notifier)
        return;
    for (const int number : signalNumbers)
        std::signal(number, SIG_DFL);
    delete m_notifier;
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}

void EndSignals::take()
{
    unsigned char number = 0;
    if (m_received != 0 || ::read(pipeEnds[0], &number, 1) != 1)
        return;
    m_received = number;
    Q_EMIT endAsked();
}
