#include <base/lmList.h>

#include <cstdio>
#include <ostream>

namespace Kr
{

namespace
{

std::string format(const char* form, std::uintptr_t number)
{
    char text[32];
    std::snprintf(text, sizeof text, form, static_cast<unsigned long long>(number));
    return text;
}

} // namespace

LmList::~LmList() = default;
LmList::LmList(const LmList& other) = default;
LmList& LmList::operator=(const LmList& other) = default;

const LmList::Library* LmList::find(const void* address) const
{
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    for (const Library& library : _libraries)
        if (library.begin <= place && place < library.end)
            return &library;
    return nullptr;
}

const LmList::Library* LmList::find(const char* name) const
{
    for (const Library& library : _libraries)
        if (name != nullptr && library.name == name)
            return &library;
    return nullptr;
}

std::string LmList::describe(const void* address) const
{
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    const Library* const library = find(address);
    if (library == nullptr)
        return format("0x%llx", place);
    return library->name + format("+0x%llx", place - library->begin);
}

std::ostream& operator<<(std::ostream& os, const LmList& list)
{
    const char* const form = sizeof(void*) == 4 ? "%08llx" : "%016llx";
    for (const LmList::Library& library : list.getLibraries())
        os << format(form, library.begin) << '-' << format(form, library.end) << "  "
           << library.path << '\n';
    return os;
}

} // namespace Kr
