#include "tests/Support/FakeMuseum/FakeMuseum.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QHostAddress>
#include <QImage>
#include <QJsonDocument>
#include <QLinearGradient>
#include <QPainter>
#include <QPointer>
#include <QSslSocket>
#include <QTimer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype maxRequest = 64 << 10;

FakeMuseum::Request parsed(const QByteArray &head) {
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.first().split(' ');
    FakeMuseum::Request request{
        .method = first.value(0), .path = QString::fromLatin1(first.value(1)), .headers = {}, .body = {}};
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    return request;
}

bool isNSFW(int number) {
    return number % FakeMuseum::nsfwEvery == FakeMuseum::nsfwEvery - 1;
}

QByteArray json(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

FakeMuseum::FakeMuseum(Content content) : m_content(std::move(content)) {
    setMaxPendingConnections(1000);
}

FakeMuseum::~FakeMuseum() {
    goOffline();
}

bool FakeMuseum::open(quint16 port) {
    const bool listens = listen(QHostAddress::LocalHost, port == 0 ? m_port : port);
    m_port = listens ? serverPort() : m_port;
    return listens;
}

void FakeMuseum::goOffline() {
    close();
    for (QTcpSocket *const socket : m_received.keys()) {
        socket->disconnect(this);
        socket->abort();
        socket->deleteLater();
    }
    m_received.clear();
}

QUrl FakeMuseum::url(const QString &path) const {
    return QUrl((tls ? u"https://localhost:%1%2"_s : u"http://127.0.0.1:%1%2"_s).arg(m_port).arg(path));
}

qsizetype FakeMuseum::count(Kind kind) const {
    return std::ranges::count_if(m_requests, [&](const Request &request) { return kindOf(request) == kind; });
}

QString FakeMuseum::md5(int number) {
    QString &known = m_md5s[number];
    if (known.isEmpty())
        known = QString::fromLatin1(
            QCryptographicHash::hash(m_content.archive(number), QCryptographicHash::Md5).toHex());
    return known;
}

QByteArray FakeMuseum::screenshot(int number) {
    QImage image(275, 348, QImage::Format_RGB32);
    QPainter painter(&image);
    for (int window = 0; window < 3; ++window) {
        const QRect place(0, 116 * window, 275, 116);
        QLinearGradient gradient(place.topLeft(), place.bottomRight());
        const int hue = (number * 47 + window * 12) % 360;
        gradient.setColorAt(0, QColor::fromHsv(hue, 140, 150));
        gradient.setColorAt(1, QColor::fromHsv((hue + 30) % 360, 180, 60));
        painter.fillRect(place, gradient);
        painter.fillRect(place.adjusted(4, 2, -4, -102), QColor::fromHsv(hue, 90, 220));
        for (int bar = 0; bar < 24; ++bar) {
            const int height = 6 + number * (bar + 3) * 7 % 50;
            painter.fillRect(14 + bar * 10, place.top() + 90 - height, 7, height,
                             QColor::fromHsv((hue + 180 + bar * 4) % 360, 200, 240));
        }
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// Connections

void FakeMuseum::incomingConnection(qintptr handle) {
    auto *const encrypted = tls ? new QSslSocket(this) : nullptr;
    auto *const socket = encrypted ? encrypted : new QTcpSocket(this);
    socket->setSocketDescriptor(handle);
    m_received.insert(socket, {});
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        m_received.remove(socket);
        socket->deleteLater();
    });
    if (encrypted) {
        encrypted->setSslConfiguration(*tls);
        encrypted->startServerEncryption();
    }
}

void FakeMuseum::read(QTcpSocket *socket) {
    QByteArray &received = m_received[socket];
    received += socket->readAll();
    const qsizetype end = received.indexOf("\r\n\r\n");
    if (received.size() > maxRequest)
        return socket->abort();
    if (end < 0)
        return;
    Request request = parsed(received.left(end));
    const qsizetype length = request.headers.value("content-length").toLongLong();
    if (received.size() < end + 4 + length)
        return;
    request.body = received.mid(end + 4, length);
    received.remove(0, end + 4 + length);
    m_mostAtOnce = std::max(m_mostAtOnce, ++m_atOnce);
    QTimer::singleShot(latency, socket, [this, socket, request] { answer(socket, request); });
    connect(socket, &QObject::destroyed, this, [this] { m_atOnce = std::max(0, m_atOnce - 1); });
}

void FakeMuseum::answer(QTcpSocket *socket, const Request &request) {
    m_requests.append(request);
    const Kind kind = kindOf(request);
    const Fault fault = takeFault(kind);
    if (fault == Fault::hangs)
        return;
    send(socket, fault == Fault::none ? whole(request) : faulty(fault, kind, whole(request)));
}

void FakeMuseum::send(QTcpSocket *socket, const Answer &answer) {
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " Answer\r\nConnection: close\r\n";
    if (answer.hasLength && !answer.headers.contains("Content-Length"))
        head += "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    socket->write(head + answer.headers + "\r\n" +
                  answer.body.left(answer.sent < 0 ? answer.body.size() : answer.sent));
    if (!answer.hasLength) { // as much as is taken
        auto *const more = new QTimer(socket);
        more->callOnTimeout(socket, [socket] {
            const auto *const encrypted = qobject_cast<QSslSocket *>(socket);
            if (socket->bytesToWrite() + (encrypted ? encrypted->encryptedBytesToWrite() : 0) < (1 << 20))
                socket->write(QByteArray(1 << 18, 'x'));
        });
        more->start(0);
    } else if (answer.closes) {
        socket->disconnectFromHost();
    }
}

// Answers

FakeMuseum::Kind FakeMuseum::kindOf(const Request &request) {
    if (request.path.startsWith("/screenshots/"_L1))
        return Kind::screenshot;
    return request.path.startsWith("/skins/"_L1) ? Kind::archive : Kind::page;
}

FakeMuseum::Fault FakeMuseum::takeFault(Kind kind) {
    const Fault fault = faults.value(kind, Fault::none);
    if (fault == Fault::none || faultsLeft == 0)
        return Fault::none;
    faultsLeft = std::max(-1, faultsLeft - 1);
    return fault;
}

FakeMuseum::Answer FakeMuseum::faulty(Fault fault, Kind kind, Answer whole) const {
    switch (fault) {
    case Fault::limitsRate:
        return {.status = 429, .headers = "Retry-After: " + retryAfter + "\r\n", .closes = true};
    case Fault::fails:
        return {.status = 500, .body = "<html>Not now</html>", .closes = true};
    case Fault::reportsError:
        return {.body = R"({"errors":[{"message":"The shelves are being dusted"}],"data":null})",
                .closes = true};
    case Fault::garbles:
        return {.body = "\x01\x02{[", .closes = true};
    case Fault::truncates:
        whole.headers = "Content-Length: " + QByteArray::number(whole.body.size()) + "\r\n";
        whole.sent = whole.body.size() / 2;
        return whole;
    case Fault::claimsMore:
        whole.headers = "Content-Length: " + QByteArray::number(whole.body.size() + 1000) + "\r\n";
        whole.closes = false;
        return whole;
    case Fault::isEndless:
        whole.hasLength = false;
        return whole;
    case Fault::redirects:
        return {.status = 302, .headers = "Location: " + redirectTarget.toEncoded() + "\r\n", .closes = true};
    case Fault::wrongContent:
        whole.body = kind == Kind::page ? QByteArray(R"({"data":{"other":[]}})") : QByteArray("not this");
        return whole;
    case Fault::none:
    case Fault::hangs:
        break;
    }
    return whole;
}

FakeMuseum::Answer FakeMuseum::whole(const Request &request) {
    const int number = request.path.section(u'/', -1).section(u'.', 0, 0).toInt();
    const bool isPage = request.method == "POST" && request.path == "/graphql"_L1;
    if (!isPage && (number < 0 || number >= m_content.count || kindOf(request) == Kind::page))
        return {.status = 404, .closes = true};
    if (isPage)
        return {.body = page(request.body), .closes = true};
    return {.body = kindOf(request) == Kind::archive ? m_content.archive(number) : screenshot(number),
            .closes = true};
}

QByteArray FakeMuseum::page(const QByteArray &question) {
    const QJsonObject asked = QJsonDocument::fromJson(question).object();
    const QJsonObject variables = asked.value("variables"_L1).toObject();
    const bool isSearch = asked.value("operationName"_L1).toString() == "MuseumSearch"_L1;
    m_requests.last().isWellFormed = asked.size() == 3 && asked.value("query"_L1).isString() &&
                                     variables.value("first"_L1).isDouble() &&
                                     variables.value("offset"_L1).isDouble();
    const bool excludesNSFW = isSearch ? variables.value("nsfw"_L1) == QJsonValue(false)
                                       : variables.value("filter"_L1) == QJsonValue(u"APPROVED"_s);
    const QList<int> numbers = found(variables.value("query"_L1).toString(), !excludesNSFW);
    QJsonArray rows;
    for (const int number :
         numbers.mid(variables.value("offset"_L1).toInt(), variables.value("first"_L1).toInt()))
        rows.append(row(number));
    if (onRows)
        onRows(rows);
    if (isSearch)
        return json({{u"data"_s, QJsonObject{{u"search_classic_skins"_s, rows}}}});
    return json({{u"data"_s,
                  QJsonObject{{u"skins"_s, QJsonObject{{u"count"_s, numbers.size()}, {u"nodes"_s, rows}}}}}});
}

QJsonObject FakeMuseum::row(int number) {
    const auto address = [&](const QString &path) { return url(path.arg(number)).toString(); };
    return {{u"__typename"_s, u"ClassicSkin"_s},
            {u"md5"_s, md5(number)},
            {u"filename"_s, m_content.name(number) + u".wsz"_s},
            {u"screenshot_url"_s, address(u"/screenshots/%1.png"_s)},
            {u"download_url"_s, address(u"/skins/%1.wsz"_s)},
            {u"museum_url"_s, address(u"/skin/%1"_s)},
            {u"nsfw"_s, isNSFW(number)}};
}

QList<int> FakeMuseum::found(const QString &text, bool includesNSFW) {
    for (int number = static_cast<int>(m_names.size()); number < m_content.count; ++number)
        m_names.append(m_content.name(number));
    QList<int> numbers;
    for (int number = 0; number < m_content.count; ++number) {
        if ((includesNSFW || !isNSFW(number)) && m_names[number].contains(text, Qt::CaseInsensitive))
            numbers.append(number);
    }
    return numbers;
}

} // namespace vantor
