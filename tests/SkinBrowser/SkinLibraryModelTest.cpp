#include "SkinBrowser/SkinLibraryModel.h"

#include "SkinBrowser/SkinIndexReader.h"
#include "tests/SkinLibrary/LibraryFixture.h"
#include "tests/Support/SkinCollection.h"
#include "tests/Support/WaitFor.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::test;
using namespace std::chrono_literals;
using testing::StartsWith;

namespace {

constexpr auto longEnough = 30s; ///< for a pass under a sanitizer

class SkinLibraryModelTest : public testing::Test {
  protected:
    void open() {
        m_model.reset();
        QThread::msleep(30); // what was written just now counts as a change
        m_passes = m_contentChanges = 0;
        m_wasIndexing = false;
        m_model = std::make_unique<SkinLibraryModel>(m_index);
        QObject::connect(m_model.get(), &SkinLibraryModel::progressChanged, [this] {
            m_passes += m_model->isIndexing() && !m_wasIndexing;
            m_wasIndexing = m_model->isIndexing();
        });
        QObject::connect(m_model.get(), &SkinLibraryModel::contentChanged, [this] { ++m_contentChanges; });
        QObject::connect(m_model.get(), &SkinLibraryModel::trashFailed,
                         [this](const QString &message) { m_said = message; });
        QObject::connect(m_model.get(), &SkinLibraryModel::trashed,
                         [this](const QString &path) { m_said = path; });
    }
    QString write(const QByteArray &name, const QByteArray &bytes) const {
        return m_folder.write(name.constData(), bytes);
    }
    void writeMany(const QByteArray &folder, int count) const {
        for (int i = 0; i < count; ++i)
            write(folder + "/" + QByteArray::number(i) + ".wsz", soundSkin(i));
    }
    [[nodiscard]] QString path(const char *name) const { return m_folder.path(name); }
    [[nodiscard]] bool waitForEnd() {
        return waitFor([&] { return !m_model->isIndexing(); }, longEnough);
    }
    [[nodiscard]] bool waitForFiles(std::int64_t count) {
        return waitFor([&] { return m_model->counts().files == count && !m_model->isIndexing(); },
                       longEnough);
    }
    [[nodiscard]] bool waitForBatch() {
        return waitFor([&] { return m_model->counts().files > 0; }, longEnough);
    }
    [[nodiscard]] QStringList names() const {
        SkinIndexReader reader(m_index);
        return reader
            .ask<QStringList>([](SkinIndexStore &index) {
                QStringList found;
                for (const SkinRecord &skin : index.skins({.limit = 1000}))
                    found << skin.name;
                return found;
            })
            .result();
    }

    TestFolder m_folder;
    QUrl m_index = QUrl::fromLocalFile(m_folder.path("data/index.sqlite"));
    std::unique_ptr<SkinLibraryModel> m_model;
    bool m_wasIndexing = false;
    int m_passes = 0;
    int m_contentChanges = 0;
    QString m_said;
};

QStringList list(const char *names) {
    return QString::fromUtf8(names).split(QLatin1Char(' '));
}

} // namespace

TEST_F(SkinLibraryModelTest, IndexesAMadeCollection) {
    SkinCollection().write(path("skins"), 0, 100);
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForFiles(100));
    EXPECT_EQ(m_model->counts(),
              (SkinIndexCounts{
                  100, 95, {{SkinStatus::ok, 91}, {SkinStatus::partial, 2}, {SkinStatus::failed, 2}}}));
    ASSERT_TRUE(m_model->summary());
    EXPECT_EQ(m_model->summary()->added, 95);
    EXPECT_EQ(m_model->progress(), (SkinIndexProgress{SkinIndexProgress::Phase::done, 100, 0, 100}));
    EXPECT_EQ(m_model->problem(), QString());
    EXPECT_GT(m_contentChanges, 0);
    EXPECT_EQ(m_passes, 1);

    // Known before the folder is looked at again; an unchanged folder changes no row.
    open();
    ASSERT_TRUE(waitForFiles(100));
    EXPECT_TRUE(waitFor([&] { return m_contentChanges == 1; }));
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitFor([&] { return m_model->summary().has_value(); }, longEnough));
    (void)waitFor([] { return false; }, 400ms);
    EXPECT_EQ(m_model->summary()->unchanged, 100);
    EXPECT_EQ(m_contentChanges, 1);
    m_model->reindex(true);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(m_model->summary()->unchanged, 0);
}

TEST_F(SkinLibraryModelTest, ChangesInTheFolderShowUpByThemselves) {
    write("skins/a.wsz", soundSkin(1));
    write("skins/deep/b.wsz", soundSkin(2));
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForFiles(2));
    const struct {
        const char *name;
        std::function<void()> change;
        const char *names;
    } rows[] = {
        {"added", [&] { write("skins/new/c.wsz", soundSkin(3)); }, "a b c"},
        {"renamed and changed",
         [&] {
             ASSERT_TRUE(QFile::rename(path("skins/new/c.wsz"), path("skins/d.wsz")));
             write("skins/d.wsz", soundSkin(4));
         },
         "a b d"},
        {"removed", [&] { ASSERT_TRUE(QFile::remove(path("skins/deep/b.wsz"))); }, "a d"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        row.change();
        EXPECT_TRUE(waitFor([&] { return names() == list(row.names); }, longEnough));
        EXPECT_TRUE(waitForEnd());
    }
    EXPECT_EQ(m_model->watchNote(), QString());
}

TEST_F(SkinLibraryModelTest, ACancelledPassGoesOnWhereItWas) {
    writeMany("skins", 6000);
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForBatch());
    m_model->cancel();
    ASSERT_TRUE(waitForEnd());
    const std::int64_t done = m_model->counts().files;
    EXPECT_TRUE(m_model->summary()->cancelled);
    EXPECT_LT(done, 6000);
    m_model->reindex();
    m_model->reindex(); // during a pass: one more after it
    ASSERT_TRUE(waitForFiles(6000));
    EXPECT_EQ(m_model->summary()->unchanged, 6000);
    EXPECT_EQ(m_passes, 3);

    m_model->reindex(true);
    m_model->cancel(); // before it has begun
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(m_model->summary()->cancelled);
    EXPECT_EQ(m_model->counts().files, 6000);
}

TEST_F(SkinLibraryModelTest, AnotherFolderEndsThePassAndTakesItsPlace) {
    writeMany("skins", 1500);
    write("other/z.wsz", soundSkin(5000));
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForBatch());
    m_model->setFolder(path("other"));
    EXPECT_TRUE(waitFor([&] { return names() == list("z"); }, longEnough));
    ASSERT_TRUE(waitForFiles(1));
    EXPECT_EQ(m_passes, 2);

    m_model->setFolder(path("missing"));
    ASSERT_TRUE(waitFor([&] { return !m_model->problem().isEmpty(); }));
    EXPECT_EQ(m_model->problem(), QStringLiteral("The skins folder cannot be read: not a folder"));
    EXPECT_FALSE(m_model->isIndexUnusable());
    EXPECT_EQ(names(), list("z")); // kept
    write("missing/y.wsz", soundSkin(1));
    EXPECT_TRUE(waitFor([&] { return m_model->problem().isEmpty(); }, longEnough));
    EXPECT_EQ(names(), list("y"));
}

TEST_F(SkinLibraryModelTest, EndsSoonDuringAPass) {
    writeMany("skins", 1500);
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForBatch());
    QElapsedTimer time;
    time.start();
    m_model.reset();
    EXPECT_LT(time.elapsed(), 1000); // one batch, and the sanitizers' part
    open();
    EXPECT_TRUE(waitForBatch()); // what was done is kept
}

TEST_F(SkinLibraryModelTest, FilesAreAddedBesideAPass) {
    writeMany("skins", 4000);
    const QString dropped = write("elsewhere/dropped.wsz", soundSkin(9000));
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForBatch()); // from now on, the pass does not look for what has gone
    m_model->add({dropped});
    SkinIndexReader reader(m_index);
    const auto isIndexed = [&] {
        return reader.ask<bool>([&](SkinIndexStore &index) { return index.skinAtPath(dropped).has_value(); })
            .result();
    };
    EXPECT_TRUE(waitFor(isIndexed, longEnough));
    EXPECT_TRUE(m_model->isIndexing());
}

TEST_F(SkinLibraryModelTest, MovesOneFileToTheTrash) {
    qputenv("XDG_DATA_HOME", path("home").toUtf8());
    ASSERT_TRUE(QDir().mkpath(path("home")));
    const QString skin = write("skins/a.wsz", soundSkin(1));
    const QString copy = write("skins/copy.wsz", soundSkin(1));
    open();
    m_model->setFolder(path("skins"));
    ASSERT_TRUE(waitForFiles(2));
    const auto say = [&](const QString &file) {
        m_said.clear();
        m_model->moveToTrash(file, QStringLiteral("a"));
        EXPECT_TRUE(waitFor([&] { return !m_said.isEmpty(); }));
        return m_said;
    };
    EXPECT_EQ(say(skin), skin);
    EXPECT_FALSE(QFile::exists(skin));
    EXPECT_EQ(TestFolder::read(path("home/Trash/files/a.wsz")), soundSkin(1));
    EXPECT_TRUE(QFile::exists(copy));
    EXPECT_TRUE(waitFor([&] { return m_model->counts().files == 1; }));
    EXPECT_EQ(m_model->counts().skins, 1);
    EXPECT_THAT(say(skin).toStdString(), StartsWith("Couldn’t move “a” to the Trash. "));
    EXPECT_GT(m_said.size(), 34);
    EXPECT_EQ(say(copy), copy);
    EXPECT_TRUE(waitFor([&] { return m_model->counts().skins == 0; }));

    m_model.reset();
    SQLiteDatabase(m_index).execute("PRAGMA user_version = 3");
    open();
    EXPECT_EQ(say(write("skins/b.wsz", soundSkin(2))),
              QStringLiteral("“a” was moved to the Trash, but the index could not be updated. ") +
                  SkinLibraryError::incompatibleDatabase(3, 2).description());
    EXPECT_FALSE(QFile::exists(path("skins/b.wsz")));
    qunsetenv("XDG_DATA_HOME");
}

TEST_F(SkinLibraryModelTest, AnIndexOfNoUseIsLeftAloneUntilItIsReset) {
    write("skins/a.wsz", soundSkin(1));
    const std::pair<const char *, std::function<void()>> rows[] = {
        {"newer", [&] { SQLiteDatabase(m_index).execute("PRAGMA user_version = 3"); }},
        {"no database", [&] { write("data/index.sqlite", QByteArray("text ").repeated(1000)); }},
        {"without tables", [&] { SQLiteDatabase(m_index).execute("PRAGMA user_version = 2"); }},
        {"sound", [&] { (void)SkinIndexStore::open(m_index); }},
    };
    for (const auto &[name, make] : rows) {
        SCOPED_TRACE(name);
        QDir(path("data")).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(path("data")));
        make();
        const bool isSound = QLatin1String(name) == QLatin1String("sound");
        const QByteArray before = TestFolder::read(m_index.toLocalFile());
        open();
        m_model->setFolder(path("skins"));
        ASSERT_TRUE(waitForEnd());
        EXPECT_EQ(m_model->isIndexUnusable(), !isSound) << m_model->problem().toStdString();
        if (!isSound)
            EXPECT_EQ(TestFolder::read(m_index.toLocalFile()), before);
        m_contentChanges = 0;
        bool wasTold = false;
        QObject::connect(m_model.get(), &SkinLibraryModel::indexAboutToReset, [&] { wasTold = true; });
        m_model->resetIndex();
        EXPECT_TRUE(wasTold);
        ASSERT_TRUE(waitFor([&] { return m_contentChanges > 0; }));
        ASSERT_TRUE(waitForFiles(1));
        EXPECT_EQ(m_model->problem(), QString());
        EXPECT_EQ(names(), list("a"));
        EXPECT_TRUE(QFile::exists(path("skins/a.wsz")));
        m_model.reset();
    }
}
