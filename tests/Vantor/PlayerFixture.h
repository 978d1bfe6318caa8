#pragma once

#include "AudioCore/Output/NullAudioOutput.h"
#include "AudioCore/Playback/Player.h"
#include "Vantor/Model/PlayerModel.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vantor {

/// A player that sounds nowhere but runs in real time, its model, and a folder for settings and files.
class PlayerFixture : public testing::Test {
  protected:
    /// Runs the event loop until the condition holds; false after five seconds.
    template <class Condition>
    [[nodiscard]] static bool waitFor(Condition condition) {
        const QDeadlineTimer deadline(5000);
        while (!condition()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
        return true;
    }

    [[nodiscard]] QUrl file(const char *name) const {
        return QUrl::fromLocalFile(m_folder.filePath(QLatin1String(name)));
    }
    QUrl writeFile(const char *name, const QByteArray &bytes) const {
        QFile target(file(name).toLocalFile());
        EXPECT_TRUE(target.open(QIODevice::WriteOnly) && target.write(bytes) == bytes.size());
        return file(name);
    }
    /// A quiet 16-bit mono WAV file of that many seconds.
    QUrl writeTone(const char *name, int seconds) const;

    QTemporaryDir m_folder;
    QSettings m_settings{m_folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat};
    Player m_player{std::make_unique<FileTrackResolver>(),
                    [] { return std::make_unique<NullAudioOutput>(); }};
    PlayerModel m_model{m_player, m_settings};
};

} // namespace vantor
