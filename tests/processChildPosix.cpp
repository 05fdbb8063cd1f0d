#include "processChild.h"

#include <csignal>

void ProcessChild::ignoreEnd()
{
    std::signal(SIGTERM, SIG_IGN);
}
