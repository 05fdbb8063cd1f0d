#include <base/internal/init/inNamedVariable.h>

#include <base/assert.h>
#include <base/inContextAlias.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/inInitMgr.h>
#include <base/inPackageInitBase.h>
#include <base/inVariableEx.h>
#include <base/internal/errors/fixedText.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inVariableRegistry.h>
#include <base/raise.h>

#include <algorithm>
#include <iostream>

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

void appendTo(std::string& list, std::string_view text)
{
    if (!list.empty())
        list += ", ";
    list += text;
}

std::string negationOf(const std::string& option)
{
    return "--no-" + option.substr(2);
}

/// Whether a variable answers to the option under its own name.
bool isClaimed(const std::string& option)
{
    return InContextAliasMgrBase::findOption(option.c_str()) != nullptr ||
           InVariableRegistry::getInstance().find(option.c_str() + 2) != nullptr;
}

} // namespace

InNamedVariable::Registration::Registration(InNamedVariable& variable)
    : _variable(variable)
{
    InVariableRegistry::getInstance().add(variable);
}

InNamedVariable::Registration::~Registration()
{
    InVariableRegistry::getInstance().remove(_variable);
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
    // A text that cannot be used raises below and leaves the variable invalid.
    _state = State::Invalid;
    _candidates.clear();
    collectCandidates();
    reportMalformed();
    takeBest();
}

void InNamedVariable::finalize()
{
    _state = State::Uninitialized;
    _candidates.clear();
}

void InNamedVariable::collectCandidates()
{
    collectOverride();
    collectFromCommandLine();
    collectFromEnvironment();
}

void InNamedVariable::collectOverride()
{
    auto& overrides = InVariableRegistry::getInstance().getOverrides();
    const auto found = overrides.find(_handle);
    if (found == overrides.end())
        return;
    addCandidate({Source::Override, "the override", found->second, false, false});
    overrides.erase(found);
}

void InNamedVariable::collectFromCommandLine()
{
    struct Use
    {
        std::size_t position;
        bool isNegated;
    };
    InCommandLine& commandLine = InCommandLine::getInstance();
    Vector<Use> uses;
    for (const std::string& option : getOptions())
    {
        for (const std::size_t position : commandLine.find(option))
            uses.push_back({position, false});
        if (isFlag() && !isClaimed(negationOf(option)))
            for (const std::size_t position : commandLine.find(negationOf(option)))
                uses.push_back({position, true});
    }
    // The last one wins.
    std::sort(uses.begin(), uses.end(),
              [](const Use& a, const Use& b) { return a.position > b.position; });
    for (const Use& use : uses)
        addCandidate(use.isNegated ? readNegation(use.position) : readOption(use.position));
}

void InNamedVariable::collectFromEnvironment()
{
    for (const InContextAliasBase* alias : InContextAliasMgrBase::findAliases(_handle.c_str()))
    {
        const char* const name = alias->getEnvironmentName();
        const char* const text = name != nullptr ? InInitMgr::getEnv(name) : nullptr;
        if (text != nullptr)
            addCandidate({Source::Environment, std::string("environment variable ") + name, text,
                          false, false});
    }
}

Vector<std::string> InNamedVariable::getOptions() const
{
    Vector<std::string> options;
    for (const InContextAliasBase* alias : InContextAliasMgrBase::findAliases(_handle.c_str()))
        if (alias->getOption() != nullptr)
            options.push_back(alias->getOption());
    const std::string own = "--" + _handle;
    if (std::find(options.begin(), options.end(), own) == options.end())
        options.push_back(own);
    return options;
}

InNamedVariable::Candidate InNamedVariable::readOption(std::size_t position) const
{
    InCommandLine& commandLine = InCommandLine::getInstance();
    const InCommandLine::Value value = commandLine.getValue(position);
    const std::string origin = "option " + std::string(commandLine.getOption(position));
    commandLine.take(position);
    if (isFlag() && !value.isAttached)
        return {Source::CommandLine, origin, "true", false, false};
    if (value.isPresent && !value.isAttached)
        commandLine.take(position + 1);
    return {Source::CommandLine, origin, std::string(value.text), !value.isPresent, false};
}

InNamedVariable::Candidate InNamedVariable::readNegation(std::size_t position) const
{
    InCommandLine& commandLine = InCommandLine::getInstance();
    const InCommandLine::Value value = commandLine.getValue(position);
    const std::string origin = "option " + std::string(commandLine.getOption(position));
    commandLine.take(position);
    if (value.isAttached)
        return {Source::CommandLine, origin + " (which takes none)", std::string(value.text), false,
                true};
    return {Source::CommandLine, origin, "false", false, false};
}

void InNamedVariable::addCandidate(Candidate candidate)
{
    if (!candidate.isMissing && !isWellFormed(candidate.text))
        candidate.isMalformed = true;
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
        if (candidate.source != Source::Environment)
            raise<InVariableEx::ExMalformedValue>(KR_HERE, getHandle(), candidate.text.c_str(),
                                                  origin, expected.c_str());
        std::cout << "Variable " << quote(_handle) << ": the value " << quote(candidate.text)
                  << " of " << origin << " is malformed, expected " << expected << "; skipped."
                  << std::endl;
    }
}

void InNamedVariable::takeBest()
{
    const auto best =
        std::find_if(_candidates.begin(), _candidates.end(),
                     [](const Candidate& candidate) { return !candidate.isMalformed; });
    _winner = static_cast<std::size_t>(best - _candidates.begin());
    if (best != _candidates.end())
        setValueText(best->text);
    else if (!setDefault())
        return;
    _state = State::Ready;
}

// --- what is told of a variable -----------------------------------------------------------------

void InNamedVariable::checkReadable() const
{
    if (_state == State::Uninitialized)
        raise<InEx::ExUninitializedObject>(KR_HERE, getHandle());
    if (_state == State::Invalid)
        raise<InEx::ExInvalidObject>(KR_HERE, getHandle());
}

InNamedVariable::Source InNamedVariable::getSource() const
{
    checkReadable();
    return _winner < _candidates.size() ? _candidates[_winner].source : Source::Default;
}

void InNamedVariable::dump(std::ostream& os) const
{
    const bool isReady = _state == State::Ready;
    const bool isDefault = isReady && _winner == _candidates.size();
    os << _handle;
    if (isReady)
        os << " = " << quote(getValueText()) << ", from "
           << (isDefault ? "the default" : _candidates[_winner].origin) << '\n';
    else
        os << (_state == State::Invalid ? ": invalid\n" : ": not started\n");

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
    if (!isDefault)
        os << "    not the default: " << quote(getDefaultText()) << '\n';
}

InNamedVariable::HelpLine InNamedVariable::getHelpLine() const
{
    HelpLine line;
    for (const InContextAliasBase* alias : InContextAliasMgrBase::findAliases(_handle.c_str()))
    {
        if (alias->getOption() != nullptr)
            appendTo(line.options, describeOption(alias->getOption()));
        if (alias->getEnvironmentName() != nullptr)
            appendTo(line.environmentNames, alias->getEnvironmentName());
    }
    if (line.options.empty())
        line.options = describeOption("--" + _handle);
    line.defaultText = getDefaultText();
    line.meaning = isFlag() ? _help : _help + " (" + getExpectedForm() + ")";
    return line;
}

std::string InNamedVariable::describeOption(const std::string& option) const
{
    return isFlag() ? "--[no-]" + option.substr(2) : option + "=VALUE";
}

} // namespace Kr
