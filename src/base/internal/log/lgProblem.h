#pragma once

/// @file
/// Internal to the library: why an operation on the log's files failed.

#include <string>

namespace Kr
{

class LgProblem
{
public:
    /// Takes the reason of the system's call that has just failed.
    void take() noexcept;

    /// Somebody else uses the file.
    void setInUse() noexcept;
    void setNotAFile() noexcept;
    void setNoMemory() noexcept;

    /// In a sentence, the system's where it has one.
    std::string getText() const;

    bool isInUse() const noexcept;

private:
    unsigned long _code = 0;
};

} // namespace Kr
