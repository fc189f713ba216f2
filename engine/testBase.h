// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/hooks.h"
#include "engine/workBuffer.h"

#include <QString>

constexpr quint32 opaqueBlack = 0xFF000000U;

/// One workload of the suite, and the frame it draws into.
///
/// Every test accepts this order of calls: setup (on false the test is not run), getName, then any
/// number of times preRun, run, postRun, of which only run is timed, then getWork, getResultText
/// and release. The amount of work of one run depends on nothing but the size given to setup. A
/// round that cannot do its work, for want of memory, says so through fail: what was timed then is
/// no result.
///
/// The frame is width x height pixels 0xAARRGGBB, row by row without gaps, opaque, owned by the
/// test between setup and release.
class testBase : public printHook
{
public:
    /// @p target receives what print is given; it is not owned and may be null.
    explicit testBase(printHook *target = nullptr);
    testBase(const testBase &) = delete;
    testBase &operator=(const testBase &) = delete;

    void print(const QString &text) override;
    ~testBase() override;

    /// Gives up the old frame and allocates a new, uninitialised one. False, holding no frame, if a
    /// side is not positive, if width x height overflows to less than 1, or without memory. A
    /// derived test calls this first, and then fills the frame and builds its own tables.
    virtual bool setup(int width, int height);
    virtual void release();
    /// The exact name under which results of this test are kept everywhere.
    virtual QString getName() const = 0;
    virtual void preRun() = 0;
    /// One unit of work: the part that is timed.
    virtual void run() = 0;
    virtual void postRun() = 0;
    /// Work done by one run, in millions of the unit.
    virtual float getWork() const = 0;
    /// The word for the unit, such as "MPixel".
    virtual QString getUnit() const = 0;
    /// The throughput as text, from the mean duration of one run in seconds. A mean of 0, which the
    /// 1 ms clock can give for very fast runs, reads as an infinite rate.
    virtual QString getResultText(float average) const;
    virtual bool isMulticore() const = 0;

    /// Whether a round since the latest setup could not do its work.
    bool hasFailed() const { return failed; }

    int getWidth() const { return width; }
    int getHeight() const { return height; }
    /// The frame, or null when no set-up is active.
    quint32 *getBuffer() const { return buffer.data(); }
    /// True for a test that a full run leaves out.
    bool isSingleOnly() const { return singleOnly; }
    void setSingleOnly(bool single) { singleOnly = single; }

protected:
    /// Notes that the present round could not do its work.
    void fail() { failed = true; }
    /// The frame's size in millions of pixels.
    float megapixels() const;
    /// Makes every pixel of the frame opaque black.
    void fillBlack();
    /// The first pixel of row @p y.
    quint32 *row(int y) const
    {
        return buffer.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }

    bool isSetup = false;
    bool singleOnly = false;
    printHook *printTarget;
    qint32 width = 0;
    qint32 height = 0;
    workBuffer<quint32> buffer;

private:
    bool failed = false;
};
