#pragma once

/// @file
/// Between the library's narrow texts and the system's wide ones.

#include <string>

std::wstring krWiden(const char* text);

/// @param isExact receives whether every character has a narrow form; null if it does not matter
std::string krNarrow(const wchar_t* text, bool* isExact = nullptr);
