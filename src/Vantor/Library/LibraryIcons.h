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
/// A heart; `filled`: of something that is a favourite.
void drawHeart(QPainter &painter, const QRectF &place, const QColor &color, bool filled = true);
/// Beside what plays; `sounds`: it is not held.
void drawSpeaker(QPainter &painter, const QRectF &place, const QColor &color, bool sounds);

[[nodiscard]] QIcon section(LibrarySection section, const QColor &color);
/// An arrow.
[[nodiscard]] QIcon left(const QColor &color);
[[nodiscard]] QIcon right(const QColor &color);
[[nodiscard]] QIcon search(const QColor &color);
[[nodiscard]] QIcon heart(const QColor &color, bool filled);
/// Three dots: more can be done.
[[nodiscard]] QIcon more(const QColor &color);

} // namespace vantor::LibraryIcons
