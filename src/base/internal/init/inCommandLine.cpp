#include <base/internal/init/inCommandLine.h>

#include <cstring>
#include <memory>

namespace Kr
{

namespace
{

constexpr std::string_view endOfOptions = "--";

} // namespace

InCommandLine& InCommandLine::getInstance()
{
    static InCommandLine commandLine;
    return commandLine;
}

void InCommandLine::append(int count, const char* const* words)
{
    Vector<std::unique_ptr<char[]>> copies;
    for (int i = 0; i < count; ++i)
    {
        const std::size_t size = std::strlen(words[i]) + 1;
        copies.emplace_back(new char[size]);
        std::memcpy(copies.back().get(), words[i], size);
    }
    _words.reserve(_words.size() + copies.size());
    for (std::unique_ptr<char[]>& copy : copies)
        _words.push_back(copy.release());
}

Vector<char*> InCommandLine::getRemainingWords()
{
    indexNewWords();
    Vector<char*> remaining;
    for (std::size_t i = 0; i < _words.size(); ++i)
        if (!_isTaken[i])
            remaining.push_back(_words[i]);
    return remaining;
}

const Vector<std::size_t>& InCommandLine::find(std::string_view option)
{
    static const Vector<std::size_t> none;
    indexNewWords();
    const auto found = _positions.find(option);
    return found != _positions.end() ? found->second : none;
}

InCommandLine::Use InCommandLine::getUse(std::size_t position) const
{
    const std::string_view word = _words[position];
    const std::string_view option = getOption(word);
    if (option.size() != word.size())
        return {option, word.substr(option.size() + 1), true, true};
    const std::string_view next =
        position + 1 != _words.size() ? _words[position + 1] : endOfOptions.data();
    if (next.substr(0, 2) == endOfOptions)
        return {option, {}, false, false};
    return {option, next, false, true};
}

void InCommandLine::release() noexcept
{
    forget();
    for (const char* word : _words)
        delete[] word;
    _words.clear();
}

void InCommandLine::forget() noexcept
{
    _positions.clear();
    _isTaken.clear();
    _hasEnded = false;
}

void InCommandLine::indexNewWords()
{
    if (_words.size() < _isTaken.size())
        forget();
    while (_isTaken.size() < _words.size())
    {
        indexWord(_isTaken.size());
        _isTaken.push_back(false);
    }
}

void InCommandLine::indexWord(std::size_t position)
{
    const std::string_view word = _words[position];
    const bool isProgramName = position == 0;
    if (isProgramName || _hasEnded)
        return;
    if (word == endOfOptions)
        _hasEnded = true;
    else if (isOption(word))
        _positions[getOption(word)].push_back(position);
}

} // namespace Kr
