#include "tests/Support/FakeSendspin/FakeSendspin.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <unistd.h>

#include <array>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto commandsHelp = R"(Reads commands from its input, one a line:
  play [codec [rate [depth]]]   a made sweep, to all clients in step; flac 48000 16 unless told otherwise
  format [codec [rate [depth]]] changes the format of the stream without a gap
  clear SECONDS, seek SECONDS   goes to a place of the content, by stream/clear or by stream/end and start
  end                           ends the stream
  volume N, mute on|off, delay MS
  jump SECONDS                  sets the server's clock
  drop                          drops the clients without a word
  list                          what the clients have said)"_L1;

int fail(const QString &message) {
    QTextStream(stderr) << message << Qt::endl;
    return 2;
}

std::chrono::microseconds milliseconds(const QCommandLineParser &parser, const QString &name) {
    return std::chrono::microseconds(std::llround(parser.value(name).toDouble() * 1000));
}

MadeFormat formatFrom(const QStringList &words) {
    MadeFormat format;
    format.codec = words.value(1, format.codec);
    format.sampleRate = words.value(2, QString::number(format.sampleRate)).toInt();
    format.bitDepth = words.value(3, QString::number(format.bitDepth)).toInt();
    const bool isKnown = QStringList{u"pcm"_s, u"flac"_s, u"opus"_s}.contains(format.codec);
    return isKnown && format.sampleRate >= 8000 && format.bitDepth >= 16 ? format : MadeFormat();
}

void list(const FakeSendspin &server) {
    QTextStream out(stdout);
    for (const FakeSendspinPeer *peer : server.clients()) {
        const QJsonObject player = peer->state().value("player"_L1).toObject();
        out << peer->hello().value("name"_L1).toString() << ": volume " << player.value("volume"_L1).toInt()
            << (player.value("muted"_L1).toBool() ? ", muted" : "") << ", delay "
            << player.value("static_delay_ms"_L1).toInt() << " ms, " << peer->chunksSent()
            << " chunks, at most " << peer->mostBuffered() << " bytes ahead, " << peer->timeRequests()
            << " questions for the time" << Qt::endl;
    }
}

void carryOut(FakeSendspin &server, const QString &line, double drift, std::int64_t &skew) {
    const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
    const QString name = words.value(0);
    const QString value = words.value(1);
    if (name == "play"_L1)
        server.play(formatFrom(words));
    else if (name == "format"_L1)
        server.changeFormat(formatFrom(words));
    else if (name == "clear"_L1)
        server.seek(value.toDouble(), FakeSendspin::Seek::clears);
    else if (name == "seek"_L1)
        server.seek(value.toDouble(), FakeSendspin::Seek::restarts);
    else if (name == "end"_L1)
        server.endStream();
    else if (name == "volume"_L1)
        server.command(name, {{u"volume"_s, value.toInt()}});
    else if (name == "mute"_L1)
        server.command(name, {{u"mute"_s, value == "on"_L1}});
    else if (name == "delay"_L1)
        server.command(u"set_static_delay"_s, {{u"static_delay_ms"_s, value.toInt()}});
    else if (name == "jump"_L1)
        server.setClock(skew += std::llround(value.toDouble() * 1e6), drift);
    else if (name == "drop"_L1)
        server.dropClients();
    else if (name == "list"_L1)
        list(server);
    else
        QTextStream(stderr) << "There is no command “" << name << "”." << Qt::endl;
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"A stand-in for a Sendspin server, on this machine only.\n\n"_s +
                                     commandsHelp);
    parser.addHelpOption();
    parser.addOptions(
        {{u"port"_s, u"Where to listen; 0: any free port."_s, u"N"_s, u"8927"_s},
         {u"token"_s, u"The token that signs in; none: no sign-in."_s, u"TEXT"_s},
         {u"skew"_s, u"How far its clock is ahead."_s, u"SECONDS"_s, u"1000"_s},
         {u"drift"_s, u"How much faster it runs."_s, u"PPM"_s, u"0"_s},
         {u"latency"_s, u"How long messages take."_s, u"MS"_s, u"0"_s},
         {u"jitter"_s, u"Up to this much longer."_s, u"MS"_s, u"0"_s},
         {u"asymmetry"_s, u"Longer on the way here only."_s, u"MS"_s, u"0"_s},
         {u"bursts"_s, u"For half a second in five, up to this much longer."_s, u"MS"_s, u"0"_s}});
    parser.process(application);

    RealTimeline time;
    FakeSendspin server(time);
    server.tokens.clear();
    if (parser.isSet(u"token"_s))
        server.tokens.insert(parser.value(u"token"_s));
    const double drift = parser.value(u"drift"_s).toDouble();
    std::int64_t skew = std::llround(parser.value(u"skew"_s).toDouble() * 1e6);
    server.setClock(skew, drift);
    server.network = {.base = milliseconds(parser, u"latency"_s),
                      .jitter = milliseconds(parser, u"jitter"_s),
                      .toServer = milliseconds(parser, u"asymmetry"_s),
                      .burst = milliseconds(parser, u"bursts"_s),
                      .burstLength = std::chrono::milliseconds(500),
                      .burstPeriod = std::chrono::seconds(5)};
    bool isPort = false;
    const quint16 port = parser.value(u"port"_s).toUShort(&isPort);
    if (!isPort || !server.listen(port))
        return fail(u"Cannot listen on port %1."_s.arg(parser.value(u"port"_s)));
    QTextStream(stdout) << server.url().toString() << Qt::endl;

    QByteArray input;
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&] {
        std::array<char, 4096> buffer{};
        const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            notifier.setEnabled(false); // goes on without commands
            return;
        }
        input.append(buffer.data(), count);
        for (qsizetype end = 0; (end = input.indexOf('\n')) >= 0; input.remove(0, end + 1))
            carryOut(server, QString::fromUtf8(input.left(end)), drift, skew);
    });
    return QCoreApplication::exec();
}
