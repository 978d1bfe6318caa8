#pragma once

#include "AudioCore/Playback/Player.h"
#include "Vantor/Model/PlayerModel.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/TestOutput.h"
#include "tests/Support/WaitFor.h"

#include <QSettings>

#include <gtest/gtest.h>

namespace vantor {

/// A player that sounds nowhere but runs in real time, its model, and a folder for settings and files.
class PlayerFixture : public testing::Test {
  protected:
    [[nodiscard]] QUrl file(const char *name) const { return QUrl::fromLocalFile(m_folder.path(name)); }
    QUrl writeFile(const char *name, const QByteArray &bytes) const {
        return QUrl::fromLocalFile(m_folder.write(name, bytes));
    }
    QUrl writeTone(const char *name, double seconds) const {
        writeAudioFile(m_folder.path(name), {.seconds = seconds, .sampleRate = 8000, .channels = 1});
        return file(name);
    }

    TestFolder m_folder;
    QSettings m_settings{m_folder.path("settings.ini"), QSettings::IniFormat};
    Player m_player{std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>()};
    PlayerModel m_model{m_player, m_settings};
};

} // namespace vantor
