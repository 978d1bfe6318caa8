#pragma once

#include "SkinKit/RGBColor.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

namespace vantor {

/// Colours and font of the playlist's rows, from pledit.txt.
struct PlaylistStyle {
    RGBColor normal{0, 255, 0};             ///< text of ordinary rows
    RGBColor current{255, 255, 255};        ///< text of the playing row
    RGBColor normalBackground{0, 0, 0};     ///< behind ordinary rows
    RGBColor selectedBackground{0, 0, 198}; ///< behind selected rows
    QString font = QStringLiteral("Arial"); ///< a font family, not necessarily installed

    bool operator==(const PlaylistStyle &) const = default;

    /// The style of a skin without pledit.txt.
    static const PlaylistStyle defaults;
};

/// Total: what cannot be used keeps its default and adds a message.
namespace PlaylistStyleParser {

struct Result {
    PlaylistStyle style;
    QStringList messages;

    bool operator==(const Result &) const = default;
};

[[nodiscard]] Result parse(const QString &text);
[[nodiscard]] Result parse(QByteArrayView bytes);

/// "#RRGGBB" with or without the "#", surplus characters ignored; nothing for anything else.
[[nodiscard]] std::optional<RGBColor> hexColour(const QString &value);

} // namespace PlaylistStyleParser
} // namespace vantor
