#pragma once

#include "SkinKit/Loading/SkinCursors.h"
#include "SkinKit/Texts/PlaylistStyle.h"
#include "SkinKit/Texts/SkinRegion.h"
#include "SkinKit/Texts/VisColors.h"

#include <QImage>
#include <QMap>
#include <QRect>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace vantor {

/// A loaded skin: an immutable value, cheap to copy (its images are shared), safe on any thread. Nothing in
/// it refers back to the archive it came from.
struct Skin {
    /// Where a sprite's pixels are: a sheet that is loaded, and a rectangle that may reach past a small
    /// sheet's edge.
    struct Location {
        QString sheet;
        QRect rect;

        bool operator==(const Location &) const = default;
    };

    QMap<QString, QImage> sheets; ///< Format_RGBX8888 by upper-case sheet name, generated ones included
    VisColors visColors = defaultVisColors;
    SkinRegion region;
    QStringList warnings;  ///< what the skin's author would want to know
    QStringList fallbacks; ///< substitutions in the order made
    QSet<QString> generatedSheets;
    PlaylistStyle playlistStyle;
    SkinCursors cursors;

    /// Where to draw a sprite from, fallbacks and extended digits considered; nothing when no sheet has it.
    [[nodiscard]] std::optional<Location> resolve(const QString &sprite) const;

    /// The sprite's pixels, clipped to its sheet; a null image when it does not resolve or nothing is left.
    [[nodiscard]] QImage image(const QString &sprite) const;
    /// One frame of a volume or balance background; `frame` as MainSliders::volumeFrame gives it.
    [[nodiscard]] QImage imageFrame(const QString &sprite, int frame) const;
    /// One frame of the equalizer's band background; `frame` as EQLayout::frame gives it.
    [[nodiscard]] QImage imageBandFrame(const QString &sprite, int frame) const;

    bool operator==(const Skin &) const = default;
};

} // namespace vantor
