#include "SkinMuseum/Client/MuseumDownloader.h"

#include "MuseumFixture.h"
#include "tests/SkinLibrary/LibraryFixture.h"

#include <QDirIterator>

#include <sys/resource.h>

#include <csignal>

using namespace vantor;
using namespace vantor::test;

using Fault = FakeMuseum::Fault;
using Kind = FakeMuseum::Kind;
using Result = MuseumDownloadResult;

namespace {

class MuseumDownloaderTest : public MuseumFixture {
  protected:
    MuseumDownloaderTest() { QDir().mkpath(m_folder.path("skins")); }

    [[nodiscard]] QString skins() const { return QFileInfo(m_folder.path("skins")).canonicalFilePath(); }
    [[nodiscard]] static QFuture<QUrl> nowhere(const QString &) { return QtFuture::makeReadyFuture(QUrl()); }
    [[nodiscard]] QUrl in(const char *path) const {
        return QUrl::fromLocalFile(skins() + u'/' + QString::fromUtf8(path));
    }
    [[nodiscard]] Outcome<Result> download(const MuseumSkin &wanted) {
        return outcomeOf(m_downloader.download(wanted, skins(), &nowhere));
    }
    /// Everything below the skins folder.
    [[nodiscard]] QStringList files() const {
        QStringList paths;
        QDirIterator entries(skins(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (entries.hasNext())
            paths.append(entries.next().mid(skins().size() + 1));
        paths.sort();
        return paths;
    }

    MuseumDownloader m_downloader{m_transport, m_agent};
};

/// Files of this process cannot grow beyond a size, as on a disk that is full.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    Q_DISABLE_COPY_MOVE(FullDisk)

  private:
    rlimit m_before{};
};

} // namespace

TEST_F(MuseumDownloaderTest, PutsTheSkinIntoTheMuseumsFolder) {
    QList<qint64> received;
    const auto progress = [&](qint64 bytes, qint64 total) {
        received.append(bytes);
        EXPECT_EQ(total, 9);
    };
    const auto outcome = outcomeOf(m_downloader.download(skin(1), skins(), &nowhere, progress));
    EXPECT_EQ(outcome.value, (Result{Result::Case::added, in("Museum/Skin 1.wsz")}));
    EXPECT_EQ(TestFolder::read(m_folder.path("skins/Museum/Skin 1.wsz")), "archive 1");
    EXPECT_EQ(files(), QStringList{u"Museum/Skin 1.wsz"_qs});
    ASSERT_FALSE(received.isEmpty());
    EXPECT_EQ(received.constLast(), 9);
    EXPECT_EQ(m_museum.requests().constLast().headers.value("user-agent"), m_agent);
}

TEST_F(MuseumDownloaderTest, FetchesNothingThatIsThereAlready) {
    const auto existing = [&](const QString &md5) {
        EXPECT_EQ(md5, skin(1).md5);
        return QtFuture::makeReadyFuture(in("mine.wsz"));
    };
    const auto had = outcomeOf(m_downloader.download(skin(1), skins(), existing));
    EXPECT_EQ(had.value, (Result{Result::Case::alreadyHad, in("mine.wsz")}));
    EXPECT_EQ(outcomeOf(m_downloader.download(skin(1), {}, existing)).error, MuseumError::noFolder());
    EXPECT_TRUE(m_museum.requests().isEmpty());
    EXPECT_TRUE(files().isEmpty());
    int attempts = 0;
    const auto interrupted = [&](const QString &) {
        return ++attempts == 1 ? QtFuture::makeExceptionalFuture<QUrl>(
                                     std::make_exception_ptr(SkinLibraryError::passAlreadyRunning()))
                               : QtFuture::makeReadyFuture(in("mine.wsz"));
    };
    EXPECT_EQ(outcomeOf(m_downloader.download(skin(1), skins(), interrupted)).value, had.value);
    const auto broken = [](const QString &) {
        return QtFuture::makeExceptionalFuture<QUrl>(
            std::make_exception_ptr(SkinLibraryError::passAlreadyRunning()));
    };
    EXPECT_TRUE(outcomeOf(m_downloader.download(skin(1), skins(), broken)).value);
}

TEST_F(MuseumDownloaderTest, LeavesNothingBehindOfWhatFails) {
    const std::pair<Fault, MuseumError> rows[] = {
        {Fault::fails, MuseumError::http(500)},
        {Fault::limitsRate, MuseumError::http(429)},
        {Fault::wrongContent, MuseumError::checksumMismatch()},
        {Fault::truncates, MuseumError::checksumMismatch()},
        {Fault::claimsMore, MuseumError::offline()},
        {Fault::hangs, MuseumError::offline()},
        {Fault::isEndless, MuseumError::tooLarge()},
        {Fault::redirects, MuseumError::http(302)},
    };
    m_museum.redirectTarget = QUrl(u"http://127.0.0.1:1/skins/1.wsz"_qs);
    const QString crash = u"0b5a9f1e-58a5-4c3e-9d63-2b1f7a0c4d11"_qs;
    const QStringList kept{u"Museum/.partial/1c6bafe2-58a5-4c3e-9d63-2b1f7a0c4d22"_qs,
                           u"Museum/.partial/of the user"_qs};
    for (const QString &path : kept + QStringList{u"Museum/.partial/"_qs + crash})
        m_folder.write(("skins/" + path.toUtf8()).constData(), "x");
    for (const QString &name : {crash, u"of the user"_qs}) {
        QFile old(skins() + u"/Museum/.partial/"_qs + name);
        ASSERT_TRUE(old.open(QIODevice::ReadWrite));
        old.setFileTime(QDateTime::currentDateTime().addSecs(-4000), QFile::FileModificationTime);
    }
    for (const auto &[fault, expected] : rows) {
        m_museum.faults[Kind::archive] = fault;
        EXPECT_EQ(download(skin(1)).error, expected) << static_cast<int>(fault);
    }
    m_museum.faults.clear();
    MuseumSkin insecure = skin(1);
    insecure.downloadURL.setScheme(u"http"_qs);
    EXPECT_EQ(download(insecure).error, MuseumError::offline());
    EXPECT_EQ(files().filter(u"wsz"_qs), QStringList());
    EXPECT_TRUE(download(skin(1)).value);
    EXPECT_EQ(files(), kept + QStringList{u"Museum/Skin 1.wsz"_qs});
}

TEST_F(MuseumDownloaderTest, LeavesNothingBehindWhenItGoesMeanwhile) {
    m_museum.faults[Kind::archive] = Fault::hangs;
    std::optional<MuseumDownloader> downloader(std::in_place, m_transport, m_agent);
    const auto outcome = started(downloader->download(skin(1), skins(), &nowhere));
    ASSERT_TRUE(waitFor([&] { return m_museum.count(Kind::archive) == 1; }));
    EXPECT_EQ(files().size(), 1);
    downloader.reset();
    EXPECT_TRUE(files().isEmpty());
    m_transport->close();
    EXPECT_TRUE(waitFor([&] { return outcome->error == MuseumError::offline(); }));
}

TEST_F(MuseumDownloaderTest, FollowsNoLinkOutOfTheSkinsFolder) {
    m_folder.write("elsewhere/0b5a9f1e-58a5-4c3e-9d63-2b1f7a0c4d11", "x");
    for (const QString &link : {u"Museum"_qs, u"Museum/.partial"_qs}) {
        QDir().mkpath(QFileInfo(skins() + u'/' + link).path());
        ASSERT_TRUE(QFile::link(m_folder.path("elsewhere"), skins() + u'/' + link));
        EXPECT_EQ(download(skin(1)).error, MuseumError::notSaved(u"Not a directory"_qs));
        QFile::remove(skins() + u'/' + link);
    }
    EXPECT_EQ(QDir(m_folder.path("elsewhere")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    EXPECT_EQ(m_museum.count(Kind::archive), 0); // not even asked for
}

TEST_F(MuseumDownloaderTest, TakesAsManyBytesAsAreAllowedAndNotOneMore) {
    const QByteArray most(MuseumDownloader::defaultMaxBytes, 'x');
    FakeMuseum large({.count = 2,
                      .name = [](int) { return u"Large"_qs; },
                      .archive = [&](int number) { return number == 0 ? most : most + 'x'; }});
    large.tls = m_certificate.serverConfiguration();
    ASSERT_TRUE(large.open());
    const auto skin = [&](int number) {
        MuseumSkin made = this->skin(number);
        made.md5 = large.md5(number);
        made.downloadURL = large.url(QStringLiteral("/skins/%1.wsz").arg(number));
        return made;
    };
    EXPECT_EQ(download(skin(1)).error, MuseumError::tooLarge());
    EXPECT_TRUE(files().isEmpty());
    ASSERT_TRUE(download(skin(0)).value);
    EXPECT_EQ(QFileInfo(m_folder.path("skins/Museum/Skin 0.wsz")).size(), 16'777'216);
}

TEST_F(MuseumDownloaderTest, ReplacesNothingAndKeepsTwoOfOneNameApart) {
    m_folder.write("skins/Museum/Same.wsz", "of the user");
    QList<MuseumSkin> same{skin(1), skin(2), skin(3)};
    std::vector<std::shared_ptr<Outcome<Result>>> outcomes;
    for (MuseumSkin &wanted : same) {
        wanted.filename = u"Same.wsz"_qs;
        outcomes.push_back(started(m_downloader.download(wanted, skins(), &nowhere)));
    }
    ASSERT_TRUE(waitFor(
        [&] { return std::ranges::all_of(outcomes, [](const auto &one) { return one->isThere(); }); }));
    QSet<QByteArray> contents;
    for (const auto &outcome : outcomes) {
        ASSERT_TRUE(outcome->value);
        contents.insert(TestFolder::read(outcome->value->file.toLocalFile()));
    }
    EXPECT_EQ(contents, (QSet<QByteArray>{"archive 1", "archive 2", "archive 3"}));
    EXPECT_EQ(files(), (QStringList{u"Museum/Same (2).wsz"_qs, u"Museum/Same (3).wsz"_qs,
                                    u"Museum/Same (4).wsz"_qs, u"Museum/Same.wsz"_qs}));
    EXPECT_EQ(TestFolder::read(m_folder.path("skins/Museum/Same.wsz")), "of the user");
    // The index has not heard of it yet.
    EXPECT_EQ(download(same[1]).value->outcome, Result::Case::alreadyHad);
    EXPECT_EQ(files().size(), 4);
}

TEST_F(MuseumDownloaderTest, SaysWhyASkinCannotBeSaved) {
    const auto error = [&] {
        const auto outcome = download(skin(1));
        return outcome.error ? outcome.error->description() : QString();
    };
    m_folder.write("skins/Museum", "a file");
    EXPECT_EQ(error(), u"The skin could not be saved: Not a directory"_qs);
    QFile::remove(m_folder.path("skins/Museum"));
    {
        const FullDisk full(4);
        EXPECT_EQ(error(), u"The skin could not be saved: File too large"_qs);
    }
    EXPECT_TRUE(files().isEmpty());
    QDir(m_folder.path("skins/Museum")).removeRecursively();
    {
        const OrdinaryUser user;
        QFile::setPermissions(m_folder.path("skins"),
                              QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
        EXPECT_TRUE(error().startsWith(u"The skin could not be saved: "_qs)) << error().toStdString();
    }
    QFile::setPermissions(m_folder.path("skins"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QDir().rmdir(m_folder.path("skins")); // a disk that was taken out
    const auto gone = outcomeOf(m_downloader.download(skin(1), m_folder.path("skins"), &nowhere));
    EXPECT_EQ(gone.error, MuseumError::notSaved(u"No such file or directory"_qs));
    EXPECT_FALSE(QFile::exists(m_folder.path("skins")));
}

TEST(MuseumFileNameTest, NoNameLeadsAnywhereElse) {
    const QString md5 = u"0123456789abcdef0123456789abcdef"_qs;
    const QString longName = QString(300, u'ä');
    const std::pair<QString, QString> rows[] = {
        {u"Amber Harbour.wsz"_qs, u"Amber Harbour.wsz"_qs},
        {u"SHOUTING.WSZ"_qs, u"SHOUTING.wsz"_qs},
        {u"no extension"_qs, u"no extension.wsz"_qs},
        {u"Amp v1.2"_qs, u"Amp v1.2.wsz"_qs},
        {u"a.zip"_qs, u"a.zip.wsz"_qs},
        {u"../../../etc/passwd"_qs, u"_.._.._etc_passwd.wsz"_qs},
        {u"/etc/passwd"_qs, u"_etc_passwd.wsz"_qs},
        {u"C:\\Windows\\x.wsz"_qs, u"C__Windows_x.wsz"_qs},
        {u"a<b>c:d\"e|f?g*h"_qs, u"a_b_c_d_e_f_g_h.wsz"_qs},
        {u"line\nbreak\ttab\x7f"_qs, u"line_break_tab_.wsz"_qs},
        {QString(QChar(u'a')) + QChar(u'\0') + QChar(u'b'), u"a_b.wsz"_qs},
        {u"gnp.\u202ezsw.wsz"_qs, u"gnp.zsw.wsz"_qs}, // read backwards
        {QString(QChar(0xDC80)) + u"x"_qs, u"x.wsz"_qs},
        {u".hidden.wsz"_qs, u"hidden.wsz"_qs},
        {u"  blanks . .wsz"_qs, u"blanks.wsz"_qs},
        {u"..."_qs, md5 + u".wsz"_qs},
        {u""_qs, md5 + u".wsz"_qs},
        {u".wsz"_qs, md5 + u".wsz"_qs},
        {u"///"_qs, md5 + u".wsz"_qs},
        {u"CON.wsz"_qs, u"_CON.wsz"_qs},
        {u"com1.tar.wsz"_qs, u"_com1.tar.wsz"_qs},
        {u"Console.wsz"_qs, u"Console.wsz"_qs},
        {u"日本語 🎵.wsz"_qs, u"日本語 🎵.wsz"_qs},
        {longName, QString(100, u'ä') + u".wsz"_qs},
    };
    for (const auto &[name, expected] : rows)
        EXPECT_EQ(MuseumDownloader::sanitizedFilename(name, md5), expected) << name.toStdString();
}
