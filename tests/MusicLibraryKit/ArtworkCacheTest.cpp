#include "MusicLibraryKit/ArtworkCache.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "tests/Support/EmptyBackend.h"
#include "tests/Support/TestFolder.h"

#include <QBuffer>
#include <QCoroSignal>
#include <QDir>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

QByteArray encoded(const QImage &image, const char *kind) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, kind);
    return buffer.data();
}

QByteArray picture(int width, int height, QColor color = Qt::red) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(color);
    return encoded(image, "PNG");
}

/// A real picture but for the size that its header claims.
QByteArray liar() {
    QByteArray bytes = encoded(QImage(1, 1, QImage::Format_RGB32), "BMP");
    bytes.replace(18, 8, QByteArray::fromHex("409c0000409c0000")); // 40000 × 40000
    return bytes;
}

class Gate : public QObject {
    Q_OBJECT
  Q_SIGNALS:
    void opened();
};

/// Counts what it is asked for, and answers at once or when the gate opens.
class CountingBackend : public EmptyBackend {
  public:
    QHash<QString, QByteArray> pictures;
    QStringList asked;
    std::unique_ptr<Gate> gate;

    QCoro::Task<QByteArray> artwork(ArtworkRef ref, int) override {
        const auto self = shared_from_this();
        asked.append(ref.rawValue);
        if (gate)
            co_await qCoro(gate.get(), &Gate::opened);
        if (!pictures.contains(ref.rawValue))
            throw MusicBackendError::notConnected();
        co_return pictures.value(ref.rawValue);
    }
};

class ArtworkCacheTest : public testing::Test {
  protected:
    void SetUp() override { backend->pictures.insert(u"wide"_qs, picture(400, 100)); }

    void open(ArtworkCache::Limits limits = {}) {
        cache = std::make_unique<ArtworkCache>(folder.path("art"), limits, [this] { return now; });
        cache->setBackend(backend);
    }
    QImage image(const QString &name, int pixels = 200) { return cache->image({name}, pixels); }
    /// What is there in the end; a null image after a few seconds.
    QImage loaded(const QString &name, int pixels = 200) {
        QImage found;
        static_cast<void>(QTest::qWaitFor([&] { return !(found = image(name, pixels)).isNull(); }, 5000));
        return found;
    }
    [[nodiscard]] qint64 bytesOnDisk() const {
        qint64 bytes = 0;
        for (const QFileInfo &file : QDir(folder.path("art")).entryInfoList(QDir::Files | QDir::Hidden))
            bytes += file.size();
        return bytes;
    }
    /// Pictures that hardly compress, called 0, 1, …
    void insertNoise(int count) {
        for (int i = 0; i < count; ++i) {
            QImage noise(100, 100, QImage::Format_RGB32);
            quint32 state = static_cast<quint32>(i) + 1;
            for (int y = 0; y < 100; ++y) {
                for (int x = 0; x < 100; ++x)
                    noise.setPixel(x, y, state = state * 1664525 + 1013904223);
            }
            backend->pictures.insert(QString::number(i), encoded(noise, "PNG"));
        }
    }

    TestFolder folder;
    ArtworkCache::Clock::time_point now;
    std::shared_ptr<CountingBackend> backend = std::make_shared<CountingBackend>();
    std::unique_ptr<ArtworkCache> cache;
};

} // namespace

TEST_F(ArtworkCacheTest, OneFetchForAllWhoAsk) {
    open();
    QSignalSpy changes(cache.get(), &ArtworkCache::imageChanged);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(image(u"wide"_qs).isNull());
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(image(u"wide"_qs).size(), QSize(200, 50));
    EXPECT_EQ(image(u"wide"_qs).pixelColor(100, 25), QColor(Qt::red));
    EXPECT_EQ(loaded(u"wide"_qs, 900).size(), QSize(400, 100)); // never scaled up
    EXPECT_EQ(backend->asked.size(), 2);
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(ArtworkCacheTest, TheDiskOutlivesTheCache) {
    open();
    EXPECT_FALSE(loaded(u"wide"_qs).isNull());
    open();
    EXPECT_EQ(loaded(u"wide"_qs).size(), QSize(200, 50));
    EXPECT_EQ(backend->asked.size(), 1);

    const QStringList files = QDir(folder.path("art")).entryList(QDir::Files);
    ASSERT_EQ(files.size(), 1);
    const QByteArray name = "art/" + files.first().toUtf8();
    folder.write(name.constData(), TestFolder::read(folder.path(name.constData())).first(40));
    open();
    EXPECT_FALSE(loaded(u"wide"_qs).isNull()) << "a damaged file is fetched again";
    EXPECT_EQ(backend->asked.size(), 2);
}

TEST_F(ArtworkCacheTest, MemoryForgetsWhatWasShownLongestAgo) {
    backend->pictures.insert(u"b"_qs, picture(100, 100));
    backend->pictures.insert(u"c"_qs, picture(100, 100));
    open({.memoryBytes = 90'000}); // two of 100 × 100 × 4 bytes
    EXPECT_FALSE(loaded(u"b"_qs).isNull());
    EXPECT_FALSE(loaded(u"c"_qs).isNull());
    EXPECT_FALSE(image(u"b"_qs).isNull());
    EXPECT_FALSE(loaded(u"wide"_qs).isNull());
    EXPECT_FALSE(image(u"b"_qs).isNull());
    EXPECT_TRUE(image(u"c"_qs).isNull());
    EXPECT_FALSE(loaded(u"c"_qs).isNull());
    EXPECT_EQ(backend->asked.size(), 3) << "the disk has it";
}

TEST_F(ArtworkCacheTest, TheDiskKeepsItsLimit) {
    insertNoise(40);
    constexpr qint64 limit = 200'000;
    open({.diskBytes = limit});
    qint64 most = 0;
    for (int i = 0; i < 40; ++i) {
        ASSERT_FALSE(loaded(QString::number(i)).isNull());
        most = std::max(most, bytesOnDisk());
    }
    EXPECT_GT(most, limit / 2) << "too little to try the limit";
    EXPECT_LT(most, limit + limit / 4);
    cache.reset(); // waits for what is being removed
    EXPECT_LE(bytesOnDisk(), limit + limit / 8);
    open();
    EXPECT_FALSE(loaded(u"39"_qs).isNull());
    EXPECT_EQ(backend->asked.size(), 40) << "the newest was removed";
}

TEST_F(ArtworkCacheTest, WhatIsNoPictureIsNone) {
    backend->pictures.insert(u"text"_qs, "<svg/>");
    backend->pictures.insert(u"cut"_qs, picture(50, 50).first(60));
    backend->pictures.insert(u"liar"_qs, liar());
    backend->pictures.insert(u"long"_qs, picture(50, 50) + QByteArray(33 << 20, 'x'));
    backend->pictures.insert(u"empty"_qs, {});
    for (const QString &name : {u"text"_qs, u"cut"_qs, u"liar"_qs, u"long"_qs, u"empty"_qs, u"missing"_qs}) {
        open();
        backend->asked.clear();
        EXPECT_TRUE(image(name).isNull());
        QTest::qWait(50);
        EXPECT_TRUE(image(name).isNull());
        QTest::qWait(50);
        EXPECT_EQ(backend->asked.size(), 1) << name.toStdString();
        const auto isAskedLater = [&] {
            now += ArtworkCache::Limits().failureMemory;
            return image(name).isNull() && backend->asked.size() >= 2;
        };
        EXPECT_TRUE(QTest::qWaitFor(isAskedLater, 5000)) << name.toStdString();
    }
    EXPECT_EQ(bytesOnDisk(), 0);
}

TEST_F(ArtworkCacheTest, TheLatestComesFirstAndWhatNobodyShowsLapses) {
    insertNoise(12);
    backend->gate = std::make_unique<Gate>();
    open();
    QSignalSpy changes(cache.get(), &ArtworkCache::imageChanged);
    const auto ask = [&](std::initializer_list<int> pictures) {
        for (const int number : pictures) {
            now += std::chrono::milliseconds(1);
            EXPECT_TRUE(image(QString::number(number)).isNull());
        }
    };
    const auto haveAsked = [&](qsizetype count) {
        return QTest::qWaitFor([&] { return backend->asked.size() == count; }, 5000);
    };
    ask({0, 1, 2, 3});
    ASSERT_TRUE(haveAsked(4));
    ask({4, 5, 6, 7, 8, 9, 10, 11, 4});

    const auto first = std::exchange(backend->gate, std::make_unique<Gate>());
    Q_EMIT first->opened();
    ASSERT_TRUE(haveAsked(8));
    const QStringList latest = backend->asked.mid(4);
    EXPECT_EQ(QSet(latest.cbegin(), latest.cend()), (QSet{u"4"_qs, u"11"_qs, u"10"_qs, u"9"_qs}));
    EXPECT_EQ(changes.size(), 4);

    now += 2 * ArtworkCache::Limits().patience;
    const auto second = std::move(backend->gate);
    Q_EMIT second->opened();
    ASSERT_TRUE(QTest::qWaitFor([&] { return changes.size() == 12; }, 5000));
    EXPECT_EQ(backend->asked.size(), 8) << "nobody had asked for the rest for long";
    EXPECT_FALSE(loaded(u"5"_qs).isNull());
}

TEST_F(ArtworkCacheTest, AnotherSourceHasOtherPictures) {
    class Other : public CountingBackend {
      public:
        QString sourceID() const override { return u"other"_qs; }
    };
    open();
    EXPECT_FALSE(loaded(u"wide"_qs).isNull());
    backend->gate = std::make_unique<Gate>();
    for (const QString &name : {u"a"_qs, u"b"_qs, u"c"_qs, u"d"_qs, u"e"_qs})
        EXPECT_TRUE(image(name).isNull()); // and stay away for good
    ASSERT_TRUE(QTest::qWaitFor([&] { return backend->asked.size() == 5; }));
    const auto other = std::make_shared<Other>();
    other->pictures.insert(u"wide"_qs, picture(10, 10));
    cache->setBackend(other);
    EXPECT_EQ(loaded(u"wide"_qs).size(), QSize(10, 10));
    cache->setBackend(backend);
    EXPECT_EQ(image(u"wide"_qs).size(), QSize(200, 50));
    Q_EMIT backend->gate->opened();
}

TEST_F(ArtworkCacheTest, GoesWhileItLoads) {
    backend->gate = std::make_unique<Gate>();
    open();
    image(u"wide"_qs);
    ASSERT_TRUE(QTest::qWaitFor([&] { return backend->asked.size() == 1; }));
    cache.reset();
    Q_EMIT backend->gate->opened();
    open();
    image(u"wide"_qs, 100); // its file is being read
    cache.reset();
    QTest::qWait(50);
    EXPECT_EQ(backend.use_count(), 1) << "something of the cache is left";
}

#include "ArtworkCacheTest.moc"
