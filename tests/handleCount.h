#pragma once

/// How many files and other objects of the system the process holds open; the build picks the
/// system's half.
namespace HandleCount
{

unsigned get();

} // namespace HandleCount
