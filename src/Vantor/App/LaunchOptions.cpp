#include "Vantor/App/LaunchOptions.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <cmath>

namespace vantor {

namespace {

constexpr double longestRun = 86400; // one day, in seconds

QString usage() {
    return QStringLiteral(
        "usage: vantor [--play|--pause|--toggle|--stop|--next|--previous|--enqueue] [--skin FILE]\n"
        "              [--seconds N] [--screenshot FILE] [--version] [--help] [files]");
}

QString help() {
    return usage() +
           QStringLiteral("\n\n"
                          "  --play             play: the files, or what is in the queue\n"
                          "  --pause            pause\n"
                          "  --toggle           pause, or play on\n"
                          "  --stop             stop\n"
                          "  --next             go to the next track\n"
                          "  --previous         go to the previous track\n"
                          "  --enqueue          add the files to the end of the queue\n"
                          "  --skin FILE        wear a skin: a .wsz archive or a skin folder\n"
                          "  --seconds N        stop after N seconds (without a display: 10)\n"
                          "  --screenshot FILE  write a picture of the window before stopping\n"
                          "                     (without a display: vantor.png)\n"
                          "  --version          print the version\n"
                          "  --help             print this\n\n"
                          "Files are audio files, folders, playlists, web addresses and .wsz skins. Audio\n"
                          "replaces the queue and is played. A player that runs already on this display\n"
                          "takes over what is asked for. Without audio the last queue comes back; the\n"
                          "first time, and in a run of N seconds, the demo track plays. Without a display\n"
                          "the program plays all the same, prints what happens and exits.");
}

bool isAddress(const QString &argument) {
    return argument.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
           argument.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

QUrl urlOf(const QString &argument) {
    if (argument.startsWith(QLatin1String("file:")) || isAddress(argument))
        return QUrl(argument);
    return QUrl::fromLocalFile(QDir::cleanPath(QFileInfo(argument).absoluteFilePath()));
}

std::optional<LaunchCommand> commandOf(const QString &argument) {
    static const QHash<QString, LaunchCommand> commands{
        {QStringLiteral("--play"), LaunchCommand::play},
        {QStringLiteral("--pause"), LaunchCommand::pause},
        {QStringLiteral("--toggle"), LaunchCommand::toggle},
        {QStringLiteral("--stop"), LaunchCommand::stop},
        {QStringLiteral("--next"), LaunchCommand::next},
        {QStringLiteral("--previous"), LaunchCommand::previous},
        {QStringLiteral("--enqueue"), LaunchCommand::enqueue},
    };
    const auto found = commands.constFind(argument);
    return found == commands.cend() ? std::nullopt : std::optional(*found);
}

std::optional<double> secondsOf(const QString &text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value) || value <= 0 || value > longestRun)
        return std::nullopt;
    return value;
}

LaunchOptions::Message usageError(const QString &text) {
    return {text + QLatin1Char('\n') + usage(), 2};
}

} // namespace

std::variant<LaunchOptions, LaunchOptions::Message> LaunchOptions::parse(const QStringList &arguments) {
    LaunchOptions options;
    std::optional<QUrl> skinAmongFiles;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (optionsEnded || !argument.startsWith(QLatin1Char('-')) || argument == QLatin1String("-")) {
            if (!isAddress(argument) && argument.endsWith(QLatin1String(".wsz"), Qt::CaseInsensitive))
                skinAmongFiles = urlOf(argument);
            else
                options.files.append(urlOf(argument));
            continue;
        }
        if (const std::optional<LaunchCommand> command = commandOf(argument)) {
            if (options.command && options.command != command)
                return usageError(QStringLiteral("only one command at a time: ") + argument);
            options.command = command;
        } else if (argument == QLatin1String("--")) {
            optionsEnded = true;
        } else if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            return Message{help(), 0};
        } else if (argument == QLatin1String("--version")) {
            return Message{QStringLiteral("Vantor " VANTOR_VERSION), 0};
        } else if (argument == QLatin1String("--skin") || argument == QLatin1String("--seconds") ||
                   argument == QLatin1String("--screenshot")) {
            if (i + 1 == arguments.size())
                return usageError(argument + QStringLiteral(" needs a value"));
            const QString &value = arguments[++i];
            if (argument == QLatin1String("--skin")) {
                options.skin = urlOf(value);
            } else if (argument == QLatin1String("--screenshot")) {
                options.screenshot = value;
            } else {
                options.seconds = secondsOf(value);
                if (!options.seconds)
                    return usageError(QStringLiteral("--seconds needs a number above 0, at most 86400"));
            }
        } else {
            return usageError(QStringLiteral("unknown option: ") + argument);
        }
    }
    if (!options.skin)
        options.skin = skinAmongFiles;
    const bool takesFiles = !options.command || options.command == LaunchCommand::play ||
                            options.command == LaunchCommand::enqueue;
    if (!takesFiles && !options.files.isEmpty())
        return usageError(QStringLiteral("files go with --play or --enqueue only"));
    if (options.command == LaunchCommand::enqueue && options.files.isEmpty())
        return usageError(QStringLiteral("--enqueue needs files"));
    return options;
}

} // namespace vantor
