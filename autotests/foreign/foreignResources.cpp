// SPDX-License-Identifier: GPL-3.0-or-later

// Names nothing of the library, so that nothing but the link itself can bring the embedded files.
#include <QFile>

#include <cstdio>

int main()
{
    for (const char *name : {":/data/benches.xml", ":/icons/fire.png"}) {
        if (!QFile::exists(QString::fromLatin1(name))) {
            std::fprintf(stderr, "missing: %s\n", name);
            return 1;
        }
    }
    return 0;
}
