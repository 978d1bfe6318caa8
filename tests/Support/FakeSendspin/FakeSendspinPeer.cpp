#include "tests/Support/FakeSendspin/FakeSendspinPeer.h"

#include "tests/Support/FakeSendspin/FakeSendspin.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtEndian>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int closeUnauthorized = 4001;
constexpr std::int64_t farthestAhead = 20'000'000; // microseconds

QString textOf(const QJsonObject &message) {
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

} // namespace

FakeSendspinPeer::FakeSendspinPeer(FakeSendspin &server, FakeLink link)
    : m_server(server), m_link(std::move(link)), m_toServer(server.time()), m_toClient(server.time()),
      m_signedIn(server.tokens.isEmpty()) {}

void FakeSendspinPeer::takeText(const QString &text) {
    if (m_server.network.isIdeal())
        handle(text);
    else
        m_toServer.deliver(m_server.delay(true), [this, text] { handle(text); });
}

void FakeSendspinPeer::sendText(const QString &text) {
    if (m_server.network.isIdeal())
        m_link.sendText(text);
    else
        m_toClient.deliver(m_server.delay(false), [this, text] { m_link.sendText(text); });
}

void FakeSendspinPeer::sendBinary(const QByteArray &data) {
    if (m_server.network.isIdeal())
        m_link.sendBinary(data);
    else
        m_toClient.deliver(m_server.delay(false), [this, data] { m_link.sendBinary(data); });
}

void FakeSendspinPeer::close(int code, const QString &reason) {
    m_link.close(code, reason);
}

void FakeSendspinPeer::send(const QString &type, const QJsonObject &payload) {
    sendText(textOf({{u"type"_s, type}, {u"payload"_s, payload}}));
}

void FakeSendspinPeer::handle(const QString &text) {
    using Fault = FakeSendspin::Fault;
    const std::int64_t receivedAt = m_server.clock();
    const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
    const QString type = message.value("type"_L1).toString();
    const QJsonObject payload = message.value("payload"_L1).toObject();
    if (type != "client/time"_L1)
        m_server.record(message);
    if (m_server.fault == Fault::saysNothing)
        return;
    if (!m_signedIn) {
        m_signedIn = type == "auth"_L1 && m_server.tokens.contains(message.value("token"_L1).toString());
        if (!m_signedIn)
            close(closeUnauthorized, u"Invalid or expired token"_s);
        else if (m_server.fault == Fault::unreachable)
            close(1011, u"Internal server unreachable"_s);
        else
            sendText(textOf({{u"type"_s, u"auth_ok"_s}}));
    } else if (type == "client/hello"_L1) {
        m_hello = payload;
        greet();
    } else if (type == "client/time"_L1) {
        answerTime(payload, receivedAt);
    } else if (type == "client/state"_L1) {
        m_state = payload;
        // As with a real one, whoever leaves does not come back by itself.
        m_hasLeft = m_hasLeft || (m_announced && !takesStream());
        if (!takesStream())
            endStream();
        pump();
    } else if (type == "client/goodbye"_L1) {
        close(1000, {});
    }
}

void FakeSendspinPeer::greet() {
    using Fault = FakeSendspin::Fault;
    if (m_server.fault == Fault::closesDuringHello) {
        close(1002, u"Encryption required"_s);
        return;
    }
    const bool isRefused = m_server.fault == Fault::refusesRole;
    const QJsonArray roles{isRefused ? u"metadata@v1"_s : u"player@v1"_s};
    QJsonObject hello{{u"server_id"_s, m_server.serverID},
                      {u"name"_s, m_server.name},
                      {u"version"_s, 1},
                      {u"active_roles"_s, roles},
                      {u"connection_reason"_s, u"discovery"_s}};
    if (m_server.fault == Fault::brokenHello)
        hello.remove("active_roles"_L1);
    send(u"server/hello"_s, hello);
    send(u"group/update"_s, {{u"playback_state"_s, u"stopped"_s},
                             {u"group_id"_s, u"group-1"_s},
                             {u"group_name"_s, u"Living room"_s}});
}

void FakeSendspinPeer::answerTime(const QJsonObject &payload, std::int64_t receivedAt) {
    ++m_timeRequests;
    if (m_server.fault == FakeSendspin::Fault::ignoresTime)
        return;
    send(u"server/time"_s, {{u"client_transmitted"_s, payload.value("client_transmitted"_L1)},
                            {u"server_received"_s, static_cast<qint64>(receivedAt)},
                            {u"server_transmitted"_s, static_cast<qint64>(m_server.clock())}});
}

bool FakeSendspinPeer::takesStream() const {
    return m_state.value("available"_L1).toBool() && !m_hasLeft;
}

void FakeSendspinPeer::announce(int formatNumber) {
    const MadeStream::Coding &coding = m_server.stream()->coding(formatNumber);
    QJsonObject player{{u"codec"_s, coding.format.codec},
                       {u"sample_rate"_s, coding.format.sampleRate},
                       {u"channels"_s, coding.format.channels},
                       {u"bit_depth"_s, coding.format.bitDepth}};
    if (!coding.codecHeader.isEmpty())
        player.insert("codec_header"_L1, QString::fromLatin1(coding.codecHeader.toBase64()));
    send(u"stream/start"_s,
         {{u"player"_s, player}, {u"server_transmitted"_s, static_cast<qint64>(m_server.clock())}});
    m_announced = formatNumber;
}

bool FakeSendspinPeer::fits(const MadeStream::Chunk &chunk) {
    const std::int64_t now = m_server.clock();
    while (!m_buffer.empty() && m_buffer.front().end <= now) {
        m_bufferedBytes -= m_buffer.front().bytes;
        m_buffer.pop_front();
    }
    const QJsonObject support = m_hello.value("player@v1_support"_L1).toObject();
    const auto capacity = support.value("buffer_capacity"_L1).toInteger();
    return m_bufferedBytes + chunk.data.size() <= capacity && chunk.timestamp < now + farthestAhead;
}

void FakeSendspinPeer::pump() {
    MadeStream *stream = m_server.stream();
    if (!stream || !takesStream())
        return;
    if (m_nextChunk < 0) {
        const auto lead = m_state.value("player"_L1).toObject().value("required_lead_time_ms"_L1);
        m_nextChunk = stream->firstFrom(m_server.clock() + lead.toInteger() * 1000);
    }
    while (fits(stream->chunk(m_nextChunk))) {
        const MadeStream::Chunk &chunk = stream->chunk(m_nextChunk);
        if (m_announced != chunk.formatNumber)
            announce(chunk.formatNumber);
        QByteArray frame(9, '\4');
        qToBigEndian<qint64>(chunk.timestamp, frame.data() + 1);
        sendBinary(frame + chunk.data);
        m_buffer.push_back({.end = chunk.end, .bytes = chunk.data.size()});
        m_bufferedBytes += chunk.data.size();
        m_mostBuffered = std::max(m_mostBuffered, m_bufferedBytes);
        ++m_chunksSent;
        ++m_nextChunk;
    }
}

void FakeSendspinPeer::restart(std::optional<int> formatThatStays) {
    m_buffer.clear();
    m_bufferedBytes = 0;
    m_nextChunk = -1;
    m_hasLeft = false;
    const bool isKnown = m_announced && m_announced == formatThatStays;
    m_announced = isKnown ? std::optional(0) : std::nullopt;
    pump();
}

void FakeSendspinPeer::endStream() {
    if (!std::exchange(m_announced, std::nullopt))
        return;
    m_buffer.clear();
    m_bufferedBytes = 0;
    m_nextChunk = -1;
    send(u"stream/end"_s, {{u"server_transmitted"_s, static_cast<qint64>(m_server.clock())}});
}

} // namespace vantor
