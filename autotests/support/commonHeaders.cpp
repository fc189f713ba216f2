// SPDX-License-Identifier: GPL-3.0-or-later

// Nothing but what is precompiled for it.
