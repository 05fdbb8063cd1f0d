#pragma once

/// @file
/// Internal to the library: what becomes of the log when the process forks. The parent goes on as
/// before. In the child the other threads are gone, and what they logged is the parent's: a new
/// session begins, which writes into the same files.

namespace Kr
{

class LgFork
{
public:
    /// Once and for all: later calls do nothing.
    static void install();

private:
    static void prepare();
    static void goOnInParent();
    static void goOnInChild();

    static bool _isMainForking; // guarded by the locks that a fork holds
};

} // namespace Kr
