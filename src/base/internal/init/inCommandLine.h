#pragma once

/// @file
/// Internal to the library: the command line, and what has been taken of it.

#include <base/vector.h>

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace Kr
{

/// Owns the copies of the words, finds the options among them, and keeps which words have been
/// taken. Words that were appended since the last search are indexed at the next one, so a start-up
/// looks at each word once, however many variables there are.
class InCommandLine
{
public:
    /// What stands at the position of an option.
    struct Use
    {
        std::string_view option; ///< without its value
        std::string_view value;
        bool isAttached; ///< the value follows "=" in the option's own word
        bool hasValue;   ///< attached or in the next word, unless that begins with two dashes
    };

    static InCommandLine& getInstance();

    InCommandLine() = default;
    InCommandLine(const InCommandLine&) = delete;
    InCommandLine& operator=(const InCommandLine&) = delete;
    ~InCommandLine() { release(); }

    /// Appends copies of the words, or leaves everything as it is when it raises. None may be null.
    void append(int count, const char* const* words);

    /// The copies, each made with `new char[]`, the program name first.
    Vector<char*>& getWords() noexcept { return _words; }
    Vector<char*> getRemainingWords();

    /// The positions of an option ("--samples"), ascending.
    const Vector<std::size_t>& find(std::string_view option);
    Use getUse(std::size_t position) const;
    void take(std::size_t position) { _isTaken[position] = true; }

    /// Releases every word.
    void release() noexcept;
    /// Forgets what is known of the words.
    void forget() noexcept;

    /// Whether the word can be an option of a setting's, and the part of it before its value.
    static bool isOption(std::string_view word) noexcept
    {
        return word.size() > 2 && word.substr(0, 2) == "--";
    }
    static std::string_view getOption(std::string_view word) noexcept
    {
        return word.substr(0, word.find('='));
    }

private:
    void indexNewWords();
    void indexWord(std::size_t position);

    Vector<char*> _words;
    std::unordered_map<std::string_view, Vector<std::size_t>> _positions; // keys within the words
    Vector<bool> _isTaken;  // one for each word that is indexed
    bool _hasEnded = false; // after "--"
};

} // namespace Kr
