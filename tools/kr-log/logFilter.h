#pragma once

/// @file
/// Which records are wanted.

#include "logRecord.h"

#include <string>
#include <vector>

namespace KrLog
{

class Filter
{
public:
    /// A level and those that are more severe; "Profiling" is by itself. Each further call adds to
    /// what is wanted. False if there is no such level; case and blanks do not matter.
    bool addLevel(const std::string& name);

    /// A pattern with `*` and `?`, for the group; each further call adds to what is wanted.
    void addGroup(const std::string& pattern) { _groups.push_back(pattern); }

    /// The same for a thread: its number, its name, or "main", behind its process's number and a
    /// colon if it is to be of that process.
    void addThread(const std::string& pattern) { _threads.push_back(pattern); }

    /// A moment: the beginning of a time in UTC ("2026-11-21T07:33"), or how long ago it was
    /// ("90s", "15m", "2h", "1d"). False if it is neither.
    bool setSince(const std::string& moment) { return readMoment(moment, _since); }
    bool setUntil(const std::string& moment) { return readMoment(moment, _until); }

    /// A foreign line passes only where nothing is asked for, a line without a time where no time
    /// is.
    bool accepts(const Record& record) const;

private:
    static bool readMoment(const std::string& moment, std::string& time);
    bool acceptsTime(const std::string& time) const;

    unsigned _levels = 0; ///< a bit for each that is wanted; 0: all are
    std::vector<std::string> _groups;
    std::vector<std::string> _threads;
    std::string _since;
    std::string _until;
};

} // namespace KrLog
