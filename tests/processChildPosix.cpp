#include "processChild.h"

#include <csignal>

namespace
{

sigset_t getAsking()
{
    sigset_t asking;
    ::sigemptyset(&asking);
    ::sigaddset(&asking, SIGTERM);
    return asking;
}

} // namespace

void ProcessChild::ignoreEnd()
{
    std::signal(SIGTERM, SIG_IGN);
}

void ProcessChild::listenForEnd()
{
    const sigset_t asking = getAsking();
    ::sigprocmask(SIG_BLOCK, &asking, nullptr);
}

void ProcessChild::awaitEnd()
{
    const sigset_t asking = getAsking();
    int signal = 0;
    ::sigwait(&asking, &signal);
}
