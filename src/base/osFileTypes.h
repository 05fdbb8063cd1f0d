#pragma once

/// @file
/// The small values of the file classes.
/// @code
/// const Kr::OsFileTypes::Permissions permissions(3, 3, 0); // user and group read and write
/// Kr::OsFileWriter writer("scene.txt", permissions, false);
/// writer.seek(-16, Kr::OsFileTypes::SeekEnd);
/// @endcode

#include <cstdint>

namespace Kr
{

struct OsFileTypes
{
    /// What is found at a path. The numbers are part of the interface.
    enum ElementType
    {
        RegularFile = 0,
        Directory = 1,
        SymbolicLink = 2, ///< never told by this system
        OtherElement = 3
    };

    /// What an offset counts from. The order is not the system's.
    enum SeekMode
    {
        SeekCurrent = 0,
        SeekStart = 1,
        SeekEnd = 2
    };

    /// An open handle of the system, as a number of its width.
    using Handle = std::intptr_t;
    static constexpr Handle invalidHandle = -1;

    /// What the user, the group and others may do: 1 to read, 2 to write, 4 to execute, added up.
    /// This system takes permissions and ignores them.
    class Permissions
    {
    public:
        Permissions(int user, int group, int other) noexcept
            : _userMode(user)
            , _groupMode(group)
            , _otherMode(other)
        {
        }

        int getUserMode() const noexcept { return _userMode; }
        int getGroupMode() const noexcept { return _groupMode; }
        int getOtherMode() const noexcept { return _otherMode; }

    private:
        std::int32_t _userMode;
        std::int32_t _groupMode;
        std::int32_t _otherMode;
    };

    /// How buffers, offsets and sizes have to be aligned for unbuffered transfers, in bytes.
    class UnbufferedInfo
    {
    public:
        UnbufferedInfo() noexcept
            : UnbufferedInfo(0, 0, 0)
        {
        }
        UnbufferedInfo(std::uint32_t alignment, std::uint32_t blockSize,
                       std::uint32_t maxSize) noexcept
            : _alignment(alignment)
            , _blockSize(blockSize)
            , _maxSize(maxSize)
        {
        }

        std::uint32_t getAlignment() const noexcept { return _alignment; }
        std::uint32_t getBlockSize() const noexcept { return _blockSize; }
        std::uint32_t getMaxSize() const noexcept { return _maxSize; } ///< of one transfer

    private:
        std::uint32_t _alignment;
        std::uint32_t _blockSize;
        std::uint32_t _maxSize;
    };
};

} // namespace Kr
