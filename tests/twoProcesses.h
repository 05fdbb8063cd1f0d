#pragma once

/// @file
/// What tests of several processes need of the system.

#include <array>
#include <atomic>
#include <string>

/// Numbers in a file that processes have in memory: what one of them wrote last is there when it
/// has been killed.
class SharedNumbers
{
public:
    /// Makes the file if need be, of zeros. Ends the program if that fails.
    explicit SharedNumbers(const std::string& path);
    SharedNumbers(const SharedNumbers&) = delete;
    SharedNumbers& operator=(const SharedNumbers&) = delete;
    ~SharedNumbers();

    std::atomic<int>& operator[](std::size_t i) { return (*_numbers)[i]; }

    void reset()
    {
        for (std::atomic<int>& number : *_numbers)
            number = 0;
    }

private:
    using Numbers = std::array<std::atomic<int>, 4>;

    Numbers* _numbers;
};

/// Whether the caller is the child of a fork; never, where the system does not fork.
bool isForkedChild();

/// How many processes that makes of one.
extern const int processesOfAFork;
