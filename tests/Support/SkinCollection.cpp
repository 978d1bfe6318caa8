#include "tests/Support/SkinCollection.h"

#include "SkinKit/Loading/SkinCursors.h"
#include "SkinKit/Sprites/SkinSprites.h"
#include "tests/Support/BitmapBuilder.h"

#include <QDir>
#include <QFile>

#include <zlib.h>

#include <array>
#include <random>
#include <stdexcept>

namespace vantor::test {

namespace {

constexpr unsigned variants = 12;

constexpr std::array words{"amber",  "harbour", "violet", "engine", "silent", "copper",  "meadow",  "glass",
                           "winter", "signal",  "paper",  "orbit",  "velvet", "thunder", "lantern", "marble",
                           "island", "carbon",  "willow", "static", "garden", "neon",    "quartz",  "river",
                           "saddle", "turbine", "cinder", "atlas",  "pepper", "ribbon",  "summit",  "walnut"};

QString word(std::mt19937 &random) {
    return QLatin1String(words[random() % words.size()]);
}

BitmapBuilder sheet(const std::vector<Sprite> &sprites, int depth, std::mt19937 &random) {
    QRect bounds;
    for (const Sprite &sprite : sprites)
        bounds |= QRect(QPoint(), sprite.rect().bottomRight());
    BitmapBuilder bitmap{.width = bounds.width(), .height = bounds.height(), .depth = depth};
    for (int level = 0; depth == 8 && level < 256; ++level)
        bitmap.palette.push_back({static_cast<std::uint8_t>(level), static_cast<std::uint8_t>(level), 90});
    const qsizetype stride = (qsizetype{bounds.width()} * depth + 31) / 32 * 4;
    const int slope = 3 + static_cast<int>(random() % 9);
    bitmap.pixels.resize(stride * bounds.height());
    for (qsizetype i = 0; i < bitmap.pixels.size(); ++i) {
        const int noise = random() % 16 == 0 ? static_cast<int>(random() % 8) : 0;
        bitmap.pixels[i] = static_cast<char>(i % stride / slope + i / stride / 3 + noise);
    }
    return bitmap;
}

int originalOf(int number) {
    return number % 20 == 19 ? number - 7 : number;
}

} // namespace

SkinCollection::Entry SkinCollection::deflated(const QByteArray &name, const QByteArray &bytes) {
    const auto *data = reinterpret_cast<const Bytef *>(bytes.constData());
    const auto size = static_cast<uInt>(bytes.size());
    QByteArray packed(static_cast<qsizetype>(compressBound(size)), '\0');
    z_stream stream{};
    if (deflateInit2(&stream, 6, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    stream.next_in = const_cast<Bytef *>(data);
    stream.avail_in = size;
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return {name, packed, static_cast<quint32>(crc32(0, data, size)), bytes.size()};
}

QByteArray SkinCollection::zip(const std::vector<const Entry *> &entries) {
    QByteArray files;
    QByteArray directory;
    for (const Entry *entry : entries) {
        const QByteArray common = le16(20) + le16(0) + le16(8) + le32(0) + le32(entry->crc) +
                                  le32(entry->packed.size()) + le32(entry->size) +
                                  le16(static_cast<int>(entry->name.size())) + le16(0);
        directory +=
            "PK\1\2" + le16(20) + common + le16(0) + le32(0) + le32(0) + le32(files.size()) + entry->name;
        files += "PK\3\4" + common + entry->name + entry->packed;
    }
    const int count = static_cast<int>(entries.size());
    return files + directory + "PK\5\6" + le32(0) + le16(count) + le16(count) + le32(directory.size()) +
           le32(files.size()) + le16(0);
}

SkinCollection::SkinCollection() {
    std::mt19937 random(1);
    const auto &sheets = SkinSprites::sheets();
    for (auto it = sheets.cbegin(); it != sheets.cend(); ++it) {
        auto &made = m_sheets.emplace_back();
        for (unsigned variant = 0; variant < variants; ++variant) {
            const int depth = (variant + m_sheets.size()) % 2 == 0 ? 8 : 24;
            made.push_back(deflated(it.key().toLatin1() + ".BMP", sheet(*it, depth, random).bmp()));
        }
    }
    for (const QString &name : SkinCursors::names())
        m_others.push_back(deflated(name.toLatin1() + ".CUR", solidCursor({200, 20, 30}, {3, 3})));
    m_others.push_back(deflated("VISCOLOR.TXT", QByteArray("24,33,41, // a colour\r\n").repeated(24)));
    m_others.push_back(deflated("PLEDIT.TXT", "[Text]\r\nNormal=#00FF00\r\nFont=Arial\r\n"));
}

QString SkinCollection::name(int number) {
    std::mt19937 random(static_cast<unsigned>(number));
    QString text;
    for (int i = 0; i < 2; ++i) {
        QString next = word(random);
        next[0] = next[0].toUpper();
        text += next + QLatin1Char(' ');
    }
    return text + QStringLiteral("%1").arg(number, 5, 10, QLatin1Char('0'));
}

QString SkinCollection::readme(int number) {
    std::mt19937 random(static_cast<unsigned>(number) + 1'000'000);
    QString text = QStringLiteral("Skin number%1.\r\n").arg(number);
    for (int i = 0; i < 40; ++i)
        text += word(random) + (i % 10 == 9 ? QStringLiteral("\r\n") : QStringLiteral(" "));
    return text;
}

QByteArray SkinCollection::archive(int number) const {
    const int original = originalOf(number);
    std::mt19937 random(static_cast<unsigned>(original));
    std::vector<const Entry *> entries;
    for (const std::vector<Entry> &sheet : m_sheets)
        entries.push_back(&sheet[random() % variants]);
    for (const Entry &other : m_others)
        entries.push_back(&other);
    const Entry text = deflated("README.TXT", readme(original).toUtf8());
    entries.push_back(&text);
    if (original % 50 == 3)
        entries.erase(entries.begin(), entries.begin() + 3);
    const QByteArray bytes = zip(entries);
    return original % 50 == 4 ? bytes.first(bytes.size() / 2) : bytes;
}

void SkinCollection::write(const QString &folder, int first, int count) const {
    for (int number = first; number < first + count; ++number) {
        const QString place = QStringLiteral("%1/%2").arg(folder).arg(number / 250);
        QFile file(QStringLiteral("%1/%2.wsz").arg(place, name(number)));
        if (!QDir().mkpath(place) || !file.open(QIODevice::WriteOnly) || file.write(archive(number)) < 0)
            throw std::runtime_error("cannot write " + file.fileName().toStdString());
    }
}

} // namespace vantor::test
