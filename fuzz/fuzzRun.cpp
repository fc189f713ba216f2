// SPDX-License-Identifier: GPL-3.0-or-later

// A kept run, or a file that somebody wants to compare with.

#include "data/runJson.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const outcome<runRecord> run =
        readRunRecord(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    if (!run)
        return run.error().isEmpty() ? std::abort(), 1 : 0;
    // Whatever was read can be written and is read again, as it was.
    const QByteArray json = toJson(*run);
    const outcome<runRecord> again = readRunRecord(json);
    if (!again || again->tests.size() != run->tests.size() || toJson(*again) != json)
        std::abort();
    return 0;
}
