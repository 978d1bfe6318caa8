#include "Vantor/App/SingleInstance.h"

#include "Platform/AppPaths.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

Q_LOGGING_CATEGORY(singleInstanceLog, "co.kelvane.vantor.SingleInstance")

namespace vantor {

namespace {

constexpr int longestTalk = 2000;          // ms
constexpr qint64 longestMessage = 8 << 20; // bytes; some fifty thousand files
constexpr int lastCommand = static_cast<int>(LaunchCommand::enqueue);
constexpr int mostTalks = 16;
const QByteArray answer = QByteArrayLiteral("taken\n");

// A line of JSON, so that a later version can say more.
QByteArray toMessage(const LaunchOptions &options) {
    QJsonObject object;
    if (options.command)
        object[QLatin1String("command")] = static_cast<int>(*options.command);
    if (options.skin)
        object[QLatin1String("skin")] = options.skin->toString(QUrl::FullyEncoded);
    QJsonArray files;
    for (const QUrl &file : options.files)
        files.append(file.toString(QUrl::FullyEncoded));
    object[QLatin1String("files")] = files;
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<LaunchOptions> fromMessage(const QByteArray &line) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    LaunchOptions options;
    const int command = object.value(QLatin1String("command")).toInt(-1);
    if (command >= 0 && command <= lastCommand)
        options.command = static_cast<LaunchCommand>(command);
    if (const QUrl skin(object.value(QLatin1String("skin")).toString(), QUrl::StrictMode); skin.isValid())
        options.skin = skin;
    for (const QJsonValue &file : object.value(QLatin1String("files")).toArray()) {
        if (const QUrl url(file.toString(), QUrl::StrictMode); url.isValid())
            options.files.append(url);
    }
    return options;
}

} // namespace

SingleInstance::SingleInstance(const QString &path, QObject *parent)
    : QObject(parent), m_path(path), m_lock(path + QStringLiteral(".lock")) {
    m_lock.setStaleLockTime(0); // it goes stale by its owner's end, not by age
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultPath() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        return {};
    QString display = qEnvironmentVariable("DISPLAY", qEnvironmentVariable("WAYLAND_DISPLAY"));
    for (QChar &character : display) {
        if (!character.isLetterOrNumber() && character != QLatin1Char('.'))
            character = QLatin1Char('-');
    }
    return QDir(folder).filePath(QLatin1String(AppPaths::bundleIdentifier) + display);
}

SingleInstance::Outcome SingleInstance::claim(const LaunchOptions &options) {
    // Where no place can be claimed, a second player is better than none.
    if (m_path.isEmpty())
        return Outcome::first;
    if (m_lock.tryLock(0)) {
        listen();
        return Outcome::first;
    }
    if (m_lock.error() != QLockFile::LockFailedError) {
        qCWarning(singleInstanceLog, "no lock at %s", qUtf8Printable(m_path));
        return Outcome::first;
    }
    const Outcome outcome = handOver(options);
    // It was about to end, and is gone or will be in a moment.
    if (outcome == Outcome::unanswered && m_lock.tryLock(longestTalk)) {
        listen();
        return Outcome::first;
    }
    return outcome;
}

void SingleInstance::listen() {
    QLocalServer::removeServer(m_path); // one that crashed has left it; the lock says that nobody listens
    if (m_server.listen(m_path))
        return;
    qCWarning(singleInstanceLog, "cannot listen at %s: %s", qUtf8Printable(m_path),
              qUtf8Printable(m_server.errorString()));
    m_lock.unlock();
}

SingleInstance::Outcome SingleInstance::handOver(const LaunchOptions &options) const {
    const QDeadlineTimer deadline(longestTalk);
    const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    // The other one may have just begun, and not listen yet.
    for (socket.connectToServer(m_path); !socket.waitForConnected(left()); socket.connectToServer(m_path)) {
        if (deadline.hasExpired())
            return Outcome::unanswered;
        QThread::msleep(20);
    }
    socket.write(toMessage(options));
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(left()))
            return Outcome::unanswered;
    }
    while (socket.bytesAvailable() < answer.size()) {
        if (!socket.waitForReadyRead(left()))
            return Outcome::unanswered;
    }
    return socket.read(answer.size()) == answer ? Outcome::handedOver : Outcome::unanswered;
}

void SingleInstance::accept() {
    while (QLocalSocket *const socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        if (m_server.findChildren<QLocalSocket *>().size() > mostTalks) {
            socket->abort();
            continue;
        }
        QTimer::singleShot(longestTalk, socket, [socket] { socket->abort(); });
        socket->setReadBufferSize(longestMessage);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine()) {
                if (socket->bytesAvailable() >= longestMessage)
                    socket->abort();
                return;
            }
            const std::optional<LaunchOptions> options = fromMessage(socket->readLine(longestMessage));
            if (!options) {
                socket->abort();
                return;
            }
            socket->write(answer);
            socket->disconnectFromServer();
            Q_EMIT requested(*options);
        });
    }
}

} // namespace vantor
