// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/systemFile.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

std::string_view systemFile::trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string systemFile::head(const fs::path &file, std::size_t limit)
{
    std::ifstream in(file, std::ios::binary);
    std::string text(limit, '\0');
    in.read(text.data(), static_cast<std::streamsize>(limit));
    text.resize(static_cast<std::size_t>(in.gcount()));
    return text;
}

std::optional<std::string> systemFile::line(const fs::path &file)
{
    constexpr std::size_t longest = 128;
    const std::string text = head(file, longest + 1);
    const std::string_view words = trimmed(text);
    const bool isPrintable =
        std::all_of(words.begin(), words.end(), [](char c) { return c >= ' ' && c <= '~'; });
    if (words.empty() || text.size() > longest || !isPrintable)
        return std::nullopt;
    return std::string(words);
}

std::optional<long long> systemFile::number(const fs::path &file)
{
    const std::string text = line(file).value_or("");
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

void systemFile::forEach(const fs::path &directory, std::string_view prefix,
                         const std::function<void(const fs::path &)> &visit)
{
    constexpr std::size_t most = 8192;
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end;
         !error && entry != end && found.size() < most; entry.increment(error)) {
        if (entry->path().filename().string().starts_with(prefix))
            found.push_back(entry->path());
    }
    std::sort(found.begin(), found.end());
    for (const fs::path &path : found)
        visit(path);
}
