#pragma once

/// @file
/// Command lines of single-letter options, in the classic style.
/// @code{.cpp}
/// int main(int argc, char** argv)
/// {
///     bool verbose = false;
///     const char* output = nullptr;
///     Kr::InOptionParser parser(argc, argv, "vo:");
///     for (int option = parser.getOption(); option != -1; option = parser.getOption())
///         switch (option)
///         {
///         case 'v': verbose = true; break;
///         case 'o': output = parser.getValue(); break; // null when the value is missing
///         default: std::cerr << "usage: convert [-v] [-o FILE] FILE...\n"; return 2;
///         }
///     for (int i = parser.getArgumentIndex(); i < argc; ++i)
///         std::cout << argv[i] << (verbose ? " to " : " ") << (output ? output : "") << '\n';
/// }
/// @endcode
/// Options may be clustered (`-vo file` is `-v -o file`), a value may be attached (`-ofile`) or
/// follow (`-o file`), and several values may follow one option (`gotoNextValue`). All state is in
/// the object; the argument vector is neither owned nor changed, and must outlive the parser.
///
/// Pitfalls: any argument that begins with two dashes ends the options and is skipped whole,
/// whatever follows the dashes. A missing value is not an error of the parser's. A value that
/// follows its option is taken even if it looks like an option itself.

#include <base/krBaseApi.h>

#include <cstdint>

namespace Kr
{

class KR_BASE_API InOptionParser
{
public:
    /// @param argc the number of arguments, at least 1 (asserted in debug builds; with fewer, or a
    ///     null `argv`, there are no options); a null argument counts as an empty one
    /// @param optionString the accepted letters, each followed by ":" if it takes a value; null
    ///     for none
    InOptionParser(int argc, char** argv, const char* optionString);

    /// The next option's letter (as `unsigned char`); '?' for a letter that is not in the option
    /// string, after which the next call goes on with the rest of the cluster; -1 when the options
    /// have ended, then and from then on.
    int getOption();

    /// The last option's value; null if it has none.
    const char* getValue() const { return _value; }

    /// Takes the following argument, whatever it looks like, as a further value of the same option
    /// and returns it; null when no argument is left. Does nothing when there is no current value.
    const char* gotoNextValue();

    /// The index of the argument being read, at first 0. Once `getOption` has returned -1, that of
    /// the first argument that is not an option.
    int getArgumentIndex() const { return _argumentIndex; }

    /// Takes one item, "key" or "key=value", off a list of items separated by commas:
    /// @code
    /// char line[] = "ro,size=10";
    /// char* text = line;
    /// char readOnly[] = "ro", size[] = "size";
    /// char* const keys[] = {readOnly, size, nullptr};
    /// for (char* value = nullptr; *text != '\0';)
    ///     switch (Kr::InOptionParser::getSubOption(&text, keys, &value))
    ///     {
    ///     case 0: std::cout << "read only\n"; break;
    ///     case 1: std::cout << "size " << (value != nullptr ? value : "missing") << '\n'; break;
    ///     default: std::cerr << "unknown: " << value << '\n';
    ///     }
    /// @endcode
    /// @param option the text, into which ends of text are written; moved on past the item, at last
    ///     to the end of the text
    /// @param tokens the known keys, ended by a null; a null list holds none
    /// @param value the item's value, null if it has none; for an unknown key the key itself
    /// @return the index of the first token equal to the key, or -1
    /// Raises `ExInternalError` when `option`, its text or `value` is null.
    static int getSubOption(char** option, char* const* tokens, char** value);

private:
    const char* getArgument(std::int32_t index) const;
    bool gotoNextCluster();
    void takeValue();
    void gotoArgumentEnd();

    std::int32_t _argc;
    char** _argv;
    const char* _optionString;
    const char* _value;
    std::int32_t _argumentIndex;
    const char* _cursor; // the character read last; null once the options have ended
};

} // namespace Kr
