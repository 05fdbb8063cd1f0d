#include <base/internal/testing/testSettings.h>

namespace Kr
{

TestSettings& TestSettings::getInstance()
{
    static TestSettings settings;
    return settings;
}

} // namespace Kr
