#include "Vantor/Windows/SkinBrowserWindow.h"

#include "PlayerFixture.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "tests/SkinLibrary/LibraryFixture.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

using namespace vantor;
using namespace vantor::test;

namespace {

/// A folder of skins with its library, and a browser of it.
class SkinBrowserWindowTest : public PlayerFixture {
  protected:
    // Where the Trash is.
    SkinBrowserWindowTest() {
        QDir().mkpath(m_folder.path("data")); // or Qt would take the current folder instead
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path("data")));
    }
    ~SkinBrowserWindowTest() override { qunsetenv("XDG_DATA_HOME"); }

    /// "Amber", "Birch", "Cedar" … in this order; the third lacks sheets and the fifth is no skin at all.
    void writeSkins(int count) {
        constexpr std::array names{"Amber", "Birch", "Cedar", "Dune", "Ember", "Fjord"};
        for (int i = 0; i < count; ++i) {
            QByteArray bytes = soundSkin(i, i == 3 ? "Made on a beach. " : "Read me. ");
            if (i == 2)
                bytes = zipFile({{"main.bmp", solidBMP(2, 2, {1, 2, 3})}});
            if (i == 4)
                bytes = "no archive";
            writeFile(("skins/" + QByteArray(names.at(static_cast<std::size_t>(i))) + ".wsz").constData(),
                      bytes);
        }
    }
    void index() {
        m_library.setFolder(QFileInfo(m_folder.path("skins")).canonicalFilePath());
        ASSERT_TRUE(waitFor([this] { return m_library.summary().has_value() && !m_library.isIndexing(); }));
    }
    void open() {
        m_window.emplace(m_model, m_library, m_switcher, m_thumbnails, m_settings);
        m_window->bringToFront({});
        m_grid = m_window->findChild<SkinGridView *>();
        m_search = m_window->findChild<QLineEdit *>();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QStringList shown() const {
        QStringList names;
        for (int row = 0; row < m_grid->model()->rowCount(); ++row)
            names.append(m_grid->model()->index(row, 0).data().toString());
        return names;
    }
    [[nodiscard]] bool shows(const QStringList &names) {
        return waitFor([&] { return shown() == names; });
    }
    [[nodiscard]] bool says(const QString &text) {
        return waitFor([&] {
            const auto labels = m_window->findChildren<QLabel *>();
            return std::ranges::any_of(
                labels, [&](const QLabel *label) { return label->isVisible() && label->text() == text; });
        });
    }
    [[nodiscard]] QPushButton *button(const QString &text) {
        const auto buttons = m_window->findChildren<QPushButton *>();
        const auto found = std::ranges::find_if(buttons, [&](const QPushButton *candidate) {
            return candidate->isVisible() && candidate->text() == text;
        });
        return found == buttons.end() ? nullptr : *found;
    }
    void select(int row) { m_grid->setCurrentIndex(m_grid->model()->index(row, 0)); }
    /// The box that asks something, once it is there.
    [[nodiscard]] QMessageBox *question() {
        const auto find = [this] { return m_window->findChild<QMessageBox *>(); };
        return waitFor([&] { return find() != nullptr; }) ? find() : nullptr;
    }
    void answer(QMessageBox *box, const QString &text) {
        for (QAbstractButton *const candidate : box->buttons()) {
            if (candidate->text() == text)
                return candidate->click();
        }
        FAIL() << text.toStdString();
    }
    [[nodiscard]] QUrl skin(const char *name) const {
        return QUrl::fromLocalFile(QFileInfo(m_folder.path(name)).canonicalFilePath());
    }

    SkinLibraryModel m_library{file("index/index.sqlite")};
    SkinSwitcher m_switcher{m_model, m_library};
    ThumbnailCache m_thumbnails{m_folder.path("thumbnails")};
    std::optional<SkinBrowserWindow> m_window;
    SkinGridView *m_grid = nullptr;
    QLineEdit *m_search = nullptr;
};

} // namespace

TEST_F(SkinBrowserWindowTest, FindsWhatIsTypedAndFiltersByState) {
    writeSkins(6);
    index();
    open();
    const QStringList all{u"Amber"_qs, u"Birch"_qs, u"Cedar"_qs, u"Dune"_qs, u"Ember"_qs, u"Fjord"_qs};
    ASSERT_TRUE(shows(all));
    QTest::keyClicks(m_grid, u"bea"_qs); // letters go to the search
    EXPECT_EQ(m_search->text(), u"bea"_qs);
    EXPECT_TRUE(shows({u"Dune"_qs})); // of its read-me
    EXPECT_TRUE(says(u"1 of 6 skins"_qs));
    QTest::keyClicks(m_search, u"xyz"_qs);
    EXPECT_TRUE(says(u"Nothing found"_qs));
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(shows(all));

    const auto filters = m_window->findChildren<QToolButton *>();
    const auto filter = [&](const QString &text) {
        const auto found = std::ranges::find(filters, text, &QToolButton::text);
        ASSERT_NE(found, filters.end()) << text.toStdString();
        (*found)->click();
    };
    filter(u"OK  4"_qs);
    EXPECT_TRUE(shows({u"Cedar"_qs, u"Ember"_qs}));
    filter(u"Partial  1"_qs);
    EXPECT_TRUE(shows({u"Ember"_qs}));
    m_window->close();
    m_window.reset();
    open(); // and remembers it
    EXPECT_TRUE(shows({u"Ember"_qs}));
}

TEST_F(SkinBrowserWindowTest, WearsASkinAndTellsAboutIt) {
    writeSkins(6);
    index();
    open();
    ASSERT_TRUE(waitFor([&] { return shown().size() == 6; }));
    select(2);
    auto *const details = m_window->findChild<SkinDetails *>();
    EXPECT_TRUE(waitFor([&] { return details->toPlainText().contains(u"Cedar.wsz"_qs); }));
    EXPECT_TRUE(details->toPlainText().contains(u"stand-ins"_qs));
    QTest::keyClick(m_grid, Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return m_model.skinUrl() == skin("skins/Cedar.wsz"); }));
    EXPECT_TRUE(waitFor([&] { return m_switcher.worn().has_value(); }));
    const QPoint fourth = m_grid->visualRect(m_grid->model()->index(3, 0)).center();
    QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {}, fourth);
    QTest::mouseDClick(m_grid->viewport(), Qt::LeftButton, {}, fourth);
    EXPECT_TRUE(waitFor([&] { return m_model.skinUrl() == skin("skins/Dune.wsz"); }));
    select(4);
    EXPECT_TRUE(waitFor([&] { return details->toPlainText().contains(u"This skin cannot be read"_qs); }));
}

TEST_F(SkinBrowserWindowTest, StepsThroughTheFolderAndPassesOverWhatCannotBeWorn) {
    using Step = SkinSwitcher::Step;
    writeSkins(6);
    index();
    // Since it was indexed, one has been spoilt.
    const QUrl spoilt = writeFile("skins/Birch.wsz", "not any more");
    QSignalSpy refused(&m_model, &PlayerModel::skinRefused);
    const std::pair<Step, const char *> steps[] = {
        {Step::next, "skins/Amber.wsz"},                                          // from the default skin
        {Step::next, "skins/Cedar.wsz"},                                          // past the spoilt one
        {Step::previous, "skins/Amber.wsz"}, {Step::previous, "skins/Fjord.wsz"}, // around
        {Step::previous, "skins/Dune.wsz"}, // past the one that never was one
    };
    for (const auto &[step, expected] : steps) {
        m_switcher.step(step);
        EXPECT_TRUE(waitFor([&] { return m_model.skinUrl() == skin(expected); }))
            << expected << " but " << m_model.skinUrl().toString().toStdString();
    }
    EXPECT_FALSE(refused.isEmpty());
    for (int i = 0; i < 3; ++i)
        m_switcher.step(Step::next); // faster than they load
    EXPECT_TRUE(waitFor([&] { return m_model.skinUrl() == skin("skins/Cedar.wsz"); }));
    m_switcher.step(Step::random);
    EXPECT_TRUE(waitFor([&] { return m_model.skinUrl() != skin("skins/Cedar.wsz"); }));
}

TEST_F(SkinBrowserWindowTest, AsksBeforeASkinGoesToTheTrash) {
    writeSkins(3);
    writeFile("skins/more/Birch again.wsz", TestFolder::read(m_folder.path("skins/Birch.wsz")));
    index();
    open();
    ASSERT_TRUE(waitFor([&] { return shown().size() == 3; }));
    select(1);
    QTest::keyClick(m_grid, Qt::Key_Delete);
    QMessageBox *box = question();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text(), u"Move “Birch” to the Trash?"_qs);
    EXPECT_TRUE(box->informativeText().contains(u"Birch again.wsz"_qs));
    answer(box, u"Cancel"_qs);
    ASSERT_TRUE(waitFor([&] { return !m_window->findChild<QMessageBox *>(); }));
    EXPECT_EQ(shown().size(), 3);

    QTest::keyClick(m_grid, Qt::Key_Delete);
    box = question();
    ASSERT_TRUE(box);
    answer(box, u"Move to Trash"_qs);
    EXPECT_TRUE(shows({u"Amber"_qs, u"Cedar"_qs}));
    EXPECT_FALSE(QFile::exists(m_folder.path("skins/Birch.wsz")));
    EXPECT_FALSE(QFile::exists(m_folder.path("skins/more/Birch again.wsz")));
    EXPECT_EQ(m_grid->currentIndex().data().toString(), u"Cedar"_qs); // what comes next
}

TEST_F(SkinBrowserWindowTest, SaysWhatToDoWhenThereIsNothingToShow) {
    open();
    EXPECT_TRUE(says(u"No skins folder yet"_qs));
    EXPECT_TRUE(button(u"Choose Folder…"_qs));
    QDir().mkpath(m_folder.path("skins"));
    index();
    EXPECT_TRUE(says(u"No skins in this folder"_qs));
    writeSkins(1);
    EXPECT_TRUE(shows({u"Amber"_qs})); // by itself
    m_library.setFolder(m_folder.path("no such folder"));
    EXPECT_TRUE(says(u"The folder could not be read"_qs));
}

TEST_F(SkinBrowserWindowTest, HintsAreReadableInADarkPaletteThatHasNoneOfItsOwn) {
    const QPalette before = QApplication::palette();
    QPalette dark(QColor(49, 54, 59));
    dark.setColor(QPalette::PlaceholderText, Qt::black);
    QApplication::setPalette(dark);
    open();
    EXPECT_GT(m_search->palette().color(QPalette::PlaceholderText).lightness(), 200);
    QApplication::setPalette(before);
}

TEST_F(SkinBrowserWindowTest, OffersToDeleteAnIndexThatCannotBeRead) {
    writeSkins(2);
    writeFile("broken/index.sqlite", QByteArray(4096, 'x'));
    SkinLibraryModel library(file("broken/index.sqlite"));
    SkinSwitcher switcher(m_model, library);
    library.setFolder(QFileInfo(m_folder.path("skins")).canonicalFilePath());
    m_window.emplace(m_model, library, switcher, m_thumbnails, m_settings);
    m_window->show();
    m_grid = m_window->findChild<SkinGridView *>();
    EXPECT_TRUE(says(u"Could not read the skin index"_qs));
    ASSERT_TRUE(button(u"Delete the Index…"_qs));
    button(u"Delete the Index…"_qs)->click();
    QMessageBox *const box = question();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text(), u"Delete the index?"_qs);
    answer(box, u"Delete"_qs);
    EXPECT_TRUE(shows({u"Amber"_qs, u"Birch"_qs}));
    m_window.reset();
}
