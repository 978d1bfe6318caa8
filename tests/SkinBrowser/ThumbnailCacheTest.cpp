#include "SkinBrowser/ThumbnailCache.h"

#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "SkinLibrary/Ingest/SkinContentHash.h"
#include "tests/Support/BitmapBuilder.h"
#include "tests/Support/SkinCollection.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/WaitFor.h"
#include "tests/Support/ZipBuilder.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::test;

namespace {

class ThumbnailCacheTest : public testing::Test {
  protected:
    struct MadeSkin {
        QString hash;
        QString path;
    };

    MadeSkin write(const QByteArray &name, const QByteArray &bytes) const {
        return {SkinContentHash::digests(bytes).sha256, m_folder.write(name.constData(), bytes)};
    }
    /// Skins whose main windows have the number as their colour.
    [[nodiscard]] MadeSkin skin(int number) const {
        const QByteArray sheet = solidBMP(275, 116, {static_cast<quint8>(number), 20, 30});
        return write("skin" + QByteArray::number(number) + ".wsz", zipFile({{"main.bmp", sheet}}));
    }

    void open(qint64 limit = 1 << 20) {
        m_cache = std::make_unique<ThumbnailCache>(m_folder.path("cache"), limit);
        m_order.clear();
        QObject::connect(m_cache.get(), &ThumbnailCache::ready,
                         [this](const QString &hash) { m_order << hash; });
        QObject::connect(m_cache.get(), &ThumbnailCache::failed,
                         [this](const QString &hash) { m_order << QStringLiteral("failed ") + hash; });
    }
    [[nodiscard]] std::optional<QImage> ask(const MadeSkin &skin) {
        return m_cache->picture(skin.hash, skin.path);
    }
    /// What the event brings that follows.
    [[nodiscard]] std::optional<QImage> fetch(const MadeSkin &skin) {
        const qsizetype before = m_order.size();
        if (const auto picture = ask(skin))
            return picture;
        EXPECT_TRUE(waitFor([&] { return m_order.size() > before; }));
        return ask(skin);
    }
    [[nodiscard]] QStringList files() const {
        QStringList found;
        QDirIterator entries(m_folder.path("cache"), QDir::Files, QDirIterator::Subdirectories);
        while (entries.hasNext())
            found << entries.next();
        return found;
    }

    TestFolder m_folder;
    std::unique_ptr<ThumbnailCache> m_cache;
    QStringList m_order;
};

} // namespace

TEST_F(ThumbnailCacheTest, DrawsTheSkinAndReusesItsFile) {
    const QByteArray archive = SkinCollection().archive(0);
    const MadeSkin made = write("made.wsz", archive);
    const QImage expected =
        MainWindowRenderer::picture(SkinParser::parse(SkinArchive::fromZip(archive)), {}, 1);
    open();
    EXPECT_EQ(fetch(made), expected);
    EXPECT_EQ(expected.size(), ThumbnailCache::size);
    ASSERT_EQ(files().size(), 1);
    EXPECT_TRUE(
        files().front().endsWith(made.hash.first(2) + QLatin1Char('/') + made.hash + QStringLiteral(".png")));
    QFile::remove(made.path);
    open();
    EXPECT_EQ(fetch(made), expected);
}

TEST_F(ThumbnailCacheTest, TheNewestRequestComesFirst) {
    std::vector<MadeSkin> skins;
    for (int i = 0; i < 30; ++i)
        skins.push_back(skin(i));
    open();
    for (const MadeSkin &skin : skins)
        (void)ask(skin);
    (void)ask(skins[10]); // once more, and so in view
    ASSERT_TRUE(waitFor([&] { return m_order.size() == 30; }));
    EXPECT_EQ(QSet<QString>(m_order.begin(), m_order.end()).size(), 30);
    // A few were begun before the last was asked for.
    EXPECT_LT(m_order.indexOf(skins[10].hash), m_order.indexOf(skins[28].hash));
    EXPECT_LT(m_order.indexOf(skins[25].hash), m_order.indexOf(skins[15].hash));
}

TEST_F(ThumbnailCacheTest, WhatIsForgottenIsNotMadeUntilAskedForAgain) {
    std::vector<MadeSkin> skins;
    for (int i = 0; i < 50; ++i)
        skins.push_back(skin(i));
    open();
    for (const MadeSkin &skin : skins)
        (void)ask(skin);
    m_cache->forgetRequests();
    (void)fetch(skins[0]);
    (void)waitFor([] { return false; }, std::chrono::milliseconds(100));
    EXPECT_LT(m_order.size(), 30);
    for (const MadeSkin &skin : skins)
        (void)ask(skin);
    EXPECT_TRUE(waitFor([&] { return QSet<QString>(m_order.begin(), m_order.end()).size() == 50; }));
}

TEST_F(ThumbnailCacheTest, AFailureIsToldOnce) {
    const MadeSkin broken = write("broken.wsz", "no archive");
    const MadeSkin sound = skin(1);
    open();
    EXPECT_EQ(fetch(broken), std::nullopt);
    EXPECT_EQ(fetch({QStringLiteral("../../evil"), sound.path}), std::nullopt);
    EXPECT_EQ(ask(broken), std::nullopt);
    EXPECT_TRUE(m_cache->hasFailed(broken.hash));
    EXPECT_TRUE(fetch(sound));
    EXPECT_EQ(m_order.size(), 3);
    // A file that has changed by now is drawn, but not kept under the hash that it had.
    EXPECT_EQ(fetch({broken.hash, sound.path}), fetch(sound));
    EXPECT_EQ(files().size(), 1);
}

TEST_F(ThumbnailCacheTest, ADamagedFileIsMadeAgain) {
    const MadeSkin made = skin(7);
    open();
    const auto expected = fetch(made);
    const QString path = files().value(0);
    for (const QByteArray &damage : {QByteArray(), TestFolder::read(path).first(200),
                                     QByteArray("no picture"), solidPNG({3000, 3000}, 0)}) {
        SCOPED_TRACE(damage.size());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(damage);
        file.close();
        open();
        EXPECT_EQ(fetch(made), expected);
        m_cache.reset();
        EXPECT_EQ(QImage(path).size(), ThumbnailCache::size);
        EXPECT_EQ(files().size(), 1);
    }
}

TEST_F(ThumbnailCacheTest, TheOldestFilesGoWhenThereAreTooMany) {
    open();
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(fetch(skin(i)));
    const QString kept = m_folder.path("cache/v1/");
    m_folder.write("cache/v0/ab/old.png", "of another version");
    qint64 size = 0;
    for (int i = 0; i < 10; ++i) {
        const QString hash = skin(i).hash;
        QFile file(kept + hash.first(2) + QLatin1Char('/') + hash + QStringLiteral(".png"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addDays(i - 20),
                                     QFileDevice::FileModificationTime));
        size = std::max(size, file.size());
    }
    open(size * 4);
    ASSERT_TRUE(fetch(skin(0))); // read, and so no longer the oldest
    ASSERT_TRUE(fetch(skin(100)));
    EXPECT_TRUE(waitFor([&] { return files().size() <= 4; }));
    m_cache.reset();
    QSet<QString> left;
    for (const QString &file : files())
        left.insert(file.section(QLatin1Char('/'), -1).chopped(4));
    EXPECT_EQ(left, (QSet<QString>{skin(0).hash, skin(8).hash, skin(9).hash, skin(100).hash}));
}
