// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

#include <atomic>

void standaloneVertex(point4 *transformed, const point4 *points, int count, int copies,
                      const pointTransform &by, bool multicore)
{
    // Shared and counted down unsynchronised; relaxed atomics are plain loads and stores.
    std::atomic<float> scale[4] = {1.0F, 1.0F, 1.0F, 1.0F};
    const float step = 1.0F / float(copies);
#pragma omp parallel for schedule(static) if (multicore)
    for (int i = 0; i < copies; ++i) {
        const float sx = scale[0].load(std::memory_order_relaxed);
        const float sy = scale[1].load(std::memory_order_relaxed);
        const float sz = scale[2].load(std::memory_order_relaxed);
        const float sw = scale[3].load(std::memory_order_relaxed);
        point4 *out = transformed + static_cast<std::int64_t>(i) * count;
        const point4 *r = by.rotation;
        const point4 *p = by.projection;
        const point4 &t = by.translation;
        for (int j = 0; j < count; ++j) {
            const auto [x, y, z, w] = points[j];
            const float qx = (r[0].x * x + r[0].y * y + r[0].z * z + r[0].w * w + t.x) * sx;
            const float qy = (r[1].x * x + r[1].y * y + r[1].z * z + r[1].w * w + t.y) * sy;
            const float qz = (r[2].x * x + r[2].y * y + r[2].z * z + r[2].w * w + t.z) * sz;
            const float qw = (r[3].x * x + r[3].y * y + r[3].z * z + r[3].w * w + t.w) * sw;
            out[j] = {p[0].x * qx + p[0].y * qy + p[0].z * qz + p[0].w * qw,
                      p[1].x * qx + p[1].y * qy + p[1].z * qz + p[1].w * qw,
                      p[2].x * qx + p[2].y * qy + p[2].z * qz + p[2].w * qw,
                      p[3].x * qx + p[3].y * qy + p[3].z * qz + p[3].w * qw};
        }
        for (auto &component : scale) {
            component.store(component.load(std::memory_order_relaxed) - step,
                            std::memory_order_relaxed);
        }
    }
}
