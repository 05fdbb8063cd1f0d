#pragma once

/// @file
/// What an initialisation variable is apart from its type: a name in the process, and the choice of
/// the source that gives its value. Programs declare `InVariable<T>`.

#include <base/inVariableBase.h>
#include <base/vector.h>

#include <cstddef>
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
        Default
    };

    InNamedVariable(const InNamedVariable&) = delete;
    InNamedVariable& operator=(const InNamedVariable&) = delete;
    ~InNamedVariable() override;

    /// Takes the value. Every text that was given is checked, those of losing sources too: a
    /// malformed one in the environment is reported on the standard output and skipped; one on the
    /// command line or in an override raises `InVariableEx::ExMalformedValue`, an option without
    /// its value `InVariableEx::ExMissingValue`, and the variable is then invalid.
    void initialize() override;
    void finalize() override;

    const char* getHandle() const noexcept { return _handle.c_str(); }
    const char* getHelp() const noexcept { return _help.c_str(); }
    const InPackageInitBase& getPackage() const noexcept { return *_package; }
    /// Whether the package has started the variable, be it with a valid value or not.
    bool isInitialized() const noexcept { return _state != State::Uninitialized; }

    /// Where the value came from. Raises like `InVariable::getValue`.
    Source getSource() const;

    /// One line for the value and the source that won, then an indented one for each candidate that
    /// lost, in the order of their precedence. Texts are cut at 256 characters.
    void dump(std::ostream& os) const;

    /// The columns of the help. A variable that an alias gives an option is listed without the
    /// option that its handle makes.
    struct HelpLine
    {
        std::string options;
        std::string environmentNames;
        std::string defaultText;
        std::string meaning;
    };
    HelpLine getHelpLine() const;

protected:
    /// Registers the variable and attaches it to its package. The texts are copied.
    InNamedVariable(InPackageInitBase& package, const char* handle, const char* help);

    /// Raises `InEx::ExUninitializedObject` or `InEx::ExInvalidObject` unless there is a value.
    void checkReadable() const;

private:
    /// What one source offers.
    struct Candidate
    {
        Source source;
        std::string origin; ///< in words, such as "option --samples"
        std::string text;
        bool isMissing;
        bool isMalformed;
    };

    enum class State
    {
        Uninitialized,
        Invalid,
        Ready
    };

    /// An entry in the registry.
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

    virtual bool isFlag() const = 0;
    virtual bool isWellFormed(std::string_view text) const = 0;
    virtual void setValueText(std::string_view text) = 0;
    virtual bool setDefault() = 0; ///< false when the default is invalid
    virtual std::string getValueText() const = 0;
    virtual std::string getDefaultText() const = 0;
    virtual std::string getExpectedForm() const = 0;

    void collectCandidates();
    void collectOverride();
    void collectFromCommandLine();
    void collectFromEnvironment();
    Vector<std::string> getOptions() const;
    Candidate readOption(std::size_t position) const;
    Candidate readNegation(std::size_t position) const;
    void addCandidate(Candidate candidate);
    void reportMalformed() const;
    std::string describeOption(const std::string& option) const;
    void takeBest();

    std::string _handle;
    std::string _help;
    InPackageInitBase* _package;
    State _state = State::Uninitialized;
    std::size_t _winner = 0;       // index in the candidates; their number for the default
    Vector<Candidate> _candidates; // in the order of their precedence, the default left out
    Registration _registration;
};

} // namespace Kr
