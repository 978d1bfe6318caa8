#pragma once

#include "LibraryBrowser/LibraryBrowser.h"

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;

/// The small drawings of the Library window, made in code so that they have its colours. Main thread.
namespace vantor::LibraryIcons {

/// What stands for a kind of item, in the middle of a place; none stands for anything.
void draw(QPainter &painter, const QRectF &place, std::optional<MediaKind> kind, const QColor &color);
void drawHeart(QPainter &painter, const QRectF &place, const QColor &color);

[[nodiscard]] QIcon section(LibrarySection section, const QColor &color);
/// An arrow to the left or right.
[[nodiscard]] QIcon back(const QColor &color);
[[nodiscard]] QIcon forward(const QColor &color);
[[nodiscard]] QIcon search(const QColor &color);

} // namespace vantor::LibraryIcons
