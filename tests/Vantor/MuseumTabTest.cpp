#include "Vantor/Museum/MuseumTab.h"

#include "PlayerFixture.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "SkinBrowser/ThumbnailCache.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Museum/MuseumGridView.h"
#include "Vantor/Museum/MuseumSetup.h"
#include "Vantor/Windows/SkinBrowserWindow.h"
#include "tests/SkinLibrary/LibraryFixture.h"
#include "tests/Support/FakeMuseum/FakeMuseum.h"
#include "tests/Support/TestCertificate.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace vantor;
using namespace vantor::test;

using Fault = FakeMuseum::Fault;
using Kind = FakeMuseum::Kind;

namespace {

/// The skin browser at a museum on this machine.
class MuseumTabTest : public PlayerFixture {
  protected:
    MuseumTabTest() {
        m_museum.tls = m_certificate.serverConfiguration();
        EXPECT_TRUE(m_museum.open());
        QDir().mkpath(m_folder.path("skins"));
    }

    void chooseFolder() {
        m_library.setFolder(QFileInfo(m_folder.path("skins")).canonicalFilePath());
        ASSERT_TRUE(waitFor([this] { return m_library.summary().has_value() && !m_library.isIndexing(); }));
    }
    void open() {
        m_window.emplace(m_model, m_library, m_switcher, m_thumbnails, m_settings);
        m_window->addMuseum({.endpoint = m_museum.url(),
                             .authorities = {m_certificate.certificate()},
                             .cacheFolder = m_folder.path("cache"),
                             .version = u"1"_qs});
        m_window->bringToFront({});
        auto *const tabs = m_window->findChild<QTabWidget *>();
        EXPECT_EQ(tabs->currentIndex(), m_tab ? 1 : 0); // as it was left
        tabs->setCurrentIndex(1);
        m_tab = m_window->findChild<MuseumTab *>();
        m_grid = m_tab->findChild<MuseumGridView *>();
        m_search = m_tab->findChild<QLineEdit *>();
        m_grid->setFocus();
    }
    [[nodiscard]] QString name(int row) const { return m_grid->model()->index(row, 0).data().toString(); }
    [[nodiscard]] QString spoken(int row) const {
        return m_grid->model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
    }
    [[nodiscard]] bool shows(int row, const QString &expected) {
        return waitFor([&] { return row < m_grid->model()->rowCount() && name(row) == expected; });
    }
    [[nodiscard]] bool says(const QString &text) {
        return waitFor([&] {
            const auto labels = m_tab->findChildren<QLabel *>();
            return std::ranges::any_of(
                labels, [&](const QLabel *label) { return label->isVisible() && label->text() == text; });
        });
    }
    [[nodiscard]] QPushButton *button(const QString &text) {
        const auto buttons = m_tab->findChildren<QPushButton *>();
        const auto found = std::ranges::find_if(buttons, [&](const QPushButton *candidate) {
            return candidate->isVisible() && candidate->text() == text;
        });
        return found == buttons.end() ? nullptr : *found;
    }
    [[nodiscard]] bool wears(const char *file) {
        const QString path =
            QFileInfo(m_folder.path("skins")).canonicalFilePath() + u'/' + QString::fromUtf8(file);
        return waitFor([&] { return m_model.skinUrl() == QUrl::fromLocalFile(path); });
    }

    const TestCertificate m_certificate{u"localhost"_qs};
    FakeMuseum m_museum{
        {.count = 130,
         .name = [](int number) { return QStringLiteral("Skin %1").arg(number); },
         .archive = [](int number) { return number == 3 ? QByteArray("no archive") : soundSkin(number); }}};
    SkinLibraryModel m_library{file("index/index.sqlite")};
    SkinSwitcher m_switcher{m_model, m_library};
    ThumbnailCache m_thumbnails{m_folder.path("thumbnails")};
    std::optional<SkinBrowserWindow> m_window;
    MuseumTab *m_tab = nullptr;
    MuseumGridView *m_grid = nullptr;
    QLineEdit *m_search = nullptr;
};

} // namespace

TEST_F(MuseumTabTest, TriesSkinsOnAndComesBack) {
    chooseFolder();
    open();
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    EXPECT_TRUE(says(u"Downloads go to the Museum folder inside the skins folder."_qs));
    QTest::keyClick(m_grid, Qt::Key_Return);
    EXPECT_TRUE(wears("Museum/Skin 0.wsz"));
    EXPECT_TRUE(says(u"You are wearing this skin."_qs));
    QTest::keyClick(m_grid, Qt::Key_Right);
    QTest::keyClick(m_grid, Qt::Key_Return);
    EXPECT_TRUE(wears("Museum/Skin 1.wsz"));
    EXPECT_TRUE(waitFor([&] { return m_library.counts().skins == 2; })); // indexed as well
    EXPECT_TRUE(waitFor([&] { return m_switcher.worn().has_value(); }));
    QTest::keyClick(m_grid, Qt::Key_Backspace);
    EXPECT_TRUE(wears("Museum/Skin 0.wsz"));
    QTest::keyClick(m_grid, Qt::Key_Backspace);
    EXPECT_TRUE(waitFor([&] { return m_model.skinUrl().isEmpty(); }));
    EXPECT_FALSE(button(u"Back to the Skin Before"_qs)->isEnabled());
    const auto archives = m_museum.count(Kind::archive);
    QTest::keyClick(m_grid, Qt::Key_Return); // which is there now
    EXPECT_TRUE(wears("Museum/Skin 1.wsz"));
    EXPECT_EQ(m_museum.count(Kind::archive), archives);
}

TEST_F(MuseumTabTest, KnowsTheSkinsThatAreInTheLibraryUnderWhateverName) {
    writeFile("skins/mine.wsz", soundSkin(1));
    chooseFolder();
    ASSERT_TRUE(waitFor([&] { return m_library.counts().skins == 1; }));
    open();
    ASSERT_TRUE(shows(1, u"Skin 1"_qs));
    m_grid->setCurrentIndex(m_grid->model()->index(1, 0));
    EXPECT_TRUE(says(u"In your skins folder."_qs));
    EXPECT_FALSE(button(u"Download"_qs)->isEnabled());
    button(u"Wear"_qs)->click();
    EXPECT_TRUE(wears("mine.wsz"));
    EXPECT_EQ(m_museum.count(Kind::archive), 0);
    QFile::remove(m_folder.path("skins/mine.wsz"));
    EXPECT_TRUE(waitFor([&] { return button(u"Download"_qs)->isEnabled(); }));
}

TEST_F(MuseumTabTest, SearchesWhenTheKeysRest) {
    chooseFolder();
    open();
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    EXPECT_TRUE(says(u"117 skins"_qs));
    const auto asked = m_museum.count(Kind::page);
    QTest::keyClicks(m_grid, u"skin 12"_qs); // letters go to the search
    EXPECT_TRUE(shows(0, u"Skin 12"_qs));
    EXPECT_EQ(m_museum.count(Kind::page), asked + 1);
    QTest::keyClicks(m_search, u"xyz"_qs);
    QTest::keyClick(m_search, Qt::Key_Return); // does not wait
    EXPECT_TRUE(says(u"The museum has no skin for “skin 12xyz”."_qs));
    QTest::keyClick(m_search, Qt::Key_Escape);
    EXPECT_TRUE(shows(0, u"Skin 0"_qs));
    EXPECT_EQ(m_grid->model()->rowCount(), 117);
    m_model.preferences().setShowsNSFWMuseumSkins(true);
    EXPECT_TRUE(waitFor([&] { return m_grid->model()->rowCount() == 130; }));
}

TEST_F(MuseumTabTest, SaysInPlaceWhatWentWrong) {
    m_museum.faults[Kind::page] = Fault::fails;
    open();
    EXPECT_TRUE(says(u"The Winamp Skin Museum returned an error (HTTP 500)."_qs));
    m_museum.faults.clear();
    button(u"Try Again"_qs)->click();
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    EXPECT_TRUE(says(u"Choose a skins folder to download skins into."_qs));
    EXPECT_TRUE(button(u"Choose Folder…"_qs));
    QTest::keyClick(m_grid, Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { // above the grid, and of the skin
        const auto labels = m_tab->findChildren<QLabel *>();
        return std::ranges::count_if(labels, [](const QLabel *label) {
                   return label->isVisible() &&
                          label->text() == u"Choose a skins folder to download skins into."_qs;
               }) == 2;
    }));
    EXPECT_EQ(m_museum.count(Kind::archive), 0);
    chooseFolder();
    EXPECT_FALSE(button(u"Choose Folder…"_qs));

    m_museum.faults[Kind::archive] = Fault::wrongContent;
    m_grid->setCurrentIndex(m_grid->model()->index(1, 0));
    button(u"Download"_qs)->click();
    EXPECT_TRUE(says(u"The download was corrupted."_qs));
    m_museum.faults.clear();
    m_grid->setCurrentIndex(m_grid->model()->index(3, 0)); // is no skin
    QTest::keyClick(m_grid, Qt::Key_Return);
    EXPECT_TRUE(says(u"Unreadable archive: Not a zip archive"_qs));
    EXPECT_TRUE(m_model.skinUrl().isEmpty());
    EXPECT_EQ(spoken(3), u"Skin 3, Unreadable archive: Not a zip archive"_qs);
    m_museum.faults[Kind::archive] = Fault::hangs;
    m_grid->setCurrentIndex(m_grid->model()->index(4, 0));
    QTest::keyClick(m_grid, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return button(u"Cancel"_qs) != nullptr; }));
    EXPECT_EQ(spoken(4), u"Skin 4, downloading"_qs);
    button(u"Cancel"_qs)->click();
    EXPECT_TRUE(waitFor([&] { return button(u"Download"_qs) != nullptr; }));
    EXPECT_EQ(spoken(4), u"Skin 4"_qs);
}

TEST_F(MuseumTabTest, ShowsWhatWasSeenBeforeWithoutTheMuseum) {
    chooseFolder();
    open();
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    m_window.reset();
    m_museum.goOffline();
    open();
    EXPECT_TRUE(says(u"Offline, showing cached results"_qs));
    EXPECT_EQ(name(5), u"Skin 5"_qs);
    QTest::keyClick(m_grid, Qt::Key_Return);
    EXPECT_TRUE(says(u"The Winamp Skin Museum can't be reached. Check your internet connection."_qs));
    ASSERT_TRUE(m_museum.open());
    const auto asked = m_museum.count(Kind::page);
    button(u"Try Again"_qs)->click();
    EXPECT_TRUE(waitFor([&] { return m_museum.count(Kind::page) > asked; }));
    EXPECT_TRUE(waitFor([&] { return !button(u"Try Again"_qs); }));
}

TEST_F(MuseumTabTest, TheLastOfManySkinsThatWereChosenIsWorn) {
    chooseFolder();
    m_museum.latency = 30;
    open();
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(m_grid, Qt::Key_Return);
        QTest::keyClick(m_grid, Qt::Key_Right);
    }
    EXPECT_TRUE(wears("Museum/Skin 2.wsz"));
    EXPECT_TRUE(waitFor([&] { return m_library.counts().skins == 3; })); // the others are there all the same
    EXPECT_TRUE(wears("Museum/Skin 2.wsz"));
}

TEST_F(MuseumTabTest, NothingIsWornThatIsNoLongerAskedFor) {
    const QUrl mine = writeFile("skins/mine.wsz", soundSkin(200));
    const auto choose = [&](int row) {
        m_grid->setCurrentIndex(m_grid->model()->index(row, 0));
        QTest::keyClick(m_grid, Qt::Key_Return);
    };
    const auto hasSkins = [&](int count) {
        return waitFor([&] { return m_library.counts().skins == count; });
    };
    chooseFolder();
    open();
    ASSERT_TRUE(shows(0, u"Skin 0"_qs));
    m_museum.faults[Kind::archive] = Fault::wrongContent;
    choose(0);
    ASSERT_TRUE(says(u"The download was corrupted."_qs));
    m_museum.faults.clear();
    button(u"Download"_qs)->click(); // only that, now
    EXPECT_TRUE(hasSkins(2));
    EXPECT_TRUE(m_model.skinUrl().isEmpty());

    m_museum.latency = 200;
    choose(1);
    m_model.wear(mine); // elsewhere
    EXPECT_TRUE(wears("mine.wsz"));
    EXPECT_TRUE(hasSkins(3));
    EXPECT_TRUE(wears("mine.wsz"));

    choose(0);
    ASSERT_TRUE(wears("Museum/Skin 0.wsz"));
    QTest::keyClick(m_grid, Qt::Key_Backspace);
    choose(1); // before the one before is back
    ASSERT_TRUE(wears("Museum/Skin 1.wsz"));
    for (const char *before : {"Museum/Skin 0.wsz", "mine.wsz"}) {
        QTest::keyClick(m_grid, Qt::Key_Backspace);
        EXPECT_TRUE(wears(before));
    }
}

TEST_F(MuseumTabTest, AMuseumElsewhereIsNamedByTheEnvironmentOrTheSettings) {
    const QString museum = u"https://api.webampskins.org/graphql"_qs;
    const auto chosen = [&](const QByteArray &variable, const QString &setting) {
        qputenv("VANTOR_MUSEUM_ENDPOINT", variable);
        m_settings.setValue(u"skins.museum.endpoint"_qs, setting);
        const QString address = MuseumSetup::chosen(m_settings).endpoint.toString();
        qunsetenv("VANTOR_MUSEUM_ENDPOINT");
        return address;
    };
    EXPECT_EQ(chosen({}, {}), museum);
    EXPECT_EQ(chosen({}, u"https://mirror/graphql"_qs), u"https://mirror/graphql"_qs);
    EXPECT_EQ(chosen("https://test/", u"https://mirror/graphql"_qs), u"https://test/"_qs);
    EXPECT_EQ(chosen("http://test/", {}), museum);
    EXPECT_EQ(chosen("https:///graphql", {}), museum);
    const QString file = m_folder.write("ca.pem", m_certificate.certificate().toPem());
    m_settings.setValue(u"skins.museum.caFile"_qs, file);
    EXPECT_EQ(MuseumSetup::chosen(m_settings).authorities, QList{m_certificate.certificate()});
}
