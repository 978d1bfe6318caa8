#pragma once

#include "AudioCore/Queue/TrackRange.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// What the texts of playlist files say, before anything is looked for on disk. Pure; any thread.
namespace vantor::PlaylistParser {

enum class Format { m3u, pls, xspf, cue };

struct Line {
    QString location;   ///< as written: a path or an address
    QString title;      ///< empty when the file does not say; "Artist - Title" where the format has one text
    bool isURI = false; ///< the format wants an address, in which blanks and such are percent-encoded
    QString artist{};   ///< where the format keeps it apart
    QString album{};    ///< of a part of a file
    std::optional<TrackRange> range{}; ///< the part of the file that is meant; none: all of it

    bool operator==(const Line &) const = default;
};

struct Result {
    std::vector<Line> lines;
    bool isDamaged = false; ///< the file breaks off or is no such file; the lines before that are good
    bool isCut = false;     ///< there were more than the lines asked for

    bool operator==(const Result &) const = default;
};

/// What the bytes look like, and what the extension says ("pls", in lower case) where they look like nothing.
[[nodiscard]] Format formatOf(const QByteArray &bytes, const QString &extension);

/// Texts are UTF-8 or else Windows-1252. Never throws; at most `maxLines` lines.
[[nodiscard]] Result parse(const QByteArray &bytes, Format format, size_t maxLines);

} // namespace vantor::PlaylistParser
