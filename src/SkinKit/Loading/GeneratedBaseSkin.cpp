#include "SkinKit/Loading/GeneratedBaseSkin.h"

#include "SkinKit/Loading/BaseSpritePainter_p.h"

namespace vantor::GeneratedBaseSkin {

namespace {

QImage drawn(const std::vector<Sprite> &sprites) {
    QRect bounds;
    for (const Sprite &sprite : sprites)
        bounds |= QRect(QPoint(0, 0), sprite.rect().bottomRight());
    PixelCanvas canvas(bounds.size());
    BaseSpritePainter painter(canvas);
    for (const Sprite &sprite : sprites)
        painter.paint(sprite);
    return canvas.image();
}

} // namespace

const QStringList &sheetNames() {
    static const QStringList names{
        QStringLiteral("CBUTTONS"), QStringLiteral("EQMAIN"),   QStringLiteral("MAIN"),
        QStringLiteral("MONOSTER"), QStringLiteral("NUMBERS"),  QStringLiteral("PLAYPAUS"),
        QStringLiteral("PLEDIT"),   QStringLiteral("POSBAR"),   QStringLiteral("SHUFREP"),
        QStringLiteral("TEXT"),     QStringLiteral("TITLEBAR"), QStringLiteral("VOLUME"),
    };
    return names;
}

QImage sheet(const QString &name) {
    static const QHash<QString, QImage> sheets = [] {
        QHash<QString, QImage> made;
        for (const QString &each : sheetNames())
            made.insert(each, drawn(SkinSprites::sheets().value(each)));
        return made;
    }();
    return sheets.value(name);
}

} // namespace vantor::GeneratedBaseSkin
