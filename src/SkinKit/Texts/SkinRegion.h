#pragma once

#include <QByteArrayView>
#include <QList>
#include <QMap>
#include <QPoint>
#include <QString>

#include <optional>

namespace vantor {

/// Window outlines from region.txt: lower-case section name to polygons in skin pixels.
struct SkinRegion {
    using Polygon = QList<QPoint>;

    /// Larger coordinates are clamped, so that they can be scaled and offset without overflow.
    static constexpr int maxCoordinate = 1'000'000;

    QMap<QString, QList<Polygon>> sections;

    [[nodiscard]] std::optional<QList<Polygon>> normal() const { return section("normal"); }
    [[nodiscard]] std::optional<QList<Polygon>> windowShade() const { return section("windowshade"); }
    [[nodiscard]] std::optional<QList<Polygon>> equalizer() const { return section("equalizer"); }
    [[nodiscard]] std::optional<QList<Polygon>> equalizerShade() const { return section("equalizerws"); }

    bool operator==(const SkinRegion &) const = default;

    /// A skin without a region file: every window is its full rectangle.
    static const SkinRegion empty;

  private:
    [[nodiscard]] std::optional<QList<Polygon>> section(const char *name) const;
};

/// Total: whole polygons only, surplus points ignored. A list ends at the first thing in it that is no
/// number, and a section without a polygon is left out.
namespace RegionParser {

[[nodiscard]] SkinRegion parse(const QString &text);
[[nodiscard]] SkinRegion parse(QByteArrayView bytes);

} // namespace RegionParser
} // namespace vantor
