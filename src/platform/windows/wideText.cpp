#include <platform/windows/wideText.h>

#include <platform/platform.h>

#include <algorithm>

std::wstring krWiden(const char* text)
{
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(length, 1)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), length);
    wide.pop_back();
    return wide;
}

std::string krNarrow(const wchar_t* text, bool* isExact)
{
    BOOL replaced = 0;
    const int length = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(std::max(length, 1)), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, -1, result.data(), length, nullptr, &replaced);
    result.pop_back();
    if (isExact != nullptr)
        *isExact = replaced == 0;
    return result;
}
