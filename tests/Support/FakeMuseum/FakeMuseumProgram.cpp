#include "tests/Support/FakeMuseum/FakeMuseum.h"
#include "tests/Support/SkinCollection.h"
#include "tests/Support/TestCertificate.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <cstdio>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

using Fault = FakeMuseum::Fault;
using Kind = FakeMuseum::Kind;

const QHash<QString, Fault> faults{
    {u"none"_s, Fault::none},
    {u"limits-rate"_s, Fault::limitsRate},
    {u"fails"_s, Fault::fails},
    {u"reports-error"_s, Fault::reportsError},
    {u"garbles"_s, Fault::garbles},
    {u"truncates"_s, Fault::truncates},
    {u"claims-more"_s, Fault::claimsMore},
    {u"is-endless"_s, Fault::isEndless},
    {u"redirects"_s, Fault::redirects},
    {u"hangs"_s, Fault::hangs},
    {u"wrong-content"_s, Fault::wrongContent},
};
const QHash<QString, Kind> kinds{
    {u"pages"_s, Kind::page}, {u"screenshots"_s, Kind::screenshot}, {u"archives"_s, Kind::archive}};

QStringList sorted(QStringList names) {
    names.sort();
    return names;
}

/// One command a line; false for none of them.
bool carryOut(FakeMuseum &museum, const QString &line) {
    const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
    const QString word = words.value(0);
    if (word == "offline"_L1)
        museum.goOffline();
    else if (word == "online"_L1)
        return museum.open();
    else if (word == "latency"_L1)
        museum.latency = words.value(1).toInt();
    else if (word == "retry-after"_L1)
        museum.retryAfter = words.value(1).toUtf8();
    else if (word == "times"_L1)
        museum.faultsLeft = words.value(1).toInt();
    else if (kinds.contains(word) && faults.contains(words.value(1)))
        museum.faults[kinds.value(word)] = faults.value(words.value(1));
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QTextStream out(stdout);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"An online museum of skins, on this machine only. Reads commands from standard input, one a line: "
        "offline, online, latency MS, retry-after SECONDS, times N (faults from now on), and KIND FAULT, "
        "where "
        "KIND is one of %1 and FAULT one of %2."_s.arg(sorted(kinds.keys()).join(u", "_s),
                                                       sorted(faults.keys()).join(u", "_s)));
    parser.addHelpOption();
    parser.addOptions({{u"port"_s, u"Where to listen; 0: any free port."_s, u"N"_s, u"8443"_s},
                       {u"skins"_s, u"How many skins it has."_s, u"N"_s, u"20000"_s},
                       {u"latency"_s, u"Milliseconds before each answer."_s, u"MS"_s, u"0"_s},
                       {u"http"_s, u"Without encryption, which clients refuse."_s},
                       {u"certificate"_s, u"Where to write the certificate that clients need."_s, u"FILE"_s,
                        u"fake-museum.pem"_s}});
    parser.process(application);

    const test::SkinCollection collection;
    FakeMuseum museum({.count = parser.value(u"skins"_s).toInt(),
                       .name = &test::SkinCollection::name,
                       .archive = [&](int number) { return collection.archive(number); }});
    museum.latency = parser.value(u"latency"_s).toInt();
    museum.redirectTarget = QUrl(u"http://127.0.0.1:1/"_s);
    const TestCertificate certificate(u"localhost"_s);
    if (!parser.isSet(u"http"_s)) {
        museum.tls = certificate.serverConfiguration();
        QFile file(parser.value(u"certificate"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(certificate.certificate().toPem()) < 1) {
            QTextStream(stderr) << "Cannot write " << file.fileName() << Qt::endl;
            return 2;
        }
    }
    if (!museum.open(parser.value(u"port"_s).toUShort())) {
        QTextStream(stderr) << museum.errorString() << Qt::endl;
        return 2;
    }
    out << museum.url().toString() << Qt::endl;
    QSocketNotifier commands(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, &application, [&] {
        std::array<char, 1000> line{};
        if (!std::fgets(line.data(), line.size(), stdin))
            return commands.setEnabled(false);
        if (!carryOut(museum, QString::fromUtf8(line.data()).trimmed()))
            out << "What?" << Qt::endl;
    });
    return QGuiApplication::exec();
}
