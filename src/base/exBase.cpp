#include <base/exBase.h>

#include <cstdio>
#include <cstring>
#include <typeinfo>

namespace Kr
{

namespace
{

/// Appends `text` to the text of that size; what does not fit is cut.
void append(char* to, std::size_t size, const char* text) noexcept
{
    const std::size_t used = std::strlen(to);
    const std::size_t length = std::strlen(text);
    const std::size_t room = size - 1 - used;
    const std::size_t taken = length < room ? length : room;
    std::memcpy(to + used, text, taken);
    to[used + taken] = '\0';
}

void copyText(char* to, const char* from) noexcept
{
    std::memcpy(to, from, std::strlen(from) + 1);
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
    : _lineNo(other._lineNo)
{
    copyText(_detailedReason, other._detailedReason);
    copyText(_reason, other._reason);
    copyText(_fileName, other._fileName);
}

ExBase& ExBase::operator=(const ExBase& other) noexcept
{
    if (this != &other)
    {
        copyText(_detailedReason, other._detailedReason);
        copyText(_reason, other._reason);
        copyText(_fileName, other._fileName);
        _lineNo = other._lineNo;
    }
    return *this;
}

ExBase::~ExBase() = default;

const char* ExBase::getReason() const noexcept
{
    return _reason;
}

const char* ExBase::getDetailedReason() const noexcept
{
    if (_detailedReason[0] == '\0')
    {
        std::snprintf(_detailedReason, reasonSize, "[Exception Type = %s, File = %s, Line=%d]\n",
                      typeid(*this).name(), _fileName, static_cast<int>(_lineNo));
        append(_detailedReason, reasonSize, _reason);
    }
    return _detailedReason;
}

void ExBase::setReason(const char* text) noexcept
{
    if (text != nullptr)
        append(_reason, reasonSize, text);
}

void ExBase::setFileName(const char* name) noexcept
{
    if (name != nullptr)
        append(_fileName, fileNameSize, name);
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
