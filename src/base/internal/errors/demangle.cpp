#include <base/internal/errors/demangle.h>

#include <base/internal/errors/fixedText.h>

#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <memory>

namespace Kr
{

namespace
{

struct Freed
{
    void operator()(char* text) const noexcept { std::free(text); }
};

/// Appends one name with its length before it, as in "5Scene", and moves behind it; false, with
/// nothing done, if there is none.
bool appendPart(FixedText& text, const char*& name) noexcept
{
    char* part = nullptr;
    const unsigned long length = *name >= '1' && *name <= '9' ? std::strtoul(name, &part, 10) : 0;
    if (length == 0 || std::memchr(part, '\0', length) != nullptr)
        return false;
    constexpr char unnamed[] = "_GLOBAL__N_";
    if (std::strncmp(part, unnamed, sizeof unnamed - 1) == 0)
        text.append("(anonymous namespace)");
    else
        text.append(part, length);
    name = part + length;
    return true;
}

/// "5Scene", or "N2Kr5SceneE" for parts inside one another; false if the name is of another form.
bool appendParts(FixedText& text, const char* name) noexcept
{
    const bool nested = *name == 'N';
    name += nested ? 1 : 0;
    if (!appendPart(text, name))
        return false;
    while (nested && *name != 'E')
    {
        text.append("::");
        if (!appendPart(text, name))
            return false;
    }
    return std::strcmp(name, nested ? "E" : "") == 0;
}

} // namespace

std::string demangle(const char* name)
{
    if (name == nullptr)
        return {};
    int status = 0;
    const std::unique_ptr<char, Freed> readable(
        abi::__cxa_demangle(name, nullptr, nullptr, &status));
    return readable != nullptr ? readable.get() : name;
}

const char* demanglePlain(const char* name, char* text, std::size_t size) noexcept
{
    const char* from = orEmpty(name);
    FixedText readable(text, size);
    if (!appendParts(readable, from))
        FixedText(text, size).append(from);
    return text;
}

} // namespace Kr
