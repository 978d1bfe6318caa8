#pragma once

#include "Vantor/Windows/TileDrawing.h"

#include <QImage>
#include <QString>

#include <optional>

namespace vantor {

/// One skin of the museum in the grid: its screenshot with its name below.
struct MuseumTile {
    static constexpr QSize pictureSize{165, 209}; ///< device-independent; three fifths of the windows' own

    std::optional<QString> name; ///< none while it is being read
    QImage picture;              ///< none while it is being loaded
    bool hasNoPicture = false;   ///< and none will come soon
    bool isOwned = false;
    bool isWorn = false;
    bool hasFailed = false;         ///< its download, or wearing it
    std::optional<double> progress; ///< of its download, 0 … 1
    TileDrawing::State state;

    /// The least room that it needs.
    [[nodiscard]] static QSize minimumSize(const QWidget &view);
    /// In the view's colours and font.
    void draw(QPainter &painter, const QRect &cell, const QWidget &view) const;
};

} // namespace vantor
