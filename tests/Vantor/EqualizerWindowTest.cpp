#include "Vantor/Windows/EqualizerWindow.h"

#include "PlayerFixture.h"
#include "SkinKit/Layout/MainSliders.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <QWheelEvent>

using namespace vantor;

namespace {

class EqualizerWindowTest : public PlayerFixture {
  protected:
    void SetUp() override {
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }
    void press(QPoint at) { QTest::mousePress(&m_window, Qt::LeftButton, {}, at); }
    void moveTo(QPoint at) { QTest::mouseMove(&m_window, at); }
    void release(QPoint at) { QTest::mouseRelease(&m_window, Qt::LeftButton, {}, at); }
    void click(const QRect &rect) { QTest::mouseClick(&m_window, Qt::LeftButton, {}, rect.center()); }
    [[nodiscard]] QString marquee() const { return m_model.scene().marquee; }

    /// Inside a band's column, `y` skin pixels below the sliders' top.
    [[nodiscard]] static QPoint onBand(int band, int y) { return EQLayout::bandOrigin(band) + QPoint(7, y); }

    EqualizerModel m_equalizer{m_player, m_settings, m_folder.path("data")};
    Commands m_commands{m_model};
    EqualizerWindow m_window{m_model, m_equalizer, m_commands};
};

} // namespace

TEST_F(EqualizerWindowTest, TheHeldSliderFollowsThePointerAndSaysItsLevel) {
    press(onBand(3, 31));
    EXPECT_EQ(marquee(), QStringLiteral("EQ: 600Hz 0 dB"));
    moveTo(onBand(3, 5));
    EXPECT_EQ(marquee(), QStringLiteral("EQ: 600Hz +12 dB"));
    moveTo(onBand(6, 500)); // another band's column, far below
    EXPECT_EQ(marquee(), QStringLiteral("EQ: 600Hz -12 dB"));
    moveTo(onBand(3, 29)); // close to the middle
    EXPECT_EQ(m_player.eq(), EQState());
    moveTo(onBand(3, 5));
    release(onBand(6, 5));
    EXPECT_EQ(marquee(), QStringLiteral("Vantor"));
    EQState expected;
    expected.setBand(3, 12);
    EXPECT_EQ(m_player.eq(), expected);

    m_model.windows().setDoubleSize(true);
    press((EQLayout::preampOrigin + QPoint(7, 57)) * 2);
    EXPECT_EQ(m_player.eq().preamp(), -12);
    release({});
}

TEST_F(EqualizerWindowTest, RightClickWheelAndScaleSetLevels) {
    click(EQLayout::plus12);
    for (int band = 0; band < EQState::bandCount; ++band)
        EXPECT_EQ(m_player.eq().band(band), 12) << band;
    QContextMenuEvent menu(QContextMenuEvent::Mouse, onBand(2, 10), m_window.mapToGlobal(onBand(2, 10)));
    QCoreApplication::sendEvent(&m_window, &menu);
    EXPECT_EQ(m_player.eq().band(2), 0);
    EXPECT_EQ(m_player.eq().band(1), 12);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    const auto wheel = [&](QPoint at, int notches) {
        QWheelEvent event(at, m_window.mapToGlobal(at), {}, {0, 120 * notches}, {}, {}, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(&m_window, &event);
    };
    wheel(onBand(2, 60), -2);
    EXPECT_EQ(m_player.eq().band(2), -2);
    EXPECT_EQ(marquee(), QStringLiteral("EQ: 310Hz -2 dB"));
    const float volume = m_player.volume();
    wheel({100, 25}, 1); // the graph
    EXPECT_GT(m_player.volume(), volume);
    click(EQLayout::minus12);
    EXPECT_EQ(m_player.eq().band(9), -12);
    click(EQLayout::zero);
    EXPECT_EQ(m_player.eq(), EQState());
}

// The system sends the key with the middle of the window, where a band is.
TEST_F(EqualizerWindowTest, TheMenuKeyIsForWhatTabHasReached) {
    m_equalizer.setAllBands(12);
    const auto pressMenuKey = [&] {
        const QPoint middle = m_window.rect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, m_window.mapToGlobal(middle));
        QCoreApplication::sendEvent(&m_window, &event);
    };
    for (const std::optional<int> reached : {std::optional<int>(), {static_cast<int>(bandControl(9))}}) {
        m_window.focusControl(reached);
        pressMenuKey();
        QWidget *const menu = QApplication::activePopupWidget();
        ASSERT_TRUE(menu);
        if (reached)
            EXPECT_EQ(menu->pos(), m_window.mapToGlobal(m_window.control(*reached)->rect.center()));
        menu->close();
        EXPECT_EQ(m_player.eq().band(3), 12);
        EXPECT_EQ(m_player.eq().band(9), 12);
    }
}

TEST_F(EqualizerWindowTest, ButtonsSwitchAndShowIt) {
    const QImage before = m_window.picture();
    click(EQLayout::onButton);
    EXPECT_FALSE(m_player.eq().isEnabled());
    EXPECT_NE(m_window.picture(), before);
    click(EQLayout::autoButton);
    EXPECT_TRUE(m_equalizer.isAuto());
    click(EQLayout::presetsButton);
    QWidget *const menu = QApplication::activePopupWidget();
    ASSERT_TRUE(menu);
    for (QAction *action : menu->actions()) {
        if (action->text() == QStringLiteral("Full Bass && Treble"))
            action->trigger();
    }
    menu->close();
    EXPECT_EQ(m_player.eq().gains(), EQPreset::builtIn()[5].gains());
}

TEST_F(EqualizerWindowTest, APresetIsDeletedOnlyWhenThatIsConfirmed) {
    m_equalizer.savePreset(u"Mine & yours"_qs);
    const auto answer = [&](const QString &button) {
        click(EQLayout::presetsButton);
        QWidget *const menu = QApplication::activePopupWidget();
        for (QMenu *sub : menu->findChildren<QMenu *>()) {
            if (sub->title() == u"Delete Preset"_qs)
                sub->actions().constFirst()->trigger();
        }
        menu->close();
        EXPECT_EQ(m_equalizer.presets().size(), 1U) << "not before the answer";
        auto *const box = m_window.findChild<QMessageBox *>();
        ASSERT_TRUE(box);
        EXPECT_EQ(box->text(), u"Delete the preset “Mine & yours”?"_qs);
        for (QAbstractButton *each : box->buttons()) {
            if (each->text().remove(u'&') == button)
                each->click();
        }
        ASSERT_TRUE(waitFor([&] { return !m_window.findChild<QMessageBox *>(); }));
    };
    answer(u"Cancel"_qs);
    EXPECT_EQ(m_equalizer.presets().size(), 1U);
    answer(u"Delete"_qs);
    EXPECT_TRUE(m_equalizer.presets().empty());
}

TEST_F(EqualizerWindowTest, ItsKeysAreItsOwnAndTheOthersThePrograms) {
    QTest::keyClick(&m_window, Qt::Key_N);
    EXPECT_FALSE(m_player.eq().isEnabled());
    QTest::keyClick(&m_window, Qt::Key_0);
    QTest::keyClick(&m_window, Qt::Key_R);
    QTest::keyClick(&m_window, Qt::Key_R);
    EXPECT_EQ(m_player.eq().band(9), 1);
    EXPECT_EQ(m_player.eq().band(3), -2);
    EXPECT_EQ(m_player.repeatMode(), RepeatMode::off);
    QTest::keyClick(&m_window, Qt::Key_D, Qt::ControlModifier);
    EXPECT_TRUE(m_model.windows().isDoubleSize());
}

TEST_F(EqualizerWindowTest, EveryControlHasANameAndEverySliderARange) {
    for (const SkinControl &control : m_window.controls()) {
        EXPECT_FALSE(control.name.isEmpty()) << control.id;
        m_window.setControlValue(control.id, 99);
    }
    EXPECT_EQ(m_player.eq(), EQState(true, 12, std::vector<float>(10, 12)));
}

TEST_F(EqualizerWindowTest, ShadedItHasThePlayersSliders) {
    QTest::mouseDClick(&m_window, Qt::LeftButton, {}, QPoint(30, 6));
    ASSERT_EQ(m_window.size(), QSize(275, 14));
    press(MainSliders::Slider::eqShadeVolume.rect().topLeft());
    EXPECT_EQ(m_player.volume(), 0);
    release({});
    press(MainSliders::Slider::eqShadeBalance.rect().bottomRight());
    EXPECT_EQ(m_player.balance(), 1);
    EXPECT_EQ(marquee(), QStringLiteral("Balance: 100% Right"));
    release({});
    click(EQLayout::shadeButton);
    EXPECT_EQ(m_window.size(), QSize(275, 116));
    m_model.windows().setOpen(WindowKind::equalizer, true);
    click(EQLayout::closeButton);
    EXPECT_FALSE(m_model.windows().isOpen(WindowKind::equalizer));
    EXPECT_FALSE(m_window.isVisible());
}

TEST_F(EqualizerWindowTest, ItIsStillOpenAfterTheProgramHasEnded) {
    m_model.windows().setOpen(WindowKind::equalizer, true);
    QTimer::singleShot(0, &m_window, [this] { m_commands.trigger(Commands::Id::quit); });
    QApplication::exec();
    EXPECT_TRUE(m_model.windows().isOpen(WindowKind::equalizer));
}

// Else the next movement would set a band of the new track from where the pointer happens to be.
TEST_F(EqualizerWindowTest, ASliderLetsGoWhenAnotherTrackBringsItsSetting) {
    m_player.enqueue({Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60))});
    m_equalizer.setAuto(true);
    m_player.play(0);
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    press(onBand(0, 5));
    m_player.play(1);
    ASSERT_TRUE(waitFor([&] { return m_player.eq() == EQState(); }));
    moveTo(onBand(0, 50));
    EXPECT_EQ(m_player.eq(), EQState());
    EXPECT_FALSE(m_equalizer.hasTrackSetting());
    release({});
}
