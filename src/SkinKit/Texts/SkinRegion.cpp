#include "SkinKit/Texts/SkinRegion.h"

#include "Platform/TextDecoding.h"
#include "SkinKit/Texts/IniParser.h"

#include <algorithm>
#include <cstdint>

namespace vantor {

const SkinRegion SkinRegion::empty;

std::optional<QList<SkinRegion::Polygon>> SkinRegion::section(const char *name) const {
    const auto found = sections.constFind(QLatin1String(name));
    return found == sections.cend() ? std::nullopt : std::optional(*found);
}

namespace RegionParser {

namespace {

/// Takes the numbers off the front of a list. Skins in the wild separate them by commas, by space or by both.
class NumberList {
  public:
    explicit NumberList(QStringView text) : m_rest(text) {}

    /// The next number, clamped to ±SkinRegion::maxCoordinate; nothing at the end or at what is no number.
    std::optional<int> next() {
        const auto *start = std::ranges::find_if_not(m_rest, isSeparator);
        const auto *end = std::find_if(start, m_rest.end(), isSeparator);
        const auto number = parse(QStringView(start, end));
        m_rest = number ? QStringView(end, m_rest.end()) : QStringView();
        return number;
    }

  private:
    static bool isSeparator(QChar character) { return character == u',' || character.isSpace(); }

    static std::optional<int> parse(QStringView text) {
        const bool negative = text.startsWith(u'-');
        if (negative || text.startsWith(u'+'))
            text = text.sliced(1);
        if (text.isEmpty())
            return std::nullopt;
        int number = 0;
        for (const QChar digit : text) {
            if (digit < u'0' || digit > u'9')
                return std::nullopt;
            number = std::min(number * 10 + digit.digitValue(), SkinRegion::maxCoordinate);
        }
        return negative ? -number : number;
    }

    QStringView m_rest;
};

QList<QPoint> parsePoints(QStringView text) {
    QList<QPoint> points;
    NumberList numbers(text);
    while (points.size() < SkinRegion::maxPoints) {
        const auto x = numbers.next();
        const auto y = numbers.next();
        if (!x || !y)
            break;
        points.append(QPoint(*x, *y));
    }
    return points;
}

QList<SkinRegion::Polygon> cut(const QList<QPoint> &points, QStringView sizes) {
    QList<SkinRegion::Polygon> polygons;
    NumberList numbers(sizes);
    qsizetype start = 0;
    while (const auto size = numbers.next()) {
        if (*size < 0 || *size > points.size() - start)
            break;
        if (*size > 0)
            polygons.append(points.sliced(start, *size));
        start += *size;
    }
    return polygons;
}

} // namespace

SkinRegion parse(const QString &text) {
    const IniDocument document = IniParser::parse(text);
    SkinRegion region;
    for (auto section = document.cbegin(); section != document.cend(); ++section) {
        const QString sizes = section->value(QStringLiteral("numpoints"));
        const QString points = section->value(QStringLiteral("pointlist"));
        if (const auto polygons = cut(parsePoints(points), sizes); !polygons.isEmpty())
            region.sections.insert(section.key(), polygons);
    }
    return region;
}

SkinRegion parse(QByteArrayView bytes) {
    return parse(TextDecoding::lenient(bytes));
}

} // namespace RegionParser
} // namespace vantor
