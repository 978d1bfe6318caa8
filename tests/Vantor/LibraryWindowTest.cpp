#include "Vantor/Library/LibraryWindow.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "PlayerFixture.h"
#include "Vantor/Library/LibraryGridView.h"
#include "Vantor/Library/LibraryOutput.h"
#include "Vantor/Library/TrackTable.h"
#include "tests/Support/MadeBackend.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>

using namespace vantor;

namespace {

using Capability = MusicBackendCapability;

class LibraryWindowTest : public PlayerFixture {
  protected:
    void open(const std::shared_ptr<MusicBackend> &backend) {
        m_artwork.setBackend(backend);
        m_browser.setBackend(backend);
        m_window =
            std::make_unique<LibraryWindow>(m_browser, m_artwork, m_settings, LibraryActions::FindFiles());
        m_window->resize(800, 500);
        m_window->show();
    }
    [[nodiscard]] QStringList sections() const {
        const auto *const list = m_window->findChild<QListWidget *>();
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            names.append(list->item(row)->text());
        return names;
    }
    template <class View>
    [[nodiscard]] View *shown() const {
        for (View *const view : m_window->findChildren<View *>()) {
            if (view->isVisible())
                return view;
        }
        return nullptr;
    }
    [[nodiscard]] bool showsRows(int rows) {
        return waitFor([&] {
            const auto *const view = shown<QAbstractItemView>();
            const auto *const grid = shown<LibraryGridView>();
            const auto *const table = shown<TrackTable>();
            return view && ((grid && grid->model()->rowCount() == rows) ||
                            (table && table->model()->rowCount() == rows));
        });
    }
    [[nodiscard]] bool says(const QString &text) {
        return waitFor([&] {
            return std::ranges::any_of(m_window->findChildren<QLabel *>(), [&](const QLabel *label) {
                return label->isVisible() && label->text().contains(text);
            });
        });
    }
    void choose(const QString &section) const {
        auto *const list = m_window->findChild<QListWidget *>();
        list->setCurrentItem(list->findItems(section, Qt::MatchExactly).value(0));
    }
    static void press(QAbstractItemView &view, int row, Qt::Key key) {
        view.setCurrentIndex(view.model()->index(row, view.model()->columnCount() > 1 ? 1 : 0));
        QTest::keyClick(&view, key);
    }
    void doubleClick(QAbstractItemView &view, int row) const {
        const QPoint at =
            view.visualRect(view.model()->index(row, view.model()->columnCount() > 1 ? 1 : 0)).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at);
    }

    std::shared_ptr<MadeBackend> m_made = std::make_shared<MadeBackend>(
        MadeBackend::Size{.artists = 12, .albumsPerArtist = 2, .tracksPerAlbum = 4});
    ArtworkCache m_artwork{m_folder.path("artwork"), {}};
    LibraryBrowser m_browser;
    std::unique_ptr<LibraryWindow> m_window;
};

} // namespace

TEST_F(LibraryWindowTest, WhatTheSourceLacksIsNotThere) {
    m_made->offers = {};
    open(m_made);
    const QStringList bare{u"Artists"_qs, u"Albums"_qs, u"Tracks"_qs};
    EXPECT_EQ(sections(), bare);
    EXPECT_FALSE(m_window->findChild<QLineEdit *>()->isVisible());

    const auto rich = std::make_shared<MadeBackend>();
    rich->offers = Capability::search | Capability::playlists | Capability::favorites;
    OutputDevice kitchen;
    kitchen.id = {u"k"_qs};
    kitchen.name = u"Kitchen"_qs;
    rich->speakers = {OutputDevice::thisMac(), kitchen};
    m_browser.setBackend(rich);
    EXPECT_EQ(sections(), bare + QStringList({u"Playlists"_qs, u"Favourites"_qs}));
    EXPECT_TRUE(m_window->findChild<QLineEdit *>()->isVisible());
    const auto *const outputs = m_window->findChild<QComboBox *>();
    EXPECT_TRUE(waitFor([&] { return outputs->isVisible() && outputs->count() == 2; }));
}

TEST_F(LibraryWindowTest, ATrackOfAnAlbumPlaysTheAlbumFromThere) {
    open(m_made);
    ASSERT_TRUE(showsRows(24));
    doubleClick(*shown<LibraryGridView>(), 3);
    ASSERT_TRUE(showsRows(4));
    EXPECT_TRUE(says(u"4 tracks"_qs));
    doubleClick(*shown<TrackTable>(), 2);
    ASSERT_TRUE(waitFor([&] { return m_made->played.size() == 1; }));
    const PlayRequest request = m_made->played.first().first;
    EXPECT_EQ(request.items.size(), 4);
    EXPECT_EQ(request.items.value(2).rawValue, u"3/2"_qs);
    EXPECT_EQ(request.mode, PlayMode::replace(2));

    QTest::keyClick(m_window.get(), Qt::Key_Left, Qt::AltModifier);
    ASSERT_TRUE(showsRows(24));
    QTest::keyClick(m_window.get(), Qt::Key_Right, Qt::AltModifier);
    ASSERT_TRUE(showsRows(4));
}

TEST_F(LibraryWindowTest, ItemsAreReachedByTheKeyboardAlone) {
    open(m_made);
    choose(u"Artists"_qs);
    ASSERT_TRUE(showsRows(12));
    press(*shown<LibraryGridView>(), 5, Qt::Key_Return);
    ASSERT_TRUE(showsRows(2));
    EXPECT_TRUE(says(u"Artist 5"_qs));
    press(*shown<LibraryGridView>(), 1, Qt::Key_Return);
    ASSERT_TRUE(showsRows(4));
    press(*shown<TrackTable>(), 0, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return m_made->played.size() == 1; }));
    EXPECT_EQ(m_made->played.first().first.items.first().rawValue, u"11/0"_qs);
    press(*shown<TrackTable>(), 0, Qt::Key_Backspace);
    ASSERT_TRUE(showsRows(2));
}

TEST_F(LibraryWindowTest, ASearchIsAPlaceThatIsLeftAndComeBackTo) {
    open(m_made);
    ASSERT_TRUE(showsRows(24));
    auto *const field = m_window->findChild<QLineEdit *>();
    QTest::keyClicks(field, u"Album 21"_qs);
    ASSERT_TRUE(showsRows(1));
    doubleClick(*shown<LibraryGridView>(), 0);
    ASSERT_TRUE(showsRows(4));
    EXPECT_EQ(field->text(), QString());
    QTest::keyClick(m_window.get(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(field->text(), u"Album 21"_qs);
    ASSERT_TRUE(showsRows(1));
    field->setText(u"no such thing"_qs);
    EXPECT_TRUE(says(u"Nothing found"_qs));
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(showsRows(24));
}

TEST_F(LibraryWindowTest, AnEmptyWindowSaysWhatToDo) {
    class Unset : public MadeBackend {
      public:
        QCoro::Task<> connect() override {
            co_await std::suspend_never();
            throw MusicBackendError::notConfigured(u"Choose a music folder under Settings › Library."_qs);
        }
    };
    open(std::make_shared<Unset>());
    ASSERT_TRUE(says(u"Choose a music folder under Settings › Library."_qs));
    const QSignalSpy asked(m_window.get(), &LibraryWindow::settingsAsked);
    const auto buttons = m_window->findChildren<QPushButton *>();
    const auto settings = std::ranges::find_if(buttons, [](const QPushButton *button) {
        return button->isVisible() && button->text() == u"Open Settings…"_qs;
    });
    ASSERT_NE(settings, buttons.end());
    (*settings)->click();
    EXPECT_EQ(asked.size(), 1);

    const auto empty = std::make_shared<MadeBackend>();
    m_browser.setBackend(empty);
    EXPECT_TRUE(says(u"No music yet"_qs));
    empty->failure = u"The folder is gone."_qs;
    choose(u"Artists"_qs);
    EXPECT_TRUE(says(u"The folder is gone."_qs));
}

TEST_F(LibraryWindowTest, SizeAndSectionAreRemembered) {
    open(m_made);
    choose(u"Tracks"_qs);
    m_window->resize(700, 440);
    m_window->close();
    open(m_made);
    EXPECT_EQ(m_settings.value(u"library/section"_qs).toString(), u"tracks"_qs);
    EXPECT_TRUE(waitFor([&] { return shown<TrackTable>() != nullptr; }));
}

TEST_F(LibraryWindowTest, ALargeLibraryIsThereAtOnce) {
    m_made->setSize({.artists = 1000, .albumsPerArtist = 10, .tracksPerAlbum = 10});
    m_settings.setValue(u"library/section"_qs, u"tracks"_qs);
    QElapsedTimer timer;
    timer.start();
    open(m_made);
    ASSERT_TRUE(waitFor([&] {
        const auto *const table = shown<TrackTable>();
        return table && table->model()->rowCount() >= 100;
    }));
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
    EXPECT_LT(timer.elapsed(), 1500); // a third of a second where nothing else runs
}

TEST_F(PlayerFixture, TheOutputOfTheLibraryReplacesAndAppends) {
    LibraryOutput output(m_model);
    std::vector<Track> tracks;
    for (const char *const name : {"a.wav", "b.wav", "c.wav"})
        tracks.push_back(Track::file(writeTone(name, 30)));
    output.play(tracks, PlayMode::replace(1));
    EXPECT_EQ(m_player.queue().currentIndex(), 1);
    EXPECT_EQ(m_player.queue().count(), 3);
    output.play({tracks[0]}, PlayMode::append());
    EXPECT_EQ(m_player.queue().count(), 4);
    EXPECT_EQ(m_player.queue().currentIndex(), 1);
    output.transport(TransportCommand::setVolume(0.25));
    EXPECT_FLOAT_EQ(m_player.volume(), 0.25F);
}

TEST_F(PlayerFixture, ItemsOfTheLibraryGoInFrontOfTheRowTheyWereDroppedOn) {
    m_player.enqueue({Track::file(writeTone("a.wav", 30)), Track::file(writeTone("b.wav", 30))});
    const Track found = Track::file(writeTone("c.wav", 30));
    std::function<void(const std::vector<Track> &)> answer;
    m_model.insertItems({{MediaKind::track, u"c"_qs}}, 1); // nobody to ask
    m_model.setLibrary([&](const QList<MediaID> &, const auto &take) { answer = take; });
    m_model.insertItems({{MediaKind::track, u"c"_qs}}, 1);
    ASSERT_TRUE(answer);
    m_player.enqueue({Track::file(file("a.wav"))}); // the queue changes meanwhile
    answer({found});
    ASSERT_EQ(m_player.queue().count(), 4);
    EXPECT_EQ(m_player.queue().tracks()[1].source, found.source);
    EXPECT_EQ(m_player.state(), PlaybackState::stopped);
}
