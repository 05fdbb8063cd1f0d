#pragma once

/// @file
/// The exceptions of the memory architecture: for processors that have no description. Every
/// processor that the library runs on has one, so the library itself does not raise them.
/// @code
/// if (Kr::OsMemoryArch::getInstance().getPageSize() == 0)
///     Kr::raise<Kr::OsMemoryArchEx::ExUnknownCPU>(KR_HERE);
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API OsMemoryArchEx : public ExBase
{
public:
    class ExUnknownCPU;
    class ExUnknownCPUBoard;

    OsMemoryArchEx(const char* file, int line);
};

/// "Unknown CPU Type: Can not compute memory architecture parameters."
class KR_BASE_API OsMemoryArchEx::ExUnknownCPU
    : public ExConcrete<OsMemoryArchEx::ExUnknownCPU, std::runtime_error, OsMemoryArchEx>
{
public:
    ExUnknownCPU(const char* file, int line);
};

/// "Unknown CPU Board Type: Can not compute memory architecture parameters."
class KR_BASE_API OsMemoryArchEx::ExUnknownCPUBoard
    : public ExConcrete<OsMemoryArchEx::ExUnknownCPUBoard, std::runtime_error, OsMemoryArchEx>
{
public:
    ExUnknownCPUBoard(const char* file, int line);
};

} // namespace Kr
