#pragma once

// The forms have fixed geometry, laid out for screens where a point is a pixel (72 per inch).
// These two keep their text in its place on screens of any density.

/// Let dense screens scale the forms whole, by their exact factor. To be called before the
/// application object exists (Qt documentation, "High DPI Displays").
void scaleFormsWithScreen();

/// Give text that a form sizes in points the same size in pixels. Other text keeps the platform's
/// size, made smaller only where the forms have no place for it. To be called right after the
/// application object is made: any earlier, and Qt's fallback would serve as the platform's style.
void fitTextToForms();
