#include "SkinKit/Texts/VisColors.h"

#include "Platform/TextDecoding.h"
#include "Platform/TextLines.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace vantor {

const VisColors defaultVisColors = {
    {{0, 0, 0},       {24, 33, 41},    {239, 49, 16},   {206, 41, 16},   {214, 90, 0},    {214, 102, 0},
     {214, 115, 0},   {198, 123, 8},   {222, 165, 24},  {214, 181, 33},  {189, 222, 41},  {148, 222, 33},
     {41, 206, 16},   {50, 190, 16},   {57, 181, 16},   {49, 156, 8},    {41, 148, 0},    {24, 132, 8},
     {255, 255, 255}, {214, 214, 222}, {181, 189, 189}, {160, 170, 175}, {148, 156, 165}, {150, 150, 150}}};

namespace VisColorParser {

namespace {

constexpr std::size_t channelCount = 3;

QStringView withoutLeadingSpace(QStringView text) {
    const auto *start = std::ranges::find_if_not(text, [](QChar c) { return c.isSpace(); });
    return text.sliced(start - text.begin());
}

/// The groups of digits at the start of a line, at most three, separated by space and at most one comma.
std::vector<QStringView> digitGroups(QStringView line) {
    std::vector<QStringView> groups;
    QStringView rest = withoutLeadingSpace(line);
    while (groups.size() < channelCount) {
        const auto *end = std::ranges::find_if_not(rest, [](QChar c) { return c >= u'0' && c <= u'9'; });
        if (end == rest.begin())
            break;
        groups.push_back(rest.first(end - rest.begin()));
        rest = withoutLeadingSpace(rest.sliced(end - rest.begin()));
        if (rest.startsWith(u','))
            rest = withoutLeadingSpace(rest.sliced(1));
    }
    return groups;
}

/// A line's three numbers may stand without anything between them. The leftmost then take as many digits as
/// they can, so what is missing comes off the end of the last group that can spare a digit.
bool splitIntoThree(std::vector<QStringView> &groups) {
    while (groups.size() < channelCount) {
        const auto found =
            std::find_if(groups.rbegin(), groups.rend(), [](QStringView g) { return g.size() > 1; });
        if (found == groups.rend())
            return false;
        const auto group = found.base() - 1;
        const QStringView digit = group->last(1);
        group->chop(1);
        groups.insert(group + 1, digit);
    }
    return true;
}

std::uint8_t clampedNumber(QStringView digits) {
    int number = 0;
    for (const QChar digit : digits)
        number = std::min(number * 10 + digit.digitValue(), 255);
    return static_cast<std::uint8_t>(number);
}

std::optional<RGBColor> parseLine(QStringView line) {
    std::vector<QStringView> groups = digitGroups(line);
    if (!splitIntoThree(groups))
        return std::nullopt;
    return RGBColor{clampedNumber(groups[0]), clampedNumber(groups[1]), clampedNumber(groups[2])};
}

} // namespace

Result parseCounted(QByteArrayView bytes) {
    Result result;
    const QString text = TextDecoding::lenient(bytes);
    std::size_t count = 0;
    forEachLine(text, [&](QStringView line) {
        if (const auto color = parseLine(line))
            result.colors[count++] = *color;
        return count < result.colors.size();
    });
    result.parsedCount = static_cast<int>(count);
    return result;
}

} // namespace VisColorParser
} // namespace vantor
