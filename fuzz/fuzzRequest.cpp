// SPDX-License-Identifier: GPL-3.0-or-later

// What the result database does with the body of a request, up to where it would be stored.

#include "server/formItems.h"
#include "server/uploadCheck.h"
#include "server/uploadOf.h"

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
    const checkedUpload upload = checkUpload(items ? items->value("results") : body);
    if (!upload.isAccepted())
        return 0;
    // What is stored is accepted again, and is the same upload.
    const storedUpload stored = uploadOf(upload.machine, 0);
    const checkedUpload again = checkUpload("<F>" + stored.content + "</F>");
    expect(again.isAccepted());
    expect(uploadOf(again.machine, 0).hash == stored.hash);
    expect(again.machine.getName().size() <= maximumNameLength);
    return 0;
}
