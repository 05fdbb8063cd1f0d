#pragma once

/// @file
/// The exit codes that this layer makes up. They lie in the range that the system leaves to
/// programs for errors that end them, so that all abnormal ends look alike.

#include <cstdint>

/// On a POSIX host, with the number of a signal that has no code of the system's.
constexpr std::uint32_t krSignalCode = 0xE0510000;

/// Ended by force.
constexpr std::uint32_t krKilled = krSignalCode | 9;

/// It has ended, but somebody else has fetched its status.
constexpr std::uint32_t krStatusLost = 0xE0520000;
