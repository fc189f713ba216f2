// SPDX-License-Identifier: GPL-3.0-or-later
// The few declarations of the Windows registry that the program uses, over a registry that a test
// fills, so that the code for Windows runs on every platform.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

using BYTE = unsigned char;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
struct fakeKey;
using HKEY = fakeKey *;

constexpr LONG ERROR_SUCCESS = 0;
constexpr LONG ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD KEY_READ = 0x20019;
constexpr unsigned CP_UTF8 = 65001;
inline fakeKey *const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(1);

struct fakeRegistry {
    bool hasKey = true;
    std::wstring openedPath;
    std::map<std::wstring, std::vector<BYTE>> values;
    std::map<std::wstring, DWORD> askedSizes;
    int openKeys = 0;
};
inline fakeRegistry registry;

inline LONG RegOpenKeyExW(HKEY root, const wchar_t *path, DWORD, DWORD access, HKEY *key)
{
    if (!registry.hasKey || root != HKEY_LOCAL_MACHINE || access != KEY_READ)
        return ERROR_FILE_NOT_FOUND;
    registry.openedPath = path;
    ++registry.openKeys;
    *key = reinterpret_cast<HKEY>(2);
    return ERROR_SUCCESS;
}

inline LONG RegQueryValueExW(HKEY, const wchar_t *name, DWORD *, DWORD *, BYTE *data, DWORD *size)
{
    registry.askedSizes[name] = *size;
    const auto value = registry.values.find(name);
    if (value == registry.values.end())
        return ERROR_FILE_NOT_FOUND;
    for (DWORD i = 0; i < *size && i < value->second.size(); ++i)
        data[i] = value->second[i];
    return ERROR_SUCCESS;
}

inline LONG RegCloseKey(HKEY)
{
    --registry.openKeys;
    return ERROR_SUCCESS;
}

/// Only for texts in Latin-1.
inline int WideCharToMultiByte(unsigned, DWORD, const wchar_t *wide, int, char *out, int size,
                               const char *, bool *)
{
    std::string utf8;
    for (; *wide; ++wide) {
        if (*wide < 0x80) {
            utf8 += static_cast<char>(*wide);
        } else {
            utf8 += static_cast<char>(0xC0 | (*wide >> 6));
            utf8 += static_cast<char>(0x80 | (*wide & 0x3F));
        }
    }
    utf8 += '\0';
    for (int i = 0; out && i < size; ++i)
        out[i] = utf8[static_cast<std::size_t>(i)];
    return static_cast<int>(utf8.size());
}
