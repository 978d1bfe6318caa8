#pragma once

#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Sprites/SkinSprites.h"

#include <string>

namespace vantor {

/// A skin in which a pixel's colour names its sprite: the number in the catalogue in red and green, the row
/// inside the sprite in blue. Of sprites that share sheet pixels the later one shows.
class ColorCodedSkin {
  public:
    explicit ColorCodedSkin(const QStringList &without = {}) {
        const auto &sheets = SkinSprites::sheets();
        for (auto it = sheets.cbegin(); it != sheets.cend(); ++it) {
            QImage sheet(345, 435, QImage::Format_RGBX8888);
            for (const Sprite &sprite : it.value()) {
                m_names.append(sprite.name);
                const auto number = static_cast<int>(m_names.size());
                for (int row = 0; row < sprite.height; ++row)
                    for (int column = 0; column < sprite.width; ++column)
                        sheet.setPixel(sprite.x + column, sprite.y + row,
                                       qRgb(number % 256, number / 256, row % 256));
            }
            if (!without.contains(it.key()))
                skin.sheets.insert(it.key(), sheet);
        }
        for (std::size_t i = 0; i < skin.visColors.size(); ++i)
            skin.visColors[i] = {200, 200, static_cast<std::uint8_t>(i)};
    }

    /// "NAME" of the sprite, with "+row" below its first row; "vis n" for a visualizer colour.
    [[nodiscard]] std::string at(const QImage &picture, QPoint point) const {
        const QRgb pixel = picture.pixel(point);
        const int number = qRed(pixel) + 256 * qGreen(pixel);
        if (qRed(pixel) == 200 && qGreen(pixel) == 200)
            return "vis " + std::to_string(qBlue(pixel));
        if (number == 0 || number > m_names.size())
            return "nothing";
        const std::string name = m_names.at(number - 1).toStdString();
        return qBlue(pixel) == 0 ? name : name + "+" + std::to_string(qBlue(pixel));
    }

    Skin skin;

  private:
    QStringList m_names;
};

} // namespace vantor
