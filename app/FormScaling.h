#pragma once

// The forms have a fixed geometry, made for screens where a point is a pixel (72 per inch). With
// these two functions their text fits on screens of any density.

/// Let Qt scale the forms by the exact factor of a dense screen. Call it before the application
/// object is made (Qt documentation, "High DPI Displays").
void scaleFormsWithScreen();

/// Take font sizes that a form sets in points for sizes in pixels. Other text has the platform's
/// size, or a smaller one that fits the forms. Call it right after the application object is made:
/// before that, Qt does not know the platform's style.
void fitTextToForms();
