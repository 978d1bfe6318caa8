#pragma once

class QWidget;

namespace vantor {

/// Gives a window the colour of lesser texts, the palette's PlaceholderText: not every dark palette has one,
/// so they are the text's own colour, fainter, and stay so when the palette changes. Called once. Main
/// thread.
void giveFaintText(QWidget &window);

} // namespace vantor
