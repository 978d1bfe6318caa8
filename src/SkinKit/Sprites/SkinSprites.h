#pragma once

#include <QHash>
#include <QMap>
#include <QRect>
#include <QSet>
#include <QString>

#include <vector>

namespace vantor {

/// A named rectangle of a sheet, in pixels from the sheet's top-left corner.
struct Sprite {
    QString name;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] QRect rect() const { return {x, y, width, height}; }
    bool operator==(const Sprite &) const = default;
};

/// The catalogue: which sheet and which rectangle each sprite name means. Built once; any thread.
namespace SkinSprites {

struct Entry {
    QString sheet;
    Sprite sprite;
};

[[nodiscard]] const QMap<QString, std::vector<Sprite>> &sheets();
[[nodiscard]] const QHash<QString, Entry> &byName();
/// What stands in for a sprite whose sheet is not loaded.
[[nodiscard]] const QHash<QString, QString> &fallbacks();
/// Sheets whose absence is no warning.
[[nodiscard]] const QSet<QString> &optionalSheets();
/// Plain digit sprites of NUMBERS to their twins of NUMS_EX.
[[nodiscard]] const QHash<QString, QString> &digitTwins();

} // namespace SkinSprites
} // namespace vantor
