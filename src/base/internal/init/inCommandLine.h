#pragma once

/// @file
/// The command line as the variables search it. Internal to the library.

#include <base/vector.h>

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace Kr
{

/// An index of the words in `InContextAliasMgrBase::args()`: where each option stands, and which
/// words have been taken. Words that were appended since the last call are indexed at the next one,
/// so a start-up looks at each word once, however many variables there are.
class InCommandLine
{
public:
    /// What a word is worth to the option that stands at a position.
    struct Value
    {
        bool isAttached; ///< the value follows "=" in the option's own word
        bool isPresent;  ///< there is a value, attached or in the next word
        std::string_view text;
    };

    static InCommandLine& getInstance();

    /// The positions of an option ("--samples"), ascending.
    const Vector<std::size_t>& find(std::string_view option);

    /// The name of the option at a position, without its value.
    std::string_view getOption(std::size_t position) const;

    /// The value of the option at a position: after its "=", or else the next word unless that
    /// begins with two dashes.
    Value getValue(std::size_t position) const;

    void take(std::size_t position) { _isTaken[position] = true; }
    Vector<char*> getRemainingWords();

    /// Forgets every word: the list is about to be released.
    void clear() noexcept;

private:
    void indexNewWords();
    void indexWord(std::size_t position);

    std::unordered_map<std::string_view, Vector<std::size_t>> _positions; // keys within the words
    Vector<bool> _isTaken;                                                // one for each word
    bool _hasEnded = false;                                               // after "--"
};

} // namespace Kr
