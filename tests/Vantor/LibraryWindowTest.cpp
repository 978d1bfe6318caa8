#include "Vantor/Library/LibraryWindow.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "PlayerFixture.h"
#include "Vantor/Library/LibraryActions.h"
#include "Vantor/Library/LibraryGridView.h"
#include "Vantor/Library/LibraryOutput.h"
#include "Vantor/Library/TrackTable.h"
#include "tests/Support/MadeBackend.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
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
    m_browser.setBackend(rich);
    EXPECT_EQ(sections(), bare + QStringList({u"Playlists"_qs, u"Favourites"_qs}));
    EXPECT_TRUE(m_window->findChild<QLineEdit *>()->isVisible());
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
    const auto *const cross = field->findChildren<QAbstractButton *>().last();
    EXPECT_TRUE(waitFor([&] { return cross->property("opacity").toDouble() == 1; }));
    auto *const sidebar = m_window->findChild<QListWidget *>();
    sidebar->setFocus(); // which alone leads nowhere
    EXPECT_EQ(field->text(), u"Album 21"_qs);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(m_window->focusWidget(), shown<LibraryGridView>());
    EXPECT_TRUE(says(u"1 album"_qs)); // the status
    EXPECT_EQ(field->text(), u"Album 21"_qs);
    doubleClick(*shown<LibraryGridView>(), 0);
    ASSERT_TRUE(showsRows(4));
    EXPECT_EQ(field->text(), QString());
    EXPECT_TRUE(waitFor([&] { return cross->property("opacity").toDouble() == 0; }));
    QTest::keyClick(shown<TrackTable>(), Qt::Key_End);
    EXPECT_EQ(shown<TrackTable>()->currentIndex().row(), 3);
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

TEST_F(LibraryWindowTest, TheLastPlaceIsComeBackTo) {
    m_made->setOneOfEverything();
    open(m_made);
    ASSERT_TRUE(showsRows(72));
    press(*shown<LibraryGridView>(), 4, Qt::Key_Return);
    ASSERT_TRUE(showsRows(12));
    m_window.reset(); // the program ends
    open(m_made);
    EXPECT_TRUE(showsRows(12));
    EXPECT_TRUE(says(u"1974"_qs));
    QTest::keyClick(m_window.get(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(showsRows(72));
    m_window.reset();
    const auto other = std::make_shared<MadeBackend>(MadeBackend::Size{.artists = 3});
    other->id = u"other"_qs;
    open(other); // in which there is no such place
    EXPECT_TRUE(showsRows(3));
}

TEST_F(LibraryWindowTest, APlaylistIsEditedByKeys) {
    m_made->setOneOfEverything();
    open(m_made);
    choose(u"Playlists"_qs);
    ASSERT_TRUE(showsRows(3));
    press(*shown<LibraryGridView>(), 0, Qt::Key_Return);
    ASSERT_TRUE(showsRows(9));
    const auto title = [&](int row) {
        const LibraryTrack *const track = shown<TrackTable>()->tracks().track(row);
        return track ? track->title : QString();
    };
    ASSERT_EQ(title(1), u"Track 1 of 1"_qs);
    shown<TrackTable>()->setCurrentIndex(shown<TrackTable>()->model()->index(1, 1));
    QTest::keyClick(shown<TrackTable>(), Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(waitFor([&] { return title(2) == u"Track 1 of 1"_qs; }));
    EXPECT_TRUE(waitFor([&] { return shown<TrackTable>()->currentIndex().row() == 2; }));
    QTest::keyClick(shown<TrackTable>(), Qt::Key_Delete);
    ASSERT_TRUE(showsRows(8));
    EXPECT_EQ(m_made->requests.filter(u"move 1 to 2"_qs).size(), 1);

    // Sorted, rows have no place that they could be moved to.
    shown<TrackTable>()->tracks().sort(TrackListModel::titleColumn);
    QTest::keyClick(shown<TrackTable>(), Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(m_window.get(), Qt::Key_Left, Qt::AltModifier);
    ASSERT_TRUE(showsRows(3));
    press(*shown<LibraryGridView>(), 2, Qt::Key_Return); // may not be changed
    ASSERT_TRUE(showsRows(4));
    press(*shown<TrackTable>(), 1, Qt::Key_Delete);
    EXPECT_EQ(m_made->requests.filter(QRegularExpression(u"^(move|remove) "_qs)).size(), 2);
}

TEST_F(LibraryWindowTest, MenusOfferWhatTheSourceCanDo) {
    m_made->setOneOfEverything();
    open(m_made);
    LibraryActions actions(m_browser, {});
    const auto entries = [&](const LibraryItem &item) {
        QMenu menu(m_window.get());
        actions.fillMenu(menu, QList<LibraryItem>{item});
        QStringList names;
        for (const QAction *const entry : menu.actions()) {
            if (!entry->isSeparator())
                names.append(entry->text());
        }
        return names;
    };
    const LibraryItem album{m_made->allOfAlbums.first()};
    const LibraryItem fixed{m_made->allPlaylists.last()};
    const LibraryItem radio{m_made->allRadios.first()};
    const QStringList common{u"Play"_qs, u"Append"_qs};
    const QString add = u"Add to Playlist"_qs;
    const QString favorite = u"Add to Favourites"_qs;
    EXPECT_EQ(entries(album), common + QStringList({u"Open"_qs, add, favorite}));
    EXPECT_EQ(entries(fixed), common + QStringList({u"Open"_qs, add, favorite, u"Export…"_qs}));
    EXPECT_EQ(entries({m_made->allPlaylists.first()}).last(), u"Delete Playlist…"_qs);
    EXPECT_EQ(entries(radio), common + QStringList{favorite});
    m_made->offers = Capability::search;
    EXPECT_EQ(entries(album), common + QStringList{u"Open"_qs});

    m_made->offers = Capability::playlistEditing;
    ASSERT_TRUE(waitFor([&] { return m_browser.connected() != nullptr; }));
    QMenu menu(m_window.get());
    actions.fillMenu(menu, QList<LibraryItem>{{m_made->tracksOf.value(m_made->allOfAlbums[5].id).first()}});
    const auto targets = [&] { return menu.findChild<QMenu *>()->actions(); };
    ASSERT_TRUE(waitFor([&] { return targets().size() == 4; })); // a new one, a line, two that may be changed
    EXPECT_EQ(targets()[2]->text(), u"Long drives && short nights"_qs);
    targets()[2]->trigger();
    EXPECT_TRUE(waitFor([&] { return m_made->tracksOf.value(m_made->allPlaylists[0].id).size() == 10; }));
}

TEST_F(LibraryWindowTest, QuestionsAreAskedBeforePlaylistsAndStationsChange) {
    m_made->setOneOfEverything();
    open(m_made);
    ASSERT_TRUE(showsRows(72));
    choose(u"Radios"_qs);
    const auto click = [&](QWidget *in, const QString &text) {
        for (QAbstractButton *const button : in->findChildren<QAbstractButton *>()) {
            if (button->isVisible() && button->text() == text)
                return button->click();
        }
        ADD_FAILURE() << text.toStdString();
    };
    click(m_window.get(), u"Add Radio Station…"_qs);
    auto *dialog = m_window->findChild<QDialog *>();
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit *>(u"url"_qs)->setText(u"ftp://example.org/x"_qs);
    click(dialog, u"Add"_qs);
    EXPECT_TRUE(says(u"Enter an http or https stream URL."_qs));
    dialog->findChild<QLineEdit *>(u"url"_qs)->setText(u" https://example.org/x "_qs);
    click(dialog, u"Add"_qs);
    EXPECT_TRUE(showsRows(4));
    EXPECT_EQ(m_made->allRadios.last().name, u"example.org"_qs);

    choose(u"Playlists"_qs);
    ASSERT_TRUE(showsRows(3));
    click(m_window.get(), u"New Playlist…"_qs);
    auto *const name = m_window->findChild<QInputDialog *>();
    ASSERT_NE(name, nullptr);
    name->setTextValue(u" Mine "_qs);
    name->accept();
    EXPECT_TRUE(says(u"Mine"_qs)); // on its page
    EXPECT_TRUE(waitFor([&] { return m_made->allPlaylists.size() == 4; }));

    QMenu menu(m_window.get());
    LibraryActions actions(m_browser, {});
    actions.fillMenu(menu, QList<LibraryItem>{{m_made->allPlaylists[0]}});
    for (QAction *const entry : menu.actions()) {
        if (entry->text() == u"Delete Playlist…"_qs)
            entry->trigger();
    }
    auto *const question = m_window->findChild<QMessageBox *>();
    ASSERT_NE(question, nullptr);
    EXPECT_EQ(m_made->allPlaylists.size(), 4);
    click(question, u"Delete"_qs);
    EXPECT_TRUE(waitFor([&] { return m_made->allPlaylists.size() == 3; }));
}

TEST_F(LibraryWindowTest, AHeartIsClickedAndNothingElse) {
    m_made->setOneOfEverything();
    open(m_made);
    ASSERT_TRUE(showsRows(72));
    auto &grid = *shown<LibraryGridView>();
    const QRect tile = grid.visualRect(grid.model()->index(0, 0));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, tile.topRight() + QPoint(-26, 26));
    ASSERT_TRUE(waitFor([&] { return grid.items().item(0)->isFavorite() == true; }));
    EXPECT_TRUE(grid.selected().isEmpty());
    EXPECT_EQ(m_made->favoritesSet.size(), 1);
    choose(u"Favourites"_qs);
    ASSERT_TRUE(showsRows(2));
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
    m_model.imports().insertItems({{MediaKind::track, u"c"_qs}}, 1); // nobody to ask
    m_model.imports().setLibrary([&](const QList<MediaID> &, const auto &take) { answer = take; });
    m_model.imports().insertItems({{MediaKind::track, u"c"_qs}}, 1);
    ASSERT_TRUE(answer);
    m_player.enqueue({Track::file(file("a.wav"))}); // the queue changes meanwhile
    answer({found});
    ASSERT_EQ(m_player.queue().count(), 4);
    EXPECT_EQ(m_player.queue().tracks()[1].source, found.source);
    EXPECT_EQ(m_player.state(), PlaybackState::stopped);
}
