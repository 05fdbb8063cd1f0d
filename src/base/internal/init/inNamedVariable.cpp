#include <base/internal/init/inNamedVariable.h>

#include <base/assert.h>
#include <base/inEx.h>
#include <base/inPackageInitBase.h>
#include <base/inSettingsStore.h>
#include <base/inVariableEx.h>
#include <base/internal/errors/fixedText.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inEnvSnapshot.h>
#include <base/internal/init/inNameTable.h>
#include <base/raise.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace Kr
{

namespace
{

/// A text of the user's as it is shown: in quotes, on one line, cut at 256 characters.
std::string quote(std::string_view text)
{
    constexpr std::size_t cut = 256;
    std::string shown(text.substr(0, cut));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return (c >= 0 && c < ' ') || c == 127; }, '?');
    return "'" + shown + (text.size() > cut ? "'..." : "'");
}

/// Where an option stands on the command line, and whether in its form with "no-".
struct Occurrence
{
    std::size_t position;
    bool isNegated;
};

/// The last one first, which wins.
Vector<Occurrence> findOnCommandLine(const std::string& handle, bool isFlag)
{
    const InNameTable& table = InNameTable::getInstance();
    InCommandLine& commandLine = InCommandLine::getInstance();
    Vector<Occurrence> found;
    const auto collect = [&](const std::string& option, bool isNegated)
    {
        for (const std::size_t position : commandLine.find(option))
            found.push_back({position, isNegated});
    };

    Vector<std::string> options = table.getNames(handle).options;
    const std::string own = "--" + handle;
    if (std::find(options.begin(), options.end(), own) == options.end())
        options.push_back(own);
    for (const std::string& option : options)
    {
        collect(option, false);
        const std::string negation = "--no-" + option.substr(2);
        if (isFlag && table.findOption(negation) == nullptr) // else another setting's own name
            collect(negation, true);
    }
    std::sort(found.begin(), found.end(),
              [](const Occurrence& a, const Occurrence& b) { return a.position > b.position; });
    return found;
}

} // namespace

InNamedVariable::Registration::Registration(InNamedVariable& variable)
    : _variable(variable)
{
    InNameTable::getInstance().addVariable(variable._handle, variable);
}

InNamedVariable::Registration::~Registration()
{
    InNameTable::getInstance().removeVariable(_variable._handle, _variable);
}

InNamedVariable::InNamedVariable(InPackageInitBase& package, const char* handle, const char* help)
    : _handle(orEmpty(handle))
    , _help(orEmpty(help))
    , _package(&package)
    , _registration(*this)
{
    KR_ASSERT(!_handle.empty() && _handle.find('=') == std::string::npos);
    _package->addDependency(this);
}

InNamedVariable::~InNamedVariable()
{
    _package->removeDependency(this);
}

// --- start and stop -----------------------------------------------------------------------------

void InNamedVariable::initialize()
{
    _isStarted = true;
    _state = State::Invalid; // stays so when a text that cannot be used raises below
    _winner = noWinner;
    _candidates.clear();
    collectOverride();
    collectFromCommandLine();
    collectFromEnvironment();
    collectFromStore();
    reportMalformed();
    if (isFromDefault())
        takeDefault();
    if (!isFromDefault() || isDefaultValid())
        _state = State::Ready;
}

void InNamedVariable::finalize()
{
    _isStarted = false;
    _state = State::NotStarted;
    _candidates.clear();
}

void InNamedVariable::abandon() noexcept
{
    _isStarted = false;
    if (_state == State::Ready)
        _state = State::Abandoned;
}

void InNamedVariable::collectOverride()
{
    std::optional<std::string> text = InNameTable::getInstance().takeOverride(_handle);
    if (text.has_value())
        addCandidate({Source::Override, "the override", std::move(*text)});
}

void InNamedVariable::collectFromCommandLine()
{
    for (const Occurrence& occurrence : findOnCommandLine(_handle, isFlag()))
        addCandidate(readOption(occurrence.position, occurrence.isNegated));
}

void InNamedVariable::collectFromEnvironment()
{
    for (const std::string& name : InNameTable::getInstance().getNames(_handle).environmentNames)
    {
        const char* const text = InEnvSnapshot::getInstance().get(name.c_str());
        if (text != nullptr)
            addCandidate({Source::Environment, "environment variable " + name, text});
    }
}

void InNamedVariable::collectFromStore()
{
    InSettingsStore* const store = InNameTable::getInstance().getStore();
    if (store == nullptr)
        return;
    for (InSettingsStore::Entry& entry : store->find(_handle))
        addCandidate(
            {Source::Store, std::move(entry.origin), std::move(entry.text), false, !entry.isText});
}

/// Takes the words of an option and says what they offer.
InNamedVariable::Candidate InNamedVariable::readOption(std::size_t position, bool isNegated) const
{
    InCommandLine& commandLine = InCommandLine::getInstance();
    const InCommandLine::Use use = commandLine.getUse(position);
    const std::string origin = "option " + std::string(use.option);
    commandLine.take(position);
    if (isFlag() && !use.isAttached)
        return {Source::CommandLine, origin, isNegated ? "false" : "true"};
    if (isNegated)
        return {Source::CommandLine, origin + " (which takes none)", std::string(use.value), false,
                true};
    if (use.hasValue && !use.isAttached)
        commandLine.take(position + 1);
    return {Source::CommandLine, origin, std::string(use.value), !use.hasValue};
}

/// The candidates come in the order of their precedence: the first one that is well formed wins.
void InNamedVariable::addCandidate(Candidate candidate)
{
    if (!candidate.isMissing && !candidate.isMalformed)
    {
        candidate.isMalformed = !readText(candidate.text, isFromDefault());
        if (!candidate.isMalformed && isFromDefault())
            _winner = _candidates.size();
    }
    _candidates.push_back(std::move(candidate));
}

void InNamedVariable::reportMalformed() const
{
    const std::string expected = getExpectedForm();
    for (const Candidate& candidate : _candidates)
    {
        const char* const origin = candidate.origin.c_str();
        if (candidate.isMissing)
            raise<InVariableEx::ExMissingValue>(KR_HERE, getHandle(), origin, expected.c_str());
        if (!candidate.isMalformed)
            continue;
        const bool isKept =
            candidate.source == Source::Environment || candidate.source == Source::Store;
        if (!isKept)
            raise<InVariableEx::ExMalformedValue>(KR_HERE, getHandle(), candidate.text.c_str(),
                                                  origin, expected.c_str());
        std::cout << "Variable " << quote(_handle) << ": the value " << quote(candidate.text)
                  << " of " << origin << " is malformed, expected " << expected << "; skipped."
                  << std::endl;
    }
}

// --- what is kept for later ---------------------------------------------------------------------

void InNamedVariable::store() const
{
    checkReadable();
    save(getValueText());
}

void InNamedVariable::storeText(const std::string& text)
{
    if (!readText(text, false))
        raise<InVariableEx::ExMalformedValue>(KR_HERE, getHandle(), text.c_str(), "the program",
                                              getExpectedForm().c_str());
    save(text);
}

void InNamedVariable::save(const std::string& text) const
{
    InSettingsStore* const store = InNameTable::getInstance().getStore();
    KR_ASSERT(store != nullptr);
    store->save(_handle, text, getDefaultText());
}

// --- what is told of a variable -----------------------------------------------------------------

void InNamedVariable::checkReadable() const
{
    if (_state == State::Ready)
        return;
    if (_state == State::Invalid)
        raise<InEx::ExInvalidObject>(KR_HERE, getHandle());
    raise<InEx::ExUninitializedObject>(KR_HERE, getHandle());
}

InNamedVariable::Source InNamedVariable::getSource() const
{
    checkReadable();
    return isFromDefault() ? Source::Default : _candidates[_winner].source;
}

void InNamedVariable::dump(std::ostream& os) const
{
    const bool isReady = _state == State::Ready;
    dumpState(os);
    for (std::size_t i = 0; i < _candidates.size(); ++i)
    {
        const Candidate& candidate = _candidates[i];
        if (isReady && i == _winner)
            continue;
        os << "    not " << candidate.origin << ": ";
        if (candidate.isMissing)
            os << "its value is missing\n";
        else
            os << quote(candidate.text) << (candidate.isMalformed ? ", malformed\n" : "\n");
    }
    if (!isDefaultValid())
        os << "    not the default: " << quote(getDefaultText()) << ", expected "
           << getExpectedForm() << '\n';
    else if (!isReady || !isFromDefault())
        os << "    not the default: " << quote(getDefaultText()) << '\n';
}

void InNamedVariable::dumpState(std::ostream& os) const
{
    os << _handle;
    switch (_state)
    {
    case State::NotStarted:
        os << ": not started\n";
        break;
    case State::Abandoned:
        os << ": its package failed to start\n";
        break;
    case State::Invalid:
        os << ": invalid\n";
        break;
    case State::Ready:
        os << " = " << quote(getValueText()) << ", from "
           << (isFromDefault() ? "the default" : _candidates[_winner].origin) << '\n';
    }
}

} // namespace Kr
