// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorInfo.h"

#include <windows.h>

namespace
{

std::string toUtf8(const wchar_t *text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size < 1)
        return {};
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back(); // the terminating zero
    return utf8;
}

std::string readName(HKEY key)
{
    // The size handed over is 260 bytes although the buffer holds more, so at most 130 characters
    // arrive, and the text is always zero-terminated. A failed read leaves it empty.
    wchar_t text[260] = {};
    DWORD size = 260;
    RegQueryValueExW(key, L"ProcessorNameString", nullptr, nullptr, reinterpret_cast<BYTE *>(text),
                     &size);
    return toUtf8(text);
}

std::uint32_t readMegahertz(HKEY key)
{
    DWORD megahertz = 0;
    DWORD size = sizeof megahertz;
    RegQueryValueExW(key, L"~MHz", nullptr, nullptr, reinterpret_cast<BYTE *>(&megahertz), &size);
    return megahertz;
}

} // namespace

processorInfo readProcessorInfo(const std::filesystem::path &)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", 0,
                      KEY_READ, &key)
        != ERROR_SUCCESS)
        return {};
    processorInfo info{readName(key), readMegahertz(key)};
    RegCloseKey(key);
    return info;
}
