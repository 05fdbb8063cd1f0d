#include <base/exBase.h>

#include <cstdio>
#include <cstring>
#include <typeinfo>

namespace Kr
{

namespace
{

/// Appends to a text of that size and length; what does not fit is cut.
template <std::size_t Size>
void append(char (&to)[Size], std::uint16_t& length, const char* text) noexcept
{
    const std::size_t wanted = std::strlen(text);
    const std::size_t room = Size - 1 - length;
    const std::size_t taken = wanted < room ? wanted : room;
    std::memcpy(to + length, text, taken);
    to[length + taken] = '\0';
    length = static_cast<std::uint16_t>(length + taken);
}

/// In whole blocks, which is quicker than to the exact end and never leaves the array.
template <std::size_t Size>
void copyText(char (&to)[Size], const char (&from)[Size], std::uint16_t length) noexcept
{
    constexpr std::size_t block = 32;
    static_assert(Size % block == 0);
    for (std::size_t i = 0; i <= length; i += block)
        std::memcpy(to + i, from + i, block);
}

} // namespace

ExBase::ExBase(const char* file, int line) noexcept
    : _lineNo(line)
{
    _detailedReason[0] = '\0';
    _reason[0] = '\0';
    _fileName[0] = '\0';
    setFileName(file);
}

ExBase::ExBase(const ExBase& other) noexcept
{
    copyTexts(other);
}

ExBase& ExBase::operator=(const ExBase& other) noexcept
{
    if (this != &other)
        copyTexts(other);
    return *this;
}

void ExBase::copyTexts(const ExBase& other) noexcept
{
    copyText(_detailedReason, other._detailedReason, other._detailedLength);
    copyText(_reason, other._reason, other._reasonLength);
    copyText(_fileName, other._fileName, other._fileNameLength);
    _lineNo = other._lineNo;
    _detailedLength = other._detailedLength;
    _reasonLength = other._reasonLength;
    _fileNameLength = other._fileNameLength;
}

ExBase::~ExBase() = default;

const char* ExBase::getReason() const noexcept
{
    return _reason;
}

const char* ExBase::getDetailedReason() const noexcept
{
    if (_detailedLength == 0)
    {
        char position[reasonSize];
        std::snprintf(position, sizeof position, "[Exception Type = %s, File = %s, Line=%d]\n",
                      typeid(*this).name(), _fileName, static_cast<int>(_lineNo));
        append(_detailedReason, _detailedLength, position);
        append(_detailedReason, _detailedLength, _reason);
    }
    return _detailedReason;
}

void ExBase::setReason(const char* text) noexcept
{
    if (text != nullptr)
        append(_reason, _reasonLength, text);
}

void ExBase::setFileName(const char* name) noexcept
{
    if (name != nullptr)
        append(_fileName, _fileNameLength, name);
}

ExInternalError::ExInternalError(const char* file, int line, const char* text)
    : ExConcrete(file, line)
{
    setReason(text);
}

ExBadException::ExBadException(const char* file, int line) noexcept
    : ExBase(file, line)
{
    setReason("Invalid exception thrown.");
}

ExBase* ExBadException::clone() const
{
    return new ExBadException(*this);
}

} // namespace Kr
