#include "LibraryBrowser/LibraryBrowser.h"
#include "MeasuredApplication.h"
#include "MusicLibraryKit/ArtworkCache.h"
#include "Vantor/Library/LibraryGridView.h"
#include "Vantor/Library/LibraryWindow.h"
#include "Vantor/Library/TrackTable.h"
#include "Vantor/Remote/SpeakersPanel.h"
#include "tests/Support/MadeBackend.h"

#include <QCommandLineParser>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QSettings>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QToolButton>

#include <cstdio>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

QPalette darkColors() {
    QPalette colors(QColor(49, 54, 59));
    colors.setColor(QPalette::Base, QColor(35, 38, 41));
    colors.setColor(QPalette::Highlight, QColor(61, 174, 233));
    colors.setColor(QPalette::HighlightedText, Qt::white);
    return colors;
}

template <class View>
View *shown(const QWidget &window) {
    for (View *const view : window.findChildren<View *>()) {
        if (view->isVisible())
            return view;
    }
    return nullptr;
}

void measure(MeasuredApplication &application, LibraryWindow &window, const char *what, QScrollBar &bar) {
    const auto report = [&](const char *how) {
        application.report((QByteArray(what) + ": " + how).constData());
    };
    bar.setValue(0);
    runSteps(1s, 100ms, [](int) {});
    report("begin");
    runSteps(5s, 16ms, [&](int i) { bar.setValue(i * 40); });
    report("scroll smoothly");
    runSteps(5s, 60ms,
             [&](int i) { bar.setValue(static_cast<int>(i * 7919LL * 977 % std::max(1, bar.maximum()))); });
    report("jump about");
    const QSize size = window.size();
    runSteps(3s, 30ms, [&](int i) { window.resize(700 + i * 37 % 580, 450 + i * 53 % 310); });
    window.resize(size);
    report("resize");
}

} // namespace

// bench-library-window [--albums <count>] [--look] [--dark] [--rtl]: how long the Library window's events
// take with a made library while one scrolls, searches and resizes. With --look it stays, with one of
// everything, to be looked at.
int main(int argc, char **argv) {
    MeasuredApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{QStringLiteral("albums"), {}, QStringLiteral("count"), QStringLiteral("2000")},
                       {QStringLiteral("settings"), {}, QStringLiteral("file")},
                       {QStringLiteral("look"), {}},
                       {QStringLiteral("dark"), {}},
                       {QStringLiteral("rtl"), {}}});
    parser.process(application);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (parser.isSet(QStringLiteral("dark")))
        QApplication::setPalette(darkColors());
    if (parser.isSet(QStringLiteral("rtl")))
        QApplication::setLayoutDirection(Qt::RightToLeft);

    const QTemporaryDir folder;
    const QString file = parser.value(QStringLiteral("settings"));
    QSettings settings(file.isEmpty() ? folder.filePath(QStringLiteral("settings.ini")) : file,
                       QSettings::IniFormat);
    const auto made = std::make_shared<MadeBackend>();
    if (parser.isSet(QStringLiteral("look"))) {
        made->setOneOfEverything();
        for (const char *const name : {"Kitchen", "A Terrace with a Very Long Name"}) {
            OutputDevice speaker;
            speaker.id.rawValue = speaker.name = QLatin1String(name);
            speaker.isAvailable = made->speakers.size() == 1;
            made->speakers.append(speaker);
        }
    } else {
        made->setSize({.artists = parser.value(QStringLiteral("albums")).toInt() / 5, .albumsPerArtist = 5});
        made->delay = -1ms; // at once, as a folder answers
    }
    ArtworkCache artwork(folder.filePath(QStringLiteral("artwork")), {});
    LibraryBrowser browser;
    artwork.setBackend(made);
    browser.setBackend(made);
    QElapsedTimer clock;
    clock.start();
    RemoteOutput output(settings);
    output.setBrowser(&browser);
    LibraryWindow window(browser, artwork, settings, {});
    window.setOutputPicker(makeOutputButton(output, &window));
    window.bringToFront();
    if (parser.isSet(QStringLiteral("look"))) {
        QTimer::singleShot(500, &application, [made] { made->tellPlaying(made->somethingPlaying()); });
        return QApplication::exec();
    }
    window.resize(1280, 760);
    auto *grid = shown<LibraryGridView>(window);
    while (!grid || grid->model()->rowCount() == 0) {
        if (clock.hasExpired(10'000)) {
            std::fputs("there are no albums\n", stderr);
            return 1;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        grid = shown<LibraryGridView>(window);
    }
    std::printf("first albums after %lld ms\n", static_cast<long long>(clock.elapsed()));
    measure(application, window, "albums", *grid->verticalScrollBar());

    clock.start();
    window.findChild<QListWidget *>()->setCurrentRow(0);
    auto *const artists = shown<LibraryGridView>(window);
    while (artists->model()->rowCount() < made->allArtists.size() && !clock.hasExpired(60'000))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
    std::printf("%d artists after %lld ms\n", artists->model()->rowCount(),
                static_cast<long long>(clock.elapsed()));
    application.report("artists");

    const QString text = QStringLiteral("album 12");
    auto *const search = window.findChild<QLineEdit *>();
    runSteps(4s, 60ms, [&](int i) { search->setText(text.left(i % (text.size() + 1))); });
    search->clear();
    application.report("search");
    QMetaObject::invokeMethod(&window, [&] { QCoreApplication::processEvents(); });
    return 0;
}
