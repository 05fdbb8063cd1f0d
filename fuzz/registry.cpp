// Fuzzes the files in which the registry's keys are kept: what is read is written so that it is
// read as the same.

#include <platform/posix/registryText.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace
{

bool isSame(const KrRegistryValue& left, const KrRegistryValue& right)
{
    return left.name == right.name && left.type == right.type && left.data == right.data;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    KrRegistryValues values;
    KrRegistryValues back;
    if (krParseRegistry({reinterpret_cast<const char*>(data), size}, values) != 0)
        return 0;
    const std::string text = krFormatRegistry(values);
    const bool isKept = krParseRegistry(text, back) == 0 &&
                        std::equal(values.begin(), values.end(), back.begin(), back.end(), isSame);
    if (!isKept || krFormatRegistry(back) != text)
        std::abort();
    return 0;
}
