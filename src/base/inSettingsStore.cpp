#include <base/inSettingsStore.h>

namespace Kr
{

InSettingsStore::~InSettingsStore() = default;

} // namespace Kr
