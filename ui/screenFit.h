// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QMainWindow;
class QRect;

/// Sizes of windows on small screens.
namespace screenFit
{

/// Makes @p window, with the frame that a window manager puts around it, no larger than @p area,
/// and puts it there. A window that fits stays as it is. One whose controls need more room gets
/// narrower margins inside them.
void fit(QMainWindow &window, const QRect &area);

/// The same with the free area of the screen that @p window is going to be on.
void fit(QMainWindow &window);

} // namespace screenFit
