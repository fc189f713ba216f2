// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/ornament.h"
#include "tools/artwork/patchwork.h"
#include "tools/artwork/pointCloud.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QString>

#include <cstdio>

namespace
{

/// Reports a file that could not be written.
bool report(bool succeeded, const QString &path)
{
    if (!succeeded)
        std::fprintf(stderr, "Cannot write %s\n", qUtf8Printable(path));
    return succeeded;
}

bool writePicture(const QString &path, const QImage &picture)
{
    return report(picture.save(path, "PNG", 0), path);
}

bool writeText(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return report(file.open(QFile::WriteOnly) && file.write(text) == text.size() && file.flush(),
                  path);
}

} // namespace

/// Makes the pictures and the point list that are embedded in the programs, in a directory.
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "Usage: %s DIRECTORY\n", argv[0]);
        return 2;
    }
    const QDir directory(QFile::decodeName(argv[1]));
    const auto path = [&directory](const char *name) {
        return directory.filePath(QString::fromLatin1(name));
    };
    const bool picturesWritten =
        writePicture(path("pic4_512_512.png"), artwork::ornamentPicture())
        && writePicture(path("pic2_512_512.png"), artwork::patchworkPicture());
    const bool written =
        picturesWritten && writeText(path("wPoints.txt"), artwork::pointCloudText());
    return written ? 0 : 1;
}
