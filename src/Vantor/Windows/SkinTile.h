#pragma once

#include "SkinLibrary/Index/SkinRecord.h"

#include <QPixmap>
#include <QRect>
#include <QSize>

class QPainter;
class QWidget;

namespace vantor {

/// One skin in the browser's grid: its picture with its name below.
struct SkinTile {
    static constexpr QSize pictureSize{165, 70}; ///< device-independent; three fifths of the window's own

    const SkinRecord *skin = nullptr; ///< none while it is being read
    QPixmap picture;                  ///< none while it is being made, or when the skin cannot be drawn
    bool selected = false;
    bool hovered = false;
    bool worn = false;
    bool focused = false; ///< shows the focus ring

    /// The least room that it needs.
    [[nodiscard]] static QSize minimumSize(const QWidget &view);
    /// In the view's colours and font.
    void draw(QPainter &painter, const QRect &cell, const QWidget &view) const;
};

} // namespace vantor
