#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>
#include <variant>

namespace vantor {

/// What a start of the program can do to the player, in this process or in the one that runs already.
enum class LaunchCommand { play, pause, toggle, stop, next, previous, enqueue };

/// What the command line asks for.
struct LaunchOptions {
    std::optional<LaunchCommand> command; ///< only play and enqueue go with files
    std::optional<QUrl> skin;             ///< --skin, else the last .wsz among the arguments
    QList<QUrl> files;                    ///< audio files, folders and playlists in the order given
    std::optional<double> seconds;        ///< --seconds: how long to run
    std::optional<QString> screenshot;    ///< --screenshot: where the picture of the window goes

    bool operator==(const LaunchOptions &) const = default;

    /// A run that is watched for a time, or for its picture, and has nothing to do with other ones.
    [[nodiscard]] bool isOnItsOwn() const { return seconds || screenshot; }

    /// A text to print instead of starting: to standard output with status 0, to standard error otherwise.
    struct Message {
        QString text;
        int exitStatus = 0;

        bool operator==(const Message &) const = default;
    };

    /// `arguments` without the program's name; relative paths are taken from the current folder.
    [[nodiscard]] static std::variant<LaunchOptions, Message> parse(const QStringList &arguments);
};

} // namespace vantor
