// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QComboBox;
class QWidget;

/// What people are told about the controls of the main window beside what stands on them: tool
/// tips, and names and descriptions for screen readers.
namespace controlTexts
{

/// Gives the controls inside @p window, known by their object names, their texts, and joins each
/// label with the chooser that it names.
void apply(QWidget &window);

/// Lets @p chooser, which lists tests, tell of each and of the chosen one.
void describeTests(QComboBox &chooser);

} // namespace controlTexts
