#include "SkinKit/Decoding/AniParser.h"

#include "SkinKit/Decoding/ByteReader.h"
#include "SkinKit/Decoding/CursorBitmap.h"

#include <algorithm>
#include <utility>

namespace vantor::AniParser {

namespace {

constexpr std::int64_t riffHeaderBytes = 8;

/// What the chunks say; a later chunk of a kind replaces an earlier one.
struct Contents {
    std::optional<std::uint32_t> defaultRate; ///< jiffies, from the header chunk
    std::vector<std::uint32_t> rates;         ///< jiffies, by step
    std::vector<std::uint32_t> sequence;      ///< icon numbers, by step
    std::vector<std::optional<SkinCursor::Frame>> icons;
    int failures = 0;            ///< icons that did not decode
    std::int64_t pixelsLeft = 0; ///< that further icons may have
};

/// The header's counts and flags are not read: what the file really holds decides.
std::optional<std::uint32_t> readDefaultRate(QByteArrayView header) {
    constexpr std::int64_t headerBytes = 36;
    constexpr std::int64_t ratePosition = 28;
    return header.size() < headerBytes ? std::nullopt : ByteReader(header, ratePosition).u32();
}

std::vector<std::uint32_t> readSteps(QByteArrayView data) {
    std::vector<std::uint32_t> steps;
    ByteReader reader(data);
    while (steps.size() < maxSteps) {
        const auto step = reader.u32();
        if (!step)
            break;
        steps.push_back(*step);
    }
    return steps;
}

/// False when the frames have become too large.
bool takeIcon(QByteArrayView data, Contents &contents) {
    if (contents.icons.size() >= maxFrames || contents.failures >= maxFailures)
        return true;
    auto frame = CursorBitmap::decode(data);
    if (frame)
        contents.pixelsLeft -= std::int64_t{frame->image.width()} * frame->image.height();
    else
        ++contents.failures;
    contents.icons.push_back(std::move(frame));
    return contents.pixelsLeft >= 0;
}

bool walk(QByteArrayView chunks, int depth, Contents &contents);

bool take(QByteArrayView id, QByteArrayView data, int depth, Contents &contents) {
    if (id == "LIST") {
        constexpr qsizetype formBytes = 4;
        return depth < maxDepth && data.size() >= formBytes &&
               walk(data.sliced(formBytes), depth + 1, contents);
    }
    if (id == "anih") {
        contents.defaultRate = readDefaultRate(data);
        return contents.defaultRate.has_value();
    }
    if (id == "rate")
        contents.rates = readSteps(data);
    else if (id == "seq ")
        contents.sequence = readSteps(data);
    else if (id == "icon")
        return takeIcon(data, contents);
    return true;
}

bool walk(QByteArrayView chunks, int depth, Contents &contents) {
    ByteReader reader(chunks);
    // Fewer bytes than a chunk header at the end are padding.
    while (chunks.size() - reader.position() >= riffHeaderBytes) {
        const auto id = reader.bytes(4);
        const auto length = reader.u32();
        const auto data = reader.bytes(length.value_or(0));
        if (!data || !take(*id, *data, depth, contents))
            return false;
        reader.setPosition(reader.position() + *length % 2);
    }
    return true;
}

/// Numbers the decoded icons consecutively and leaves out the steps that show one that is not there.
SkinCursor assemble(Contents contents, std::uint32_t defaultRate) {
    SkinCursor cursor;
    std::vector<int> frameOfIcon;
    for (auto &icon : contents.icons) {
        frameOfIcon.push_back(icon ? static_cast<int>(cursor.frames.size()) : -1);
        if (icon)
            cursor.frames.push_back(*std::move(icon));
    }
    if (contents.sequence.empty()) {
        for (std::uint32_t icon = 0; icon < contents.icons.size(); ++icon)
            contents.sequence.push_back(icon);
    }
    for (std::size_t step = 0; step < contents.sequence.size(); ++step) {
        const std::uint32_t icon = contents.sequence[step];
        if (icon >= frameOfIcon.size() || frameOfIcon[icon] < 0)
            continue;
        const std::uint32_t rate = step < contents.rates.size() ? contents.rates[step] : defaultRate;
        cursor.steps.push_back({frameOfIcon[icon], Jiffies(std::max(rate, 1U))});
    }
    return cursor;
}

} // namespace

std::optional<SkinCursor> parse(QByteArrayView data, std::int64_t maxPixels) {
    ByteReader reader(data);
    const auto id = reader.bytes(4);
    const auto length = reader.u32();
    const auto form = reader.bytes(4);
    if (!form || *id != "RIFF" || *form != "ACON")
        return std::nullopt;
    const std::int64_t end = std::min<std::int64_t>(data.size(), *length + riffHeaderBytes);
    Contents contents;
    contents.pixelsLeft = maxPixels;
    if (end < reader.position() ||
        !walk(data.sliced(reader.position(), end - reader.position()), 0, contents) || !contents.defaultRate)
        return std::nullopt;
    const std::uint32_t defaultRate = *contents.defaultRate;
    SkinCursor cursor = assemble(std::move(contents), defaultRate);
    return cursor.frames.empty() || cursor.steps.empty() ? std::nullopt : std::optional(std::move(cursor));
}

} // namespace vantor::AniParser
