#pragma once

/// @file
/// Host calls that a signal may end early.

#include <cerrno>

/// What the call returns in the end: it is made again as long as signals interrupt it.
template <class Call>
auto krFinish(Call call) noexcept
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}
