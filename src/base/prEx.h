#pragma once

/// @file
/// What goes wrong with performance counters. Texts of the caller's are cut at 256 characters in a
/// reason; the nearest are at most three names that there are.
/// @code{.cpp}
/// #include <base/prQuery.h>
///
/// void watch(Kr::PrQuery& query)
/// {
///     try
///     {
///         query.add("\\Memory\\Avail Bytes");
///     }
///     catch (const Kr::PrEx& error)
///     {
///         // The object 'Memory' has no counter 'Avail Bytes'; nearest: 'Available Bytes',
///         // 'Cache Bytes', 'Available KBytes'.
///         std::cerr << error.getReason() << '\n';
///     }
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API PrEx : public ExBase
{
public:
    class ExInvalidPath;
    class ExUnknownObject;
    class ExUnknownCounter;
    class ExUnknownInstance;
    class ExNoValue;
    class ExSystem;

protected:
    PrEx(const char* file, int line) noexcept;
};

/// "Invalid counter path '\Memory': it names no counter.": the text is no path, or one that cannot
/// stand where it does.
class KR_BASE_API PrEx::ExInvalidPath
    : public ExConcrete<PrEx::ExInvalidPath, std::invalid_argument, PrEx>
{
public:
    ExInvalidPath(const char* file, int line, const char* path, const char* fault);
};

/// "There is no counter object 'Memry'; nearest: 'Memory', 'System'."
class KR_BASE_API PrEx::ExUnknownObject
    : public ExConcrete<PrEx::ExUnknownObject, std::invalid_argument, PrEx>
{
public:
    /// @param nearest the names as a text, empty if there are none
    ExUnknownObject(const char* file, int line, const char* object, const char* nearest);
};

/// "The object 'Memory' has no counter 'Avail'; nearest: 'Available Bytes', 'Available KBytes'."
class KR_BASE_API PrEx::ExUnknownCounter
    : public ExConcrete<PrEx::ExUnknownCounter, std::invalid_argument, PrEx>
{
public:
    ExUnknownCounter(const char* file, int line, const char* object, const char* counter,
                     const char* nearest);
};

/// "The object 'Processor' has no instance '9'; nearest: '0', '1'."; "The object 'Processor' needs
/// an instance; nearest: '0', '1'." if the path names none; "The object 'Memory' has no instances,
/// not '9' either." if there can be none.
class KR_BASE_API PrEx::ExUnknownInstance
    : public ExConcrete<PrEx::ExUnknownInstance, std::invalid_argument, PrEx>
{
public:
    ExUnknownInstance(const char* file, int line, const char* object, const char* instance,
                      const char* nearest);
};

/// "The counter '\Process(viewer)\% Processor Time' has no value: it needs two collections."
class KR_BASE_API PrEx::ExNoValue : public ExConcrete<PrEx::ExNoValue, std::runtime_error, PrEx>
{
public:
    ExNoValue(const char* file, int line, const char* path, const char* why);
};

/// "The performance counters cannot be read: " with the system's text and "(status 0xc0000bbc)".
class KR_BASE_API PrEx::ExSystem : public ExConcrete<PrEx::ExSystem, std::runtime_error, PrEx>
{
public:
    /// @param status as the system's performance data helper gave it
    ExSystem(const char* file, int line, unsigned long status, const char* systemText);

    unsigned long getStatus() const noexcept { return _status; }

private:
    unsigned long _status;
};

} // namespace Kr
