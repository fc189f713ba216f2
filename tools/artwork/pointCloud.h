// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace material
{

/// The point list of the vertex workload: 10,242 lines "x y z" that end with CR LF, four decimals
/// each. The points are those of an icosahedron subdivided five times, blown up to a globe of
/// radius 150 with a gentle relief that stands on the ground: its centre is (0, 0, 150).
QByteArray pointCloudText();

} // namespace material
