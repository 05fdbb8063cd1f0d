#pragma once

/// @file
/// Starting programs: what the system's own call takes, with texts of any length.
///
/// On Windows the texts become wide ones, because the call for narrow texts takes an environment of
/// 32767 characters only. Failures leave the last error set, as the calls do. What a handle of a
/// process is good for stands in platform.h.

#include <platform/platform.h>

#include <string>
#include <vector>

/// A variable of the child's environment that differs from this process's; no value: removed.
struct KrVariableChange
{
    std::string name;
    std::string value;
    bool isRemoved = false;
};

/// Where a stream of the child leads.
struct KrStream
{
    enum Kind
    {
        inherited, ///< where this process's leads; to the null device if it has none
        null,
        output, ///< of the errors: where the output leads
        handle
    };

    Kind kind = inherited;
    HANDLE file = nullptr;
};

struct KrStart
{
    const char* program;     ///< a full path
    const char* commandLine; ///< see commandLine.h; the program's name stands in it too
    const char* folder;      ///< null for this process's
    bool isEnvironmentKept = true;
    const std::vector<KrVariableChange>* changes; ///< to the environment, or to an empty one
    KrStream streams[3];                          ///< input, output, errors
    bool leadsGroup = false;
};

struct KrProcess
{
    HANDLE process = nullptr;
    HANDLE group = nullptr; ///< on Windows: the job that the process and its descendants are in
    DWORD id = 0;
    bool leadsGroup = false;
};

/// The full path of a program: a name without a folder is looked for beside this program, then in
/// the folders of PATH, never in the current one. On Windows a name without an extension gets
/// ".exe". False with the last error set.
bool krFindProgram(const char* name, std::string& path);

/// The child gets the three streams and no other handle. Its signals are as a program expects them.
bool krStartProcess(const KrStart& start, KrProcess& process);

/// Asks the process, or its whole group, to end; false if there is no way to ask it.
bool krAskToEnd(const KrProcess& process) noexcept;

/// Ends the process, or its whole group, at once.
bool krEndProcess(const KrProcess& process, DWORD code) noexcept;

/// The seconds of processor time that the process has used up to now, or up to its end.
double krGetProcessorTime(const KrProcess& process) noexcept;

void krReleaseProcess(KrProcess& process) noexcept;

/// The full path of this process's program.
std::string krGetProgramPath();
