// SPDX-License-Identifier: GPL-3.0-or-later

// Writes a picture with a frame of every test of the suite, as it stands after some rounds at the
// standard resolution. usage: contact-sheet FILE.png (with QT_QPA_PLATFORM=offscreen where there is
// no display)

#include "tests/suite.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>

namespace
{

constexpr int columns = 4;
constexpr int pictureWidth = 382;
constexpr int pictureHeight = 216;
constexpr int captionHeight = 24;
constexpr int margin = 8;
constexpr int rounds = 30;

QImage frameOf(testBase &test)
{
    if (!test.setup(3820, 2160))
        return {};
    for (int i = 0; i < rounds; ++i) {
        test.preRun();
        test.run();
        test.postRun();
    }
    const QImage frame(reinterpret_cast<uchar *>(test.getBuffer()), test.getWidth(),
                       test.getHeight(), QImage::Format_RGB32);
    QImage picture =
        frame.scaled(pictureWidth, pictureHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    test.release();
    return picture;
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: contact-sheet FILE.png\n", stderr);
        return 2;
    }
    const suite tests = makeSuite(nullptr);
    const int rows = (static_cast<int>(tests.size()) + columns - 1) / columns;
    constexpr int cellWidth = pictureWidth + margin;
    constexpr int cellHeight = pictureHeight + captionHeight + margin;
    QImage sheet(columns * cellWidth + margin, rows * cellHeight + margin, QImage::Format_RGB32);
    sheet.fill(Qt::darkGray);
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    for (int i = 0; i < static_cast<int>(tests.size()); ++i) {
        const int x = margin + i % columns * cellWidth;
        const int y = margin + i / columns * cellHeight;
        testBase &test = *tests[static_cast<std::size_t>(i)];
        painter.drawImage(x, y, frameOf(test));
        painter.drawText(QRect(x, y + pictureHeight, pictureWidth, captionHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, test.getName());
    }
    painter.end();
    if (!sheet.save(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
