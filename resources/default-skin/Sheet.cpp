#include "Sheet.h"

#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor::art {

Sheet::Sheet(const char *name) : m_name(QString::fromLatin1(name)) {
    QRect extent;
    for (const Sprite &sprite : SkinSprites::sheets().value(m_name))
        extent |= sprite.rect();
    m_image = QImage(extent.right() + 1, extent.bottom() + 1, QImage::Format_RGB32);
    m_image.fill(palette::bodyBottom); // between sprites; nothing shows it
}

Canvas Sheet::sprite(const QString &name) {
    const auto found = SkinSprites::byName().constFind(name);
    if (found == SkinSprites::byName().cend() || found->sheet != m_name)
        qFatal("%s has no sprite %s", qPrintable(m_name), qPrintable(name));
    return Canvas(m_image).part(found->sprite.rect());
}

Canvas Sheet::sprite(const char *name) {
    return sprite(QString::fromLatin1(name));
}

Canvas Sheet::sprite(const char *name, const QImage &window, QPoint at) {
    Canvas canvas = sprite(name);
    canvas.copy(window, at);
    return canvas;
}

} // namespace vantor::art
