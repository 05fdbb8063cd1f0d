#pragma once

/// @file
/// What an initialisation variable is apart from its type: a name in the process, and the choice of
/// the source that gives its value. Programs declare `InVariable<T>`.

#include <base/inVariableBase.h>
#include <base/vector.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Kr
{

class InPackageInitBase;

class KR_BASE_API InNamedVariable : public InVariableBase
{
public:
    /// Where a value can come from; the first source that gives one wins.
    enum class Source
    {
        Override,
        CommandLine,
        Environment,
        Store,
        Default
    };

    InNamedVariable(const InNamedVariable&) = delete;
    InNamedVariable& operator=(const InNamedVariable&) = delete;
    ~InNamedVariable() override;

    /// Takes the value. Every text that was given is checked, those of losing sources too: a
    /// malformed one in the environment or in the store is reported on the standard output and
    /// skipped; one on the command line or in an override raises `InVariableEx::ExMalformedValue`,
    /// an option without its value `InVariableEx::ExMissingValue`, and the variable is then
    /// invalid.
    void initialize() override;
    void finalize() override;
    /// The value cannot be read any more, and overrides are taken again; why it was invalid is
    /// kept.
    void abandon() noexcept override;

    const char* getHandle() const noexcept { return _handle.c_str(); }
    const char* getHelp() const noexcept { return _help.c_str(); }
    const InPackageInitBase& getPackage() const noexcept { return *_package; }
    /// Whether the package is starting or up, be the value valid or not.
    bool isInitialized() const noexcept { return _isStarted; }

    /// Where the value came from. Raises like `InVariable::getValue`.
    Source getSource() const;

    /// Stores the value for later starts (`InSettings::setStore`). Raises like
    /// `InVariable::getValue`, `ExInternalError` when there is no store, and what the store raises.
    void store() const;

    /// What a `bool` is: its options take no value and can be negated.
    virtual bool isFlag() const = 0;
    /// Whether the default is a valid value; if not, the variable has to be given.
    virtual bool isDefaultValid() const = 0;
    virtual std::string getDefaultText() const = 0;
    /// What is valid, in words.
    virtual std::string getExpectedForm() const = 0;

    /// One line for the value and the source that won, then an indented one for each candidate that
    /// lost, in the order of their precedence. Texts are cut at 256 characters.
    void dump(std::ostream& os) const;

protected:
    /// Registers the variable and attaches it to its package. The texts are copied.
    InNamedVariable(InPackageInitBase& package, const char* handle, const char* help);

    /// Raises `InEx::ExUninitializedObject` or `InEx::ExInvalidObject` unless there is a value.
    void checkReadable() const;

    /// Stores a text. Raises `InVariableEx::ExMalformedValue`.
    void storeText(const std::string& text);

private:
    /// What one source offers.
    struct Candidate
    {
        Source source;
        std::string origin; ///< in words, such as "option --samples"
        std::string text;
        bool isMissing = false;
        bool isMalformed = false;
    };

    enum class State
    {
        NotStarted,
        Abandoned,
        Invalid,
        Ready
    };

    /// An entry in the table of names.
    class Registration
    {
    public:
        explicit Registration(InNamedVariable& variable);
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
        ~Registration();

    private:
        InNamedVariable& _variable;
    };

    /// Parses the text, and takes it for the value if `takes`. False when it is malformed.
    virtual bool readText(std::string_view text, bool takes) = 0;
    virtual void takeDefault() = 0;
    virtual std::string getValueText() const = 0;

    void collectOverride();
    void collectFromCommandLine();
    void collectFromEnvironment();
    void collectFromStore();
    Candidate readOption(std::size_t position, bool isNegated) const;
    void addCandidate(Candidate candidate);
    void save(const std::string& text) const;
    void reportMalformed() const;
    void dumpState(std::ostream& os) const;
    bool isFromDefault() const noexcept { return _winner == noWinner; }

    static constexpr std::size_t noWinner = static_cast<std::size_t>(-1);

    std::string _handle;
    std::string _help;
    InPackageInitBase* _package;
    State _state = State::NotStarted;
    bool _isStarted = false;
    std::size_t _winner = noWinner; // index in the candidates
    Vector<Candidate> _candidates;  // in the order of their precedence, the default left out
    Registration _registration;
};

} // namespace Kr
