// The animated logo of the main dialog (control 17): the letters "GM5" riding a wave of colour,
// one step every tick of the dialog's timer 99. Windows-only.
#pragma once

#include <windows.h>

constexpr UINT_PTR kLogoTimerId = 99;
constexpr UINT kLogoPeriod = 60;  // milliseconds

// Starts the logo's timer on `dialog` at the first step.
void StartLogo(HWND dialog);
// Stops the timer; the logo then stands still.
void StopLogo(HWND dialog);
// One tick: advances the animation and repaints control `logoId`.
void AdvanceLogo(HWND dialog, int logoId);
// Paints the logo at its current step into the owner-drawn control.
void PaintLogo(const DRAWITEMSTRUCT* item);
