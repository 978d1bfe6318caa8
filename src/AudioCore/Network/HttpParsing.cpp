#include "AudioCore/Network/HttpParsing.h"

#include <algorithm>

namespace vantor::HttpParsing {

static constexpr qsizetype longestChunkLine = 256;

// Behind the empty line, or −1. Some servers end lines with a line feed alone.
static qsizetype headLength(const QByteArray &bytes) {
    const qsizetype usual = bytes.indexOf("\r\n\r\n");
    const qsizetype bare = bytes.indexOf("\n\n");
    if (bare >= 0 && (usual < 0 || bare < usual))
        return bare + 2;
    return usual < 0 ? -1 : usual + 4;
}

static int statusOf(const QByteArray &line) {
    if (!line.startsWith("ICY ") && !line.startsWith("HTTP/1."))
        return 0;
    const auto status = number(line.mid(line.indexOf(' ') + 1, 3));
    return status.value_or(0) >= 100 ? static_cast<int>(*status) : 0;
}

std::optional<qint64> number(const QByteArray &text) {
    bool ok = false;
    const qint64 value = text.toLongLong(&ok);
    return ok && value >= 0 ? std::optional(value) : std::nullopt;
}

std::optional<Head> parseHead(const QByteArray &bytes) {
    Head head;
    head.length = headLength(bytes);
    if (head.length < 0 || head.length > longestHead)
        return bytes.size() < longestHead ? std::nullopt : std::optional(Head());
    const QList<QByteArray> lines = bytes.first(head.length).split('\n');
    head.status = statusOf(lines.first());
    if (head.status == 0)
        return Head();
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            head.headers.insert(line.first(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
    }
    return head;
}

Body::Body(const Head &head) {
    const std::optional<qint64> length = number(head.headers.value("content-length"));
    if (head.headers.value("transfer-encoding").toLower() == "chunked") {
        m_part = Part::chunkSize;
    } else if (length) {
        m_part = *length == 0 ? Part::end : Part::counted;
        m_left = *length;
    }
}

QByteArrayView Body::take(QByteArrayView &bytes) {
    switch (m_part) {
    case Part::untilClose:
    case Part::end:
    case Part::damage:
        return hasEnded() ? bytes = {} : std::exchange(bytes, {});
    case Part::counted:
    case Part::chunk: {
        const QByteArrayView piece = bytes.first(std::min<qint64>(m_left, bytes.size()));
        bytes = bytes.sliced(piece.size());
        m_left -= piece.size();
        if (m_left == 0)
            m_part = m_part == Part::counted ? Part::end : Part::chunkEnd;
        return piece;
    }
    case Part::chunkSize:
    case Part::chunkEnd:
    case Part::trailer:
        break;
    }
    const qsizetype feed = bytes.indexOf('\n');
    const qsizetype count = feed < 0 ? bytes.size() : feed + 1;
    m_line.append(bytes.first(count));
    bytes = bytes.sliced(count);
    if (m_line.size() > longestChunkLine)
        m_part = Part::damage;
    else if (feed >= 0)
        takeLine();
    return {};
}

void Body::takeLine() {
    const QByteArray line = std::exchange(m_line, {}).trimmed();
    if (m_part == Part::chunkEnd) {
        m_part = line.isEmpty() ? Part::chunkSize : Part::damage;
    } else if (m_part == Part::trailer) {
        m_part = line.isEmpty() ? Part::end : Part::trailer;
    } else {
        bool ok = false;
        m_left = line.split(';').first().trimmed().toLongLong(&ok, 16);
        if (!ok || m_left < 0)
            m_part = Part::damage;
        else
            m_part = m_left == 0 ? Part::trailer : Part::chunk;
    }
}

} // namespace vantor::HttpParsing
