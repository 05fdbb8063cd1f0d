#pragma once

/// @file
/// The leak collector's front end, and the filter of known leaks.
/// @code
/// Kr::HmGC collector;
/// collector.setOutput(&std::cerr);
/// collector.setStackDump(true);
/// collector.setKnownLeaks("KNOWNLEAK viewer+0x1a2b viewer+0x99 ENDL");
/// int* const forgotten = new int(1);
/// collector.validateAndPrint(forgotten); // prints with a checking heap, see hmCheckedNew.h
/// @endcode
/// Over the compiler's own heap nothing is known of a block, and all operations but the filter do
/// nothing.
///
/// Pitfall: `delete` on a collector does not free it, on purpose: a collector belongs on the stack
/// or into static storage.

#include <base/arrayPtr.h>
#include <base/krBaseApi.h>

#include <cstddef>
#include <iosfwd>

namespace Kr
{

class KR_BASE_API HmGC
{
public:
    HmGC();
    ~HmGC(); // NOLINT(performance-trivially-destructible): exported, may come to do something

    // The settings. Each setter returns the previous value.

    /// Where leaks are printed; null, the default, for nowhere. The stream must outlive the
    /// collector.
    std::ostream* setOutput(std::ostream* os);

    /// Whether a leak that is not known raises `HmGCEx::ExGarbageDetected`.
    bool setThrowException(bool on);

    /// Whether the origin of a leak is printed with it.
    bool setStackDump(bool on);

    /// The text for the filter, null for none. Not copied.
    const char* setKnownLeaks(const char* text);

    /// Takes the block for a leak: prints it and raises, as the settings say, unless it is known.
    /// Does nothing if the block is not one of a checking heap.
    void validateAndPrint(void* block);

    /// Writes the addresses of a call stack, which a null ends, as texts: the frames as
    /// `LmList::describe` gives them and the paths of their libraries. Each array is as long as the
    /// stack. Does nothing without a checking heap.
    void extractCallStack(void** stack, ArrayPtr<char>* frames, ArrayPtr<char>* libraries);

    /// Prints a leak of so many bytes with its origin. Does nothing without a checking heap.
    void printLeak(std::size_t size, const char* package, const ArrayPtr<char>* frames,
                   std::size_t count);

    /// Whether a leak is not a known one. The text holds blocks of the form "KNOWNLEAK word word
    /// ENDL", the words separated by single blanks. A leak is known if the words of a block match
    /// its frames from the innermost on; a word matches if it begins with the frame's whole text.
    /// The frames end with a null.
    static bool isLeakValid(const ArrayPtr<char>* frames, const char* text);
    static bool isLeakValid(const char* const* frames, const char* text);

    /// Whether the process has a checking heap.
    static bool isMemDebugLoaded();

    /// Frees nothing, on purpose.
    static void operator delete(void* collector) noexcept;

private:
    std::ostream* _output = nullptr;
    bool _throwException = false;
    bool _stackDump = false;
    const char* _knownLeaks = nullptr;
};

} // namespace Kr
