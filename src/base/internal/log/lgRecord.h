#pragma once

/// @file
/// Internal to the library: a message as the reader takes it from its queue.

#include <base/lgTypes.h>

#include <string_view>

namespace Kr
{

struct LgRecord
{
    LgTypes::Level level;
    unsigned long long timeStamp; ///< of the hardware counter, in ticks
    unsigned long thread;         ///< 0: the thread that started the logger
    std::string_view group;       ///< empty: none
    std::string_view text;
    int lost = 0;                     ///< how many messages the record stands for that were dropped
    bool isCut = false;               ///< something of the message did not fit into its queue
    std::string_view threadName = {}; ///< empty: none
};

} // namespace Kr
