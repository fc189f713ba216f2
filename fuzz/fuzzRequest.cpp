// SPDX-License-Identifier: GPL-3.0-or-later

// What the result database does with the body of a request, up to where it would be stored.

#include "server/formItems.h"
#include "server/storedUpload.h"
#include "server/uploadCheck.h"

#include <cstdint>
#include <cstdlib>

namespace
{

void expect(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const auto items = formItems(body);
    const auto machine = checkUpload(items ? items->value("results") : body);
    if (!machine)
        return 0;
    // What is stored is accepted again, and is the same upload.
    const storedUpload stored = makeUpload(*machine, 0);
    const auto again = checkUpload("<F>" + stored.content + "</F>");
    expect(again.has_value());
    expect(makeUpload(*again, 0).hash == stored.hash);
    expect(again->getName().size() <= maximumNameLength);
    return 0;
}
