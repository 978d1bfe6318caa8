#include "tests/Support/FakeMusicAssistant/FakeHouse.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <array>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

struct NamedFault {
    QString name;
    FakeMusicAssistant::Fault fault;
};

const std::array<NamedFault, 11> faults{{
    {u"none"_s, FakeMusicAssistant::Fault::none},
    {u"says-nothing"_s, FakeMusicAssistant::Fault::saysNothing},
    {u"garbage-first"_s, FakeMusicAssistant::Fault::garbageFirst},
    {u"broken-info"_s, FakeMusicAssistant::Fault::brokenInfo},
    {u"stalls-during-auth"_s, FakeMusicAssistant::Fault::stallsDuringAuth},
    {u"drops-during-auth"_s, FakeMusicAssistant::Fault::dropsDuringAuth},
    {u"event-during-auth"_s, FakeMusicAssistant::Fault::eventDuringAuth},
    {u"not-authenticated"_s, FakeMusicAssistant::Fault::notAuthenticated},
    {u"closes-after-auth"_s, FakeMusicAssistant::Fault::closesAfterAuth},
    {u"redirects"_s, FakeMusicAssistant::Fault::redirects},
    {u"fails-http"_s, FakeMusicAssistant::Fault::failsHTTP},
}};

void addCommandFaults(FakeMusicAssistant &server, const QCommandLineParser &parser) {
    using Kind = FakeMusicAssistant::CommandFault::Kind;
    const std::pair<QString, Kind> options[] = {{u"stall"_s, Kind::stalls},
                                                {u"refuse"_s, Kind::fails},
                                                {u"garble"_s, Kind::garbles},
                                                {u"drop"_s, Kind::drops},
                                                {u"slow"_s, Kind::delays}};
    for (const auto &[option, kind] : options) {
        for (const QString &command : parser.values(option))
            server.commandFaults.insert(command, {.kind = kind, .delay = std::chrono::seconds(2)});
    }
}

/// So many events a second about what changes in a busy house.
void startStorm(QTimer &timer, int perSecond, FakeLibrary &library, FakePlayers &players) {
    constexpr int interval = 10; // ms
    if (perSecond <= 0)
        return;
    players.append(u"kitchen"_s, library.expanded(FakeLibrary::uri(u"playlist"_s, 0)));
    players.queues[u"kitchen"_s].current = 0;
    timer.callOnTimeout([perSecond, &library, &players, sent = 0]() mutable {
        for (int i = 0; i < perSecond * interval / 1000; i += 3, ++sent) {
            players.queues[u"kitchen"_s].elapsed = sent % 100;
            players.changed(u"kitchen"_s);
            library.sendItemEvent(u"media_item_updated"_s,
                                  FakeLibrary::uri(u"track"_s, sent % library.size().tracks));
        }
    });
    timer.start(interval);
}

int fail(const QString &message) {
    QTextStream(stderr) << message << Qt::endl;
    return 2;
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    QStringList faultNames;
    for (const NamedFault &known : faults)
        faultNames.append(known.name);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"A stand-in for a Music Assistant server, on this machine only."_s);
    parser.addHelpOption();
    parser.addOptions(
        {{u"port"_s, u"Where to listen; 0: any free port."_s, u"N"_s, u"8095"_s},
         {u"token"_s, u"The token that signs in (made up for tests)."_s, u"TEXT"_s, u"secret-token"_s},
         {u"server-id"_s, u"The server's ID."_s, u"TEXT"_s, u"fake-server"_s},
         {u"name"_s, u"The server's name."_s, u"TEXT"_s, u"Fake Home"_s},
         {u"schema"_s, u"Its schema."_s, u"N"_s, u"65"_s},
         {u"min-schema"_s, u"The oldest schema that it speaks."_s, u"N"_s, u"28"_s},
         {u"tracks"_s, u"How large the library is."_s, u"N"_s, u"2000"_s},
         {u"favorite-every"_s, u"How many items there are to one favourite."_s, u"N"_s, u"7"_s},
         {u"events"_s, u"How many events are sent in a second, of all kinds."_s, u"N"_s, u"0"_s},
         {u"dialect"_s, u"today, or old: as servers of former years speak."_s, u"NAME"_s, u"today"_s},
         {u"stall"_s, u"Never answers this command; several times, or \"*\"."_s, u"COMMAND"_s},
         {u"refuse"_s, u"Fails this command."_s, u"COMMAND"_s},
         {u"garble"_s, u"Answers this command with nonsense."_s, u"COMMAND"_s},
         {u"drop"_s, u"Drops the connection at this command."_s, u"COMMAND"_s},
         {u"slow"_s, u"Takes two seconds for this command."_s, u"COMMAND"_s},
         {u"fault"_s, u"One of: %1."_s.arg(faultNames.join(u", "_s)), u"NAME"_s, u"none"_s}});
    parser.process(application);

    FakeMusicAssistant server;
    const auto fault = std::find_if(faults.begin(), faults.end(), [&](const NamedFault &known) {
        return known.name == parser.value(u"fault"_s);
    });
    if (fault == faults.end())
        return fail(u"There is no fault “%1”."_s.arg(parser.value(u"fault"_s)));
    server.fault = fault->fault;
    server.redirectTarget = QUrl(u"http://127.0.0.1:1/info"_s);
    server.tokens = {parser.value(u"token"_s)};
    server.info.insert("server_id"_L1, parser.value(u"server-id"_s));
    server.info.insert("name"_L1, parser.value(u"name"_s));
    server.info.insert("schema_version"_L1, parser.value(u"schema"_s).toInt());
    server.info.insert("min_supported_schema_version"_L1, parser.value(u"min-schema"_s).toInt());
    addCommandFaults(server, parser);
    bool isNumber = false;
    const int tracks = parser.value(u"tracks"_s).toInt(&isNumber);
    if (!isNumber || tracks < 1 || tracks > 10'000'000)
        return fail(u"There is no library of %1 tracks."_s.arg(parser.value(u"tracks"_s)));
    const bool isOld = parser.value(u"dialect"_s) == "old"_L1;
    const int favoriteEvery = std::max(parser.value(u"favorite-every"_s).toInt(), 1);
    FakeLibrary library(server, {.tracks = tracks, .favoriteEvery = favoriteEvery},
                        isOld ? FakeLibrary::Dialect::old : FakeLibrary::Dialect::today);
    FakePlayers players(server, library);
    players.run();
    FakeHouse house(server, players);
    QTimer storm;
    startStorm(storm, parser.value(u"events"_s).toInt(), library, players);
    bool isPort = false;
    const quint16 port = parser.value(u"port"_s).toUShort(&isPort);
    if (!isPort || !server.listen(port))
        return fail(u"Cannot listen on port %1."_s.arg(parser.value(u"port"_s)));
    QTextStream(stdout) << server.url().toString() << Qt::endl;
    return QCoreApplication::exec();
}
