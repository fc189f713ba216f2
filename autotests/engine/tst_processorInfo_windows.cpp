// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorInfo.h"

#include <QtTest>

#include <windows.h>

namespace
{

std::vector<BYTE> bytesOf(const void *data, std::size_t size)
{
    const auto *first = static_cast<const BYTE *>(data);
    return {first, first + size};
}

void setName(const std::wstring &name)
{
    registry.values[L"ProcessorNameString"] =
        bytesOf(name.c_str(), (name.size() + 1) * sizeof(wchar_t));
}

void setMegahertz(DWORD megahertz)
{
    registry.values[L"~MHz"] = bytesOf(&megahertz, sizeof megahertz);
}

} // namespace

class tst_processorInfo_windows : public QObject
{
    Q_OBJECT

private slots:
    void init() { registry = {}; }
    void cleanup() { QCOMPARE(registry.openKeys, 0); }
    void readsBoth();
    void noKey();
    void noValues();
    void longNameIsCut();
    void nameBeyondAscii();
};

void tst_processorInfo_windows::readsBoth()
{
    setName(L" Intel(R) Core(TM) i7-4770 CPU @ 3.40GHz ");
    setMegahertz(3392);
    const processorInfo info = readProcessorInfo();
    QCOMPARE(registry.openedPath,
             std::wstring(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0"));
    QCOMPARE(info.name.value_or("none"), std::string(" Intel(R) Core(TM) i7-4770 CPU @ 3.40GHz "));
    QCOMPARE(info.megahertz.value_or(0), 3392U);
}

void tst_processorInfo_windows::noKey()
{
    registry.hasKey = false;
    const processorInfo info = readProcessorInfo();
    QVERIFY(!info.name.has_value());
    QVERIFY(!info.megahertz.has_value());
}

void tst_processorInfo_windows::noValues()
{
    const processorInfo info = readProcessorInfo();
    QCOMPARE(info.name.value_or("none"), std::string());
    QCOMPARE(info.megahertz.value_or(1), 0U);
}

void tst_processorInfo_windows::longNameIsCut()
{
    setName(std::wstring(500, L'x'));
    const processorInfo info = readProcessorInfo();
    QCOMPARE(registry.askedSizes[L"ProcessorNameString"], 260U);
    QCOMPARE(info.name.value_or("none"), std::string(260 / sizeof(wchar_t), 'x'));
}

void tst_processorInfo_windows::nameBeyondAscii()
{
    setName(L"Proc\u00e9ssor");
    QCOMPARE(readProcessorInfo().name.value_or("none"), std::string("Proc\u00e9ssor"));
}

QTEST_APPLESS_MAIN(tst_processorInfo_windows)
#include "tst_processorInfo_windows.moc"
