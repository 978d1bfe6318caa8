#include "AudioCore/Network/Downloader.h"

#include "Platform/TextDecoding.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace vantor {

Q_LOGGING_CATEGORY(lcDownloader, "co.kelvane.vantor.Downloader")

// An attempt that brought less does not count as one that helped.
static constexpr qint64 worthwhileBytes = 16 * 1024;
static constexpr int largestMetaInterval = 16 * 1024 * 1024;
static constexpr qsizetype longestName = 1024;

using HttpParsing::number;

namespace {

struct ContentRange {
    qint64 first = 0;
    std::optional<qint64> size;
};

} // namespace

// "bytes 100-199/2000"; the last number may be "*".
static std::optional<ContentRange> contentRange(const HttpExchange::Answer &answer) {
    const QByteArray text = answer.header("content-range");
    const qsizetype dash = text.indexOf('-');
    const qsizetype slash = text.indexOf('/');
    if (answer.status() != 206 || !text.startsWith("bytes ") || dash < 0 || slash < dash)
        return std::nullopt;
    const std::optional<qint64> first = number(text.mid(6, dash - 6).trimmed());
    if (!first)
        return std::nullopt;
    return ContentRange{*first, number(text.mid(slash + 1).trimmed())};
}

static std::optional<qint64> sizeOf(const HttpExchange::Answer &answer) {
    if (const auto range = contentRange(answer))
        return range->size;
    return number(answer.header("content-length"));
}

static bool isRadio(const HttpExchange::Answer &answer) {
    const auto names = answer.head.headers.keys();
    return !answer.head.headers.contains("content-length") &&
           std::any_of(names.begin(), names.end(),
                       [](const QByteArray &name) { return name.startsWith("icy-"); });
}

static DownloadInfo infoOf(const HttpExchange::Answer &answer) {
    DownloadInfo info;
    info.url = answer.url;
    info.isLive = isRadio(answer);
    if (!info.isLive)
        info.size = sizeOf(answer);
    info.isSeekable = info.size && (contentRange(answer) || answer.header("accept-ranges") == "bytes");
    const QByteArray type = answer.header("content-type");
    info.contentType = type.split(';').first().trimmed().toLower();
    info.stationName = TextDecoding::lenient(answer.header("icy-name")).left(longestName).simplified();
    const QByteArray rate = answer.header("icy-br"); // "128" or "128,128"
    const qint64 bitrate = number(rate.split(',').first().trimmed()).value_or(0);
    if (bitrate > 0 && bitrate < 100'000)
        info.bitrate = static_cast<int>(bitrate);
    return info;
}

static QByteArray validatorOf(const HttpExchange::Answer &answer) {
    const QByteArray tag = answer.header("etag");
    return tag.startsWith('"') ? tag : answer.header("last-modified");
}

Downloader::Downloader(QUrl url, std::shared_ptr<DownloadBuffer> buffer, DownloadTimings timings)
    : m_url(std::move(url)), m_buffer(std::move(buffer)), m_timings(std::move(timings)) {
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, [this] { lose(QStringLiteral("the server is silent")); });
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, [this] {
        if (const auto missing = m_buffer->missing())
            connectAt(*missing);
    });
}

void Downloader::start() {
    connectAt(0);
}

QByteArray Downloader::headers(qint64 position) const {
    QByteArray lines = "User-Agent: Vantor/" + QCoreApplication::applicationVersion().toLatin1() +
                       "\r\nAccept: */*\r\n"
                       "Accept-Encoding: identity\r\n" // the bytes of the file, not of a packed one
                       "Icy-MetaData: 1\r\n";
    // Asked for from the start already, to hear whether the server knows parts.
    if (!m_info || m_info->isSeekable)
        lines += "Range: bytes=" + QByteArray::number(position) + "-\r\n";
    if (position > 0 && !m_validator.isEmpty())
        lines += "If-Range: " + m_validator + "\r\n";
    return lines;
}

void Downloader::connectAt(qint64 position) {
    drop();
    m_position = position;
    m_buffer->setFetchPosition(position);
    m_surplus = 0;
    m_brought = 0;
    m_exchange = new HttpExchange(m_url, headers(position), this);
    connect(m_exchange, &HttpExchange::requestSent, this, [this] { m_patience.start(m_timings.stall); });
    connect(m_exchange, &HttpExchange::answered, this, &Downloader::takeAnswer);
    connect(m_exchange, &HttpExchange::readable, this, &Downloader::takeBytes);
    connect(m_exchange, &HttpExchange::ended, this, &Downloader::takeBytes);
    m_patience.start(m_timings.connect);
}

void Downloader::drop() {
    m_patience.stop();
    m_retry.stop();
    if (!m_exchange)
        return;
    m_exchange->disconnect(this);
    std::exchange(m_exchange, nullptr)->deleteLater(); // it may be what calls
}

void Downloader::takeAnswer() {
    m_patience.start(m_timings.stall);
    const HttpExchange::Answer &answer = *m_exchange->answer();
    const int interval = answer.header("icy-metaint").toInt();
    m_filter = IcyProtocol::Filter(interval > 0 && interval <= largestMetaInterval ? interval : 0);
    const QString status = QStringLiteral("the server answers %1").arg(answer.status());
    const bool goesOn = m_info.has_value();
    if (goesOn ? !takeNextAnswer(answer) : !takeFirstAnswer(answer))
        giveUp(goesOn ? status + QStringLiteral(", not the rest of the file") : status);
}

bool Downloader::takeFirstAnswer(const HttpExchange::Answer &answer) {
    const auto range = contentRange(answer);
    if (answer.status() != 200 && !(range && range->first == 0))
        return false;
    m_info = infoOf(answer);
    m_validator = validatorOf(answer);
    qCInfo(lcDownloader, "%s: %lld bytes, %s", qUtf8Printable(answer.url.toDisplayString()),
           static_cast<long long>(m_info->size.value_or(-1)), m_info->contentType.constData());
    m_buffer->begin(*m_info);
    return true;
}

// False when there is no hope. What may pass is an end like every other.
bool Downloader::takeNextAnswer(const HttpExchange::Answer &answer) {
    if (answer.status() >= 500 || answer.status() == 408 || answer.status() == 429) {
        lose(QStringLiteral("the server answers %1").arg(answer.status()));
        return true;
    }
    if (m_info->isLive)
        return answer.status() == 200 || answer.status() == 206;
    if (!isSameFile(answer))
        return false;
    if (answer.status() == 200)
        m_surplus = m_position; // the server begins again
    return answer.status() == 200 || contentRange(answer)->first == m_position;
}

bool Downloader::isSameFile(const HttpExchange::Answer &answer) const {
    return (answer.status() == 200 || contentRange(answer)) && sizeOf(answer) == m_info->size &&
           validatorOf(answer) == m_validator;
}

void Downloader::reconsider() {
    if (m_isOver || !m_info)
        return;
    const std::optional<qint64> missing = m_buffer->missing();
    if (!missing || m_info->isLive || !m_info->isSeekable || *missing == m_buffer->fetchPosition()) {
        if (m_exchange)
            takeBytes();
        else if (missing && !m_retry.isActive())
            connectAt(*missing);
        return;
    }
    connectAt(*missing);
}

void Downloader::takeBytes() {
    if (!m_exchange || !m_exchange->answer()) {
        takeEnd();
        return;
    }
    bool came = false;
    while (m_exchange && m_exchange->hasBytes()) {
        const qint64 room = m_surplus > 0 ? m_surplus : m_buffer->room();
        if (room == 0)
            break;
        const QByteArray bytes = m_exchange->read(std::min(room, DownloadBuffer::blockBytes));
        came = true;
        if (m_surplus > 0)
            m_surplus -= bytes.size();
        else
            takeSound(bytes);
    }
    const bool isBlocked = m_surplus == 0 && m_buffer->room() == 0;
    if (isBlocked && m_buffer->missing() != m_buffer->fetchPosition()) {
        // The end, or bytes that are there from before: the rest of this answer is not wanted.
        drop();
        const std::optional<qint64> missing = m_buffer->missing();
        if (missing && m_info->isSeekable)
            connectAt(*missing);
    } else if (isBlocked) {
        m_patience.stop(); // the server is not to blame
    } else if (came || !m_patience.isActive()) {
        m_patience.start(m_timings.stall);
    }
    takeEnd();
}

void Downloader::takeSound(QByteArrayView bytes) {
    m_brought += bytes.size();
    if (m_brought >= worthwhileBytes)
        m_attempts = 0;
    while (!bytes.isEmpty()) {
        const QByteArrayView sound = m_filter.take(bytes);
        if (const std::optional<QString> title = m_filter.takeTitle())
            m_buffer->addTitle(*title);
        if (!sound.isEmpty())
            m_buffer->write(sound);
    }
}

void Downloader::takeEnd() {
    if (!m_exchange || !m_exchange->hasEnded() || m_exchange->hasBytes())
        return;
    if (m_info && !m_info->size && !m_info->isLive && m_exchange->isComplete()) {
        drop();
        m_isOver = true;
        m_buffer->end();
    } else {
        lose(m_exchange->problem());
    }
}

void Downloader::lose(const QString &reason) {
    drop();
    const bool canGoOn = m_info && (m_info->isLive || m_info->size);
    if (!canGoOn || m_attempts >= m_timings.retries.size()) {
        giveUp(reason);
        return;
    }
    qCInfo(lcDownloader, "%s: lost at byte %lld: %s", qUtf8Printable(m_url.toDisplayString()),
           static_cast<long long>(m_buffer->fetchPosition()), qUtf8Printable(reason));
    m_retry.start(m_timings.retries[m_attempts++]);
}

void Downloader::giveUp(const QString &reason) {
    drop();
    m_isOver = true;
    m_buffer->fail(ProgressiveError::readFailure(reason));
}

} // namespace vantor
