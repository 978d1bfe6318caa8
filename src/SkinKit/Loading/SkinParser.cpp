#include "SkinKit/Loading/SkinParser.h"

#include "SkinKit/Decoding/BMPDecoder.h"
#include "SkinKit/Decoding/PlatformImage.h"
#include "SkinKit/Loading/GeneratedBaseSkin.h"
#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Sprites/SkinSprites.h"

#include <new>

namespace vantor::SkinParser {

namespace {

QString bitmapName(const QString &sheet) {
    return sheet.toLower() + QStringLiteral(".bmp");
}

QImage withoutAlpha(const QImage &image) {
    // Two steps, because premultiplied pixels have to be divided by the alpha before it is dropped.
    return image.convertToFormat(QImage::Format_RGBA8888).convertToFormat(QImage::Format_RGBX8888);
}

QImage decodeSheet(const QByteArray &bytes) {
    // Bitmaps go through our own decoder alone, so that its rules bind every one of them.
    if (bytes.startsWith("BM"))
        return BMPDecoder::decode(bytes);
    const QImage image = PlatformImage::decode(bytes, BMPDecoder::maxSide, BMPDecoder::maxPixels);
    return image.isNull() ? image : withoutAlpha(image);
}

/// One pass over an archive; its methods run in the order in which the skin's two lists are written.
class Pass {
  public:
    enum class Pictures { keep, forget };

    explicit Pass(const SkinArchive &archive, Pictures pictures = Pictures::keep)
        : m_archive(archive), m_pictures(pictures) {}

    QStringList warnings() {
        readSheets();
        reportSheets();
        return std::move(m_skin.warnings);
    }

    Skin run() {
        readSheets();
        generateSheets();
        reportSheets();
        readColors();
        readRegion();
        readPlaylistStyle();
        m_skin.cursors = SkinCursors::load(m_archive);
        return std::move(m_skin);
    }

  private:
    void readSheets();
    void generateSheets();
    void reportSheets();
    void reportDigits();
    void readColors();
    void readRegion();
    void readPlaylistStyle();

    [[nodiscard]] bool isMissing(const char *sheet) const {
        return m_missing.contains(QLatin1StringView(sheet));
    }
    [[nodiscard]] std::optional<QByteArray> text(const char *name) const {
        return m_archive.file(QLatin1StringView(name), {QStringLiteral("txt")});
    }
    void warn(const QString &line) { m_skin.warnings.append(line); }
    void fallBack(const QString &line) { m_skin.fallbacks.append(line); }

    const SkinArchive &m_archive;
    const Pictures m_pictures;
    Skin m_skin;
    QStringList m_missing; // ascending
    QSet<QString> m_undecodable;
};

void Pass::readSheets() {
    const QStringList extensions{QStringLiteral("bmp"), QStringLiteral("png")};
    for (const QString &name : SkinSprites::sheets().keys()) {
        const std::optional<QByteArray> bytes = m_archive.file(name, extensions);
        if (!bytes) {
            m_missing.append(name);
            continue;
        }
        const QImage image = decodeSheet(*bytes);
        if (!image.isNull()) {
            m_skin.sheets.insert(name, m_pictures == Pictures::keep ? image : QImage());
        } else {
            m_undecodable.insert(name);
            warn(QStringLiteral("Undecodable ") + bitmapName(name));
        }
    }
    if (m_skin.sheets.isEmpty())
        throw SkinError::noBitmaps();
}

void Pass::generateSheets() {
    const bool hasExtendedDigits = m_skin.sheets.contains(QStringLiteral("NUMS_EX"));
    for (const QString &name : GeneratedBaseSkin::sheetNames()) {
        if (m_skin.sheets.contains(name) || (name == QStringLiteral("NUMBERS") && hasExtendedDigits))
            continue;
        const QImage image = GeneratedBaseSkin::sheet(name);
        if (image.isNull())
            continue;
        m_skin.sheets.insert(name, image);
        m_skin.generatedSheets.insert(name);
        const bool undecodable = m_undecodable.contains(name);
        fallBack(bitmapName(name) +
                 (undecodable ? QStringLiteral(" undecodable") : QStringLiteral(" missing")) +
                 QStringLiteral("; generated base"));
    }
}

void Pass::reportSheets() {
    for (const QString &name : m_missing) {
        if (!SkinSprites::optionalSheets().contains(name))
            warn(QStringLiteral("Missing ") + bitmapName(name));
    }
    if (isMissing("BALANCE") && m_skin.sheets.contains(QStringLiteral("VOLUME")))
        fallBack(QStringLiteral("balance.bmp missing; balance slider uses volume.bmp"));
    reportDigits();
    if (isMissing("EQ_EX"))
        fallBack(QStringLiteral("eq_ex.bmp missing; EQ maximize button uses eqmain.bmp"));
    if (isMissing("GEN"))
        fallBack(QStringLiteral("gen.bmp missing (not used in v1)"));
}

void Pass::reportDigits() {
    if (isMissing("NUMBERS") && isMissing("NUMS_EX"))
        warn(QStringLiteral("Missing numbers.bmp and nums_ex.bmp"));
    else if (isMissing("NUMS_EX"))
        fallBack(QStringLiteral("nums_ex.bmp missing; digits use numbers.bmp"));
    else if (isMissing("NUMBERS"))
        fallBack(QStringLiteral("numbers.bmp missing; digits use nums_ex.bmp"));
}

void Pass::readColors() {
    const std::optional<QByteArray> bytes = text("viscolor");
    if (!bytes) {
        fallBack(QStringLiteral("viscolor.txt missing; Webamp defaults"));
        return;
    }
    const VisColorParser::Result result = VisColorParser::parseCounted(*bytes);
    m_skin.visColors = result.colors;
    const int last = static_cast<int>(result.colors.size()) - 1;
    if (result.parsedCount > last)
        return;
    QString range = QString::number(result.parsedCount);
    if (result.parsedCount < last)
        range += QChar(0x2013) + QString::number(last);
    fallBack(QStringLiteral("viscolor.txt has %1 of 24 colours; defaults for %2")
                 .arg(QString::number(result.parsedCount), range));
}

void Pass::readRegion() {
    if (const std::optional<QByteArray> bytes = text("region"))
        m_skin.region = RegionParser::parse(QByteArrayView(*bytes));
}

void Pass::readPlaylistStyle() {
    const std::optional<QByteArray> bytes = text("pledit");
    if (!bytes) {
        fallBack(QStringLiteral("pledit.txt missing; Webamp default playlist colours"));
        return;
    }
    const PlaylistStyleParser::Result result = PlaylistStyleParser::parse(QByteArrayView(*bytes));
    m_skin.playlistStyle = result.style;
    m_skin.fallbacks += result.messages;
}

} // namespace

namespace {

template <class Read>
auto guarded(const SkinArchive &archive, const Read &read) {
    if (archive.files().contains(QStringLiteral("skin.xml")))
        throw SkinError::modernSkin();
    try {
        return read();
    } catch (const std::bad_alloc &) {
        throw SkinError::notEnoughMemory();
    }
}

} // namespace

Skin parse(const SkinArchive &archive) {
    return guarded(archive, [&] { return Pass(archive).run(); });
}

QStringList warnings(const SkinArchive &archive) {
    return guarded(archive, [&] { return Pass(archive, Pass::Pictures::forget).warnings(); });
}

Skin parse(const QUrl &url, const SkinArchive::Limits &limits) {
    return parse(SkinArchive(url, limits));
}

} // namespace vantor::SkinParser
