#pragma once

/// @file
/// Internal to the library: what becomes of the log when the process forks. The parent goes on as
/// before. In the child the other threads are gone, and what they logged is the parent's: a new
/// session begins, which writes into the same files.

namespace Kr
{
namespace LgFork
{

/// Once and for all: later calls do nothing.
void install();

} // namespace LgFork
} // namespace Kr
