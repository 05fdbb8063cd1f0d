#pragma once

/// @file
/// Internal to the library: the file in which the queues of a process outlive it.
///
/// The file is a row of chunks of one size. The first is the header; the others hold names of
/// groups, or the queue of a thread with its two rings. What is here is written by the process that
/// owns the file, and read by whoever finds it when that is dead: numbers have the machine's byte
/// order, and nothing in it points anywhere.
///
/// What the owner has written into its logs it need not leave: every commit says how far each queue
/// was read and how long each log was then. All of a commit counts, or nothing: it is written into
/// the other one of two places, and then the generation is stored, whose lowest bit tells the
/// place. What was read, and is in a log perhaps, but was not committed, is looked for behind the
/// length that the log had at the last commit.

#include <base/lgTypes.h>

#include <atomic>
#include <cstdint>

namespace Kr
{
namespace LgRingFormat
{

constexpr char magic[8] = {'K', 'R', 'r', 'i', 'n', 'g', 's', '\n'};
constexpr std::uint32_t version = 1;
constexpr std::uint32_t chunkSize = 65536;
constexpr std::uint32_t maxChunks = 4096;

/// Names of the files: the prefix, the number of the process, perhaps "-" and a number, the suffix.
constexpr char namePrefix[] = "log-";
constexpr char nameSuffix[] = ".rings";

/// What a chunk begins with.
enum class Kind : std::uint32_t
{
    unused = 0,
    names = 1,
    queue = 2
};

/// Which log a level goes to.
struct Destination
{
    enum Which : std::uint32_t
    {
        nowhere = 0,
        stream = 1,
        file = 2
    };

    std::uint32_t which;
    char path[1020]; ///< of a file; empty if it is too long for this
};

/// How long a file was, and which it is, however it may be called; all 0: there was none.
struct FileMark
{
    std::uint64_t volume;
    std::uint64_t index;
    std::uint64_t size;
};

/// A log, and the file beside it in which the owner goes on while others keep it from the log.
struct LogMark
{
    FileMark shared;
    FileMark own;
};

struct Header
{
    char magic[8];
    std::uint32_t version;
    std::uint32_t chunkSize;
    std::uint32_t process;
    std::uint32_t isJson;
    std::uint32_t hasTimeStamps;
    std::uint32_t keptFiles;
    std::uint64_t maxFileSize;
    std::uint64_t anchorStamp; ///< of the owner's `LgClock`, like the next two
    std::int64_t anchorTime;
    std::int64_t rate;
    Destination destinations[LgTypes::NUM_LEVELS];
    LogMark marks[2][LgTypes::NUM_LEVELS];
    std::atomic<std::uint32_t> generation;
};

/// Names of groups, one behind the other: its number, its length, its characters.
struct Names
{
    Kind kind;
    std::atomic<std::uint32_t> size; ///< of what stands behind this
};
constexpr std::uint32_t maxNameLength = 1024;

/// How far a queue was read.
struct QueueMark
{
    std::uint32_t entry;    ///< the position of the next entry
    std::uint32_t text;     ///< that of the next text ...
    std::uint32_t isOnEnd;  ///< ... or of the terminator of the text before it
    std::uint32_t reserved; ///< 0
};

/// A thread's queue. Places count from the beginning of the chunk; sizes are powers of two.
struct Queue
{
    static constexpr std::uint32_t nameSize = 32;

    Kind kind;
    std::atomic<std::uint32_t> isUsed;
    std::uint64_t thread;
    std::uint32_t endPlace;       ///< of the position behind the last entry, 32 bits
    std::uint32_t committedPlace; ///< of that of the last text's terminator, 32 bits
    std::uint32_t entriesPlace;
    std::uint32_t numEntries;
    std::uint32_t charactersPlace;
    std::uint32_t numCharacters;
    QueueMark marks[2];
    char threadNames[2][nameSize];
};

/// An entry: places from its beginning.
struct Entry
{
    static constexpr std::uint32_t size = 16;
    static constexpr std::uint32_t overflow = 0; ///< a byte, not 0 if it counts losses
    static constexpr std::uint32_t cut = 1;      ///< a byte
    static constexpr std::uint32_t group = 2;    ///< 16 bits
    static constexpr std::uint32_t word = 4;     ///< 32 bits: the level, or how many losses
    static constexpr std::uint32_t timeStamp = 8;
    static constexpr std::uint32_t countMask = 0x7FFFFFFF; ///< of the word of one that counts
};

} // namespace LgRingFormat
} // namespace Kr
