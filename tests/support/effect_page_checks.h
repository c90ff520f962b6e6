// Checks of a dialog whose effect pages were made by InitEffectPages, written on the dialog port so
// that the headless model and real windows are held to the same account.
#pragma once

#include <gtest/gtest.h>

#include "platform/dialog.h"

// Puts the settings back to their defaults, then moves one setting of each value kind away from
// its default, so that a control filled from its table instead of its setting shows.
void MovePageSettingsFromDefaults();

// Every row's page: each control, label and updown exists and is hidden, has its table's kind,
// and holds its setting's value (or its table's initial value); list rows are the table's, and
// material buttons hold a record made from their creation colour.
testing::AssertionResult PageTwinsMatchTables(WindowHandle dialog);

// ShowEffectPage for each row shows exactly that row's controls among the page controls.
testing::AssertionResult EachRowShowsOnlyItsPage(WindowHandle dialog);
