#include "MusicAssistantKit/Backend/MusicAssistantBackend.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTextStream>
#include <QTimer>

#include <unistd.h>

#include <ctime>
#include <deque>

// How fast a large library comes from a server on this machine, which is a process of its own: the first page
// of every list, the whole library with the memory that it takes, what thousands of events a second cost the
// main thread, and how long a server that has returned is not noticed.

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int eventSeconds = 5;

QTextStream out(stdout);

double megabytes() {
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) /
           (1 << 20);
}

double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// The server, with its address.
class Server {
  public:
    explicit Server(const QStringList &options, int port = 0) {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(FAKE_SERVER),
                        QStringList{u"--port"_s, QString::number(port)} + options);
        if (m_process.waitForReadyRead())
            m_url = QUrl(QString::fromUtf8(m_process.readLine()).trimmed());
    }
    ~Server() {
        m_process.terminate();
        m_process.waitForFinished();
    }
    [[nodiscard]] QUrl url() const { return m_url; }

  private:
    QProcess m_process;
    QUrl m_url;
};

struct Connection {
    SystemScheduler clock;
    QtWebSocketTransports transports;
    QtHTTPTransport http;
    std::shared_ptr<MusicAssistantBackend> backend;

    explicit Connection(const QUrl &url) {
        const MusicAssistantServerSettings settings{.address = {.baseURL = url, .serverID = {}},
                                                    .token = MusicAssistantToken(u"secret-token"_s)};
        backend = std::make_shared<MusicAssistantBackend>(
            MusicAssistantBackend::Server{.id = {}, .name = u"Speed"_s, .settings = settings},
            MusicAssistantBackend::Collaborators{.transports = transports, .http = http, .clock = clock});
    }
};

template <typename Record>
using PageOf = std::function<QCoro::Task<Page<Record>>(PageRequest)>;

template <typename Record>
QCoro::Task<> firstPage(std::shared_ptr<MusicAssistantBackend> backend, QString name, PageOf<Record> list) {
    QElapsedTimer timer;
    timer.start();
    co_await backend->connect();
    const qint64 connected = timer.nsecsElapsed();
    const Page<Record> page = co_await list(PageRequest::first());
    const double milliseconds = static_cast<double>(timer.nsecsElapsed() - connected) / 1e6;
    out << "first page of " << name << ": " << page.items.size() << " of " << page.total.value_or(-1)
        << " in " << milliseconds << " ms after connecting" << Qt::endl;
    co_await backend->disconnect();
}

/// Some pages are on their way while the ones before are decoded.
template <typename Record>
QCoro::Task<QList<Record>> whole(PageOf<Record> list, int limit) {
    constexpr int ahead = 3;
    QList<Record> all;
    std::deque<QCoro::Task<Page<Record>>> coming;
    int asked = 0;
    for (bool goesOn = true; goesOn || !coming.empty();) {
        for (; goesOn && coming.size() <= ahead; asked += limit)
            coming.push_back(list({asked, limit}));
        const Page<Record> page = co_await coming.front();
        coming.pop_front();
        all += page.items; // none beyond the end
        goesOn = goesOn && page.next(limit).has_value();
    }
    co_return all;
}

QCoro::Task<> readAll(std::shared_ptr<MusicAssistantBackend> backend) {
    const auto artists = [backend](PageRequest page) { return backend->artists(page); };
    const auto albums = [backend](PageRequest page) { return backend->albums({}, page); };
    const auto tracks = [backend](PageRequest page) { return backend->favoriteTracks(page); };
    co_await firstPage<LibraryArtist>(backend, u"artists"_s, artists);
    co_await firstPage<LibraryAlbum>(backend, u"albums"_s, albums);
    co_await firstPage<LibraryTrack>(backend, u"tracks"_s, tracks);
    co_await backend->connect();
    const double before = megabytes();
    QElapsedTimer timer;
    timer.start();
    const double cpu = threadSeconds();
    const QList<LibraryArtist> allArtists = co_await whole<LibraryArtist>(artists, 500);
    const QList<LibraryAlbum> allAlbums = co_await whole<LibraryAlbum>(albums, 500);
    const QList<LibraryTrack> allTracks = co_await whole<LibraryTrack>(tracks, 500);
    out << "whole library: " << allArtists.size() << " artists, " << allAlbums.size() << " albums, "
        << allTracks.size() << " tracks in " << static_cast<double>(timer.elapsed()) / 1000 << " s, "
        << threadSeconds() - cpu << " s of the main thread, " << megabytes() - before << " MB added"
        << Qt::endl;
}

/// Watches everything while events come, and measures the main thread.
QCoro::Task<> followEvents(std::shared_ptr<MusicAssistantBackend> backend) {
    co_await backend->connect();
    const auto changes = backend->libraryChanges();
    const auto playing = backend->nowPlaying({u"kitchen"_s});
    const auto queue = backend->queue({u"kitchen"_s});
    QTimer frames;
    frames.setTimerType(Qt::PreciseTimer);
    QElapsedTimer sinceFrame;
    qint64 longest = 0;
    qint64 dropped = 0;
    QObject::connect(&frames, &QTimer::timeout, &frames, [&] {
        constexpr qint64 frame = 1'000'000'000 / 60;
        longest = std::max(longest, sinceFrame.nsecsElapsed());
        dropped += sinceFrame.nsecsElapsed() / frame;
        sinceFrame.start();
    });
    sinceFrame.start();
    frames.start(5);
    const double cpu = threadSeconds();
    auto [producer, stream] = AsyncStream<bool>::make(latestValueOnly);
    QTimer::singleShot(eventSeconds * 1000, [&producer] { producer.finish(); });
    [[maybe_unused]] const auto end = co_await stream.next();
    out << "events: main thread busy " << (threadSeconds() - cpu) / eventSeconds * 100
        << " %, longest wait of a timer of 5 ms: " << static_cast<double>(longest) / 1e6
        << " ms, frames of 1/60 s that it missed: " << dropped << " of " << eventSeconds * 60 << Qt::endl;
}

QCoro::Task<> measureReturn(std::shared_ptr<MusicAssistantBackend> backend, std::unique_ptr<Server> server) {
    co_await backend->connect();
    const int port = server->url().port();
    server.reset();
    server = std::make_unique<Server>(QStringList{}, port);
    QElapsedTimer timer;
    timer.start();
    const auto statuses = backend->statusUpdates();
    while (backend->status().connection < 2) [[maybe_unused]]
        const auto status = co_await statuses.next();
    out << "connected again " << timer.elapsed() << " ms after the server's return" << Qt::endl;
    co_await backend->disconnect();
}

void runToEnd(QCoro::Task<> task) {
    QCoro::waitFor(std::move(task));
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    const QString tracks = application.arguments().value(1, u"100000"_s);
    {
        const Server server({u"--tracks"_s, tracks, u"--favorite-every"_s, u"1"_s});
        const Connection connection(server.url());
        runToEnd(readAll(connection.backend));
    }
    {
        const Server server(
            {u"--tracks"_s, tracks, u"--events"_s, application.arguments().value(2, u"5000"_s)});
        const Connection connection(server.url());
        runToEnd(followEvents(connection.backend));
    }
    auto server = std::make_unique<Server>(QStringList{});
    const Connection connection(server->url());
    runToEnd(measureReturn(connection.backend, std::move(server)));
    return 0;
}
