#pragma once

/// @file
/// Counts what the program allocates with `new`. On Linux that includes what the library allocates.

/// The number of allocations so far. A test program that calls this lists `allocationCount.cpp`
/// among its sources.
int getAllocationCount();
