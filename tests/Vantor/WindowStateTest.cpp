#include "Vantor/Model/WindowState.h"

#include "PlayerFixture.h"

#include <QFile>

using namespace vantor;

TEST_F(PlayerFixture, OneWindowIsAlwaysOpen) {
    WindowState &state = m_model.windows();
    using enum WindowKind;
    state.setOpen(equalizer, true);
    state.setOpen(main, false);
    EXPECT_FALSE(state.isOpen(main));
    state.setOpen(equalizer, false);
    EXPECT_TRUE(state.isOpen(main));
    state.setOpen(playlist, true);
    state.setShaded(playlist, true);
    state.setOpen(main, false);
    const WindowState restored(m_settings); // the next start has its main window again
    EXPECT_TRUE(restored.isOpen(main));
    EXPECT_TRUE(restored.isOpen(playlist));
    EXPECT_TRUE(restored.isShaded(playlist));
    EXPECT_FALSE(restored.isOpen(equalizer));
}

// By a fault or a later version; nothing of it may look like a choice of the user's.
TEST_F(PlayerFixture, SettingsThatCannotBeCountAsAbsent) {
    for (const char *key :
         {"shaded", "doubleSize", "alwaysOnTop", "equalizer.open", "visualizer.mode", "visualizer.peaks",
          "visualizer.scope", "volume", "balance", "shuffle", "repeat", "timeMode", "resumeOnStart"})
        m_settings.setValue(QLatin1String(key), QStringLiteral("holographic"));
    m_settings.setValue(QStringLiteral("skins.recent"), QByteArray("\xff\x00\x01", 3));
    m_settings.setValue(QStringLiteral("output.device"), QStringLiteral("no such device"));
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>());
    PlayerModel model(player, m_settings);
    EXPECT_EQ(model.scene(), m_model.scene());
    EXPECT_EQ(model.visualizer().mode(), VisualizerMode::spectrum);
    EXPECT_TRUE(model.visualizer().showsPeaks());
    EXPECT_FALSE(model.preferences().resumesOnStart());
    EXPECT_TRUE(model.skins().recent().isEmpty());
}

TEST_F(PlayerFixture, TheVisualizersLookComesBack) {
    Visualizer &visualizer = m_model.visualizer();
    for (const VisualizerMode mode :
         {VisualizerMode::oscilloscope, VisualizerMode::off, VisualizerMode::spectrum}) {
        visualizer.cycleMode();
        EXPECT_EQ(visualizer.mode(), mode);
    }
    visualizer.setMode(VisualizerMode::oscilloscope);
    visualizer.setScopeStyle(ScopeStyle::solid);
    visualizer.setThinBars(true);
    visualizer.setShowsPeaks(false);
    const Visualizer restored(m_player.analyzer(), m_settings);
    EXPECT_EQ(restored.mode(), VisualizerMode::oscilloscope);
    EXPECT_EQ(restored.scopeStyle(), ScopeStyle::solid);
    EXPECT_TRUE(restored.hasThinBars());
    EXPECT_FALSE(restored.showsPeaks());
}

TEST_F(PlayerFixture, SkinsWornLatelyAreAtHandAsLongAsTheyAreThere) {
    const auto skin = [this](int i) { return writeFile(qPrintable(QString::number(i) + u".wsz"_qs), "x"); };
    SkinShelf &shelf = m_model.skins();
    for (int i = 1; i <= 10; ++i)
        shelf.wore(skin(i));
    shelf.wore(skin(4));
    QFile::remove(m_folder.path("9.wsz"));
    EXPECT_EQ(shelf.recent(), QList({skin(4), skin(10), skin(8), skin(7), skin(6), skin(5), skin(3)}));
    EXPECT_EQ(shelf.lastWorn(), skin(4));
    shelf.wore({});
    EXPECT_TRUE(shelf.lastWorn().isEmpty());
}
