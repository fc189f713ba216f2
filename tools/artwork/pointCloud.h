// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace artwork
{

/// The point list of the vertex workload: 10,242 lines "x y z" that end with CR LF, four decimals
/// each. The points are those of an icosahedron subdivided five times, projected onto a sphere of
/// radius 150 with a gentle relief. Its centre is (0, 0, 150), so that it stands on the ground.
QByteArray pointCloudText();

} // namespace artwork
