#include <base/internal/testing/testColour.h>

#include <platform/console.h>

namespace Kr
{

bool TestColour::performEnable() noexcept
{
    return krEnableColours();
}

} // namespace Kr
