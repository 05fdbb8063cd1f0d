#pragma once

#include <base/hwIntervalTimer.h>
#include <base/osFilePath.h>
#include <base/profiler.h>

#include <cstdint>
#include <string>
#include <vector>

/// Copies a directory with everything below it, keeps the files' dates, and compares the copy with
/// the original byte for byte.
class Mirror
{
public:
    Mirror(const Kr::OsFilePath& source, const Kr::OsFilePath& target);

    void collect(); ///< what there is to copy
    void copy();
    void verify(); ///< raises `Kr::ExInternalError` naming a file that differs

    std::string describe() const;
    std::vector<const Kr::ProfilerBase*> getProfilers() const;

private:
    struct File
    {
        Kr::OsFilePath path; ///< from the source on
        std::uint64_t size;
    };

    void copyFile(const File& file);

    const Kr::OsFilePath _source;
    const Kr::OsFilePath _target;
    std::vector<Kr::OsFilePath> _directories;
    std::vector<File> _files;
    std::uint64_t _bytes = 0;
    Kr::Profiler<Kr::HwIntervalTimer> _walking;
    Kr::Profiler<Kr::HwIntervalTimer> _copying;
    Kr::Profiler<Kr::HwIntervalTimer> _verifying;
};
