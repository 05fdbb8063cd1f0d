#include <base/internal/init/inCommandLine.h>

#include <base/inContextAliasMgrBase.h>

namespace Kr
{

namespace
{

bool hasDashes(std::string_view word)
{
    return word.substr(0, 2) == "--";
}

} // namespace

InCommandLine& InCommandLine::getInstance()
{
    static InCommandLine commandLine;
    return commandLine;
}

const Vector<std::size_t>& InCommandLine::find(std::string_view option)
{
    static const Vector<std::size_t> none;
    indexNewWords();
    const auto found = _positions.find(option);
    return found != _positions.end() ? found->second : none;
}

std::string_view InCommandLine::getOption(std::size_t position) const
{
    const std::string_view word = InContextAliasMgrBase::args()[position];
    return word.substr(0, word.find('='));
}

InCommandLine::Value InCommandLine::getValue(std::size_t position) const
{
    const Vector<char*>& words = InContextAliasMgrBase::args();
    const std::string_view word = words[position];
    const std::size_t equals = word.find('=');
    if (equals != std::string_view::npos)
        return {true, true, word.substr(equals + 1)};
    if (position + 1 == words.size() || hasDashes(words[position + 1]))
        return {false, false, {}};
    return {false, true, words[position + 1]};
}

Vector<char*> InCommandLine::getRemainingWords()
{
    indexNewWords();
    const Vector<char*>& words = InContextAliasMgrBase::args();
    Vector<char*> remaining;
    for (std::size_t i = 0; i < words.size(); ++i)
        if (!_isTaken[i])
            remaining.push_back(words[i]);
    return remaining;
}

void InCommandLine::clear() noexcept
{
    _positions.clear();
    _isTaken.clear();
    _hasEnded = false;
}

void InCommandLine::indexNewWords()
{
    const std::size_t count = InContextAliasMgrBase::args().size();
    if (count < _isTaken.size())
        clear();
    while (_isTaken.size() < count)
    {
        indexWord(_isTaken.size());
        _isTaken.push_back(false);
    }
}

void InCommandLine::indexWord(std::size_t position)
{
    const std::string_view word = InContextAliasMgrBase::args()[position];
    const bool isProgramName = position == 0;
    if (isProgramName || _hasEnded || !hasDashes(word))
        return;
    if (word.size() == 2)
        _hasEnded = true;
    else
        _positions[word.substr(0, word.find('='))].push_back(position);
}

} // namespace Kr
