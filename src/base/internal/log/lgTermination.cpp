#include <base/internal/log/lgTermination.h>

#include <base/internal/log/lgLogState.h>

#include <cstdlib>
#include <exception>

namespace Kr
{

namespace
{

std::terminate_handler previousHandler = nullptr;

[[noreturn]] void onTerminate()
{
    LgLogState::drainAtEnd(LgDrain::toDisk);
    if (previousHandler != nullptr)
        previousHandler();
    std::abort();
}

} // namespace

void LgTermination::install()
{
    const std::terminate_handler previous = std::set_terminate(onTerminate);
    if (previous != onTerminate)
        previousHandler = previous;
}

void LgTermination::remove()
{
    if (std::get_terminate() == onTerminate)
        std::set_terminate(previousHandler);
}

} // namespace Kr
