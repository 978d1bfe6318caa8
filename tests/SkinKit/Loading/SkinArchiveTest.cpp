#include "SkinKit/Loading/SkinArchive.h"

#include "SkinKit/Loading/SkinError.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/ZipBuilder.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

using namespace vantor;
using namespace vantor::test;

namespace {

using Files = QMap<QString, QByteArray>;

Files files(std::initializer_list<std::pair<const char *, QByteArray>> list) {
    Files result;
    for (const auto &[name, data] : list)
        result.insert(QString::fromUtf8(name), data);
    return result;
}

QString refusal(const QUrl &url) {
    try {
        (void)SkinArchive(url);
    } catch (const SkinError &error) {
        EXPECT_EQ(error.errorCase(), SkinError::Case::unreadableArchive);
        return error.description();
    }
    return {};
}

/// The archive with its first entry named `copies` times in the directory, all over the same bytes.
QByteArray repeated(const QByteArray &sound, quint16 copies) {
    const qsizetype directory = sound.indexOf("PK\1\2");
    const qsizetype second = sound.indexOf("PK\1\2", directory + 4);
    QByteArray zip =
        sound.left(directory) + sound.mid(directory, second - directory).repeated(copies) + sound.mid(second);
    char *end = zip.data() + zip.size() - 22;
    qToLittleEndian<quint16>(static_cast<quint16>(copies + 1), end + 8);
    qToLittleEndian<quint16>(static_cast<quint16>(copies + 1), end + 10);
    qToLittleEndian(static_cast<quint32>(zip.size() - 22 - directory), end + 12);
    return zip;
}

const QByteArray text = QByteArray("A line of text that deflates. ").repeated(4000);

} // namespace

TEST(SkinArchiveTest, KeepsWhatTheRulesKeep) {
    struct Row {
        const char *name;
        std::vector<ZipEntry> entries;
        const char *expected;
        SkinArchive::Limits limits = {};
    };
    const Row rows[] = {
        {"any folder, any case", {{"Skin/Main.BMP", "1"}, {"old\\Text.Bmp", "2"}}, "main.bmp=1 text.bmp=2 "},
        {"the first of a name",
         {{"Skin/MAIN.BMP", "1"}, {"main.bmp", "2"}, {"main.bmp", "3"}},
         "main.bmp=1 "},
        {"unless dropped",
         {{.name = "a/main.bmp", .data = text, .damaged = true}, {"main.bmp", "2"}},
         "main.bmp=2 "},
        {"folders and links",
         {{"main.bmp/", ""},
          {.name = "text.bmp", .data = "", .unixMode = S_IFDIR | 0755},
          {.name = "gen.bmp", .data = "main.bmp", .unixMode = S_IFLNK | 0777},
          {.name = "pledit.bmp", .data = "1", .unixMode = S_IFREG | 0644}},
         "pledit.bmp=1 "},
        {"extensions",
         {{"a.exe", ""}, {"bmp", ""}, {".bmp", ""}, {"a.b.PNG", "4"}, {"main.bmp.", ""}},
         "a.b.png=4 "},
        {"checksums and sizes that lie, deflated and stored",
         {{.name = "a.bmp", .data = text, .crc = 1},
          {.name = "b.bmp", .data = text, .stored = true, .crc = 1},
          {.name = "c.bmp", .data = text, .declaredSize = 10},
          {.name = "d.bmp", .data = text, .stored = true, .declaredSize = 10},
          {.name = "e.bmp", .data = text, .declaredSize = 5'000'000},
          {.name = "f.bmp", .data = text, .stored = true, .declaredSize = 5'000'000}},
         "a.bmp=text b.bmp=text c.bmp=text d.bmp=text e.bmp=text f.bmp=text "},
        {"a size beyond the limit is believed",
         {{.name = "a.bmp", .data = text, .declaredSize = 9'000'000}},
         ""},
        {"damaged, encrypted, cut short, unknown method",
         {{.name = "main.bmp", .data = text, .damaged = true},
          {.name = "text.bmp", .data = text, .encryptedFlag = true},
          {.name = "gen.bmp", .data = text, .compressedSize = 40},
          {.name = "posbar.bmp", .data = text, .method = 14},
          {"volume.bmp", "1"}},
         "volume.bmp=1 "},
        {"an entry that outgrows the limit",
         {{.name = "main.bmp", .data = QByteArray(9 << 20, 'x'), .declaredSize = 1024}, {"text.bmp", "1"}},
         "text.bmp=1 "},
        {"one at the limit and one above",
         {{"a.bmp", "12345"}, {"b.bmp", "123456"}},
         "a.bmp=12345 ",
         {5, 100}},
        {"the budget drops what does not fit, and ends the walk when it is used up",
         {{"a.bmp", "12345"}, {"b.bmp", "123456"}, {"c.bmp", "12345"}, {"d.bmp", ""}},
         "a.bmp=12345 c.bmp=12345 ",
         {50, 10}},
        {"other extensions",
         {{"main.bmp", "1"}, {"notes.md", "2"}},
         "notes.md=2 ",
         {.allowedExtensions = {QStringLiteral("md")}}},
    };
    for (const auto &row : rows) {
        const Files kept = SkinArchive::fromZip(zipFile(row.entries), row.limits).files();
        QByteArray summary;
        for (auto file = kept.begin(); file != kept.end(); ++file)
            summary += file.key().toUtf8() + '=' + (*file == text ? "text" : file->left(20)) + ' ';
        EXPECT_EQ(summary.toStdString(), row.expected) << row.name;
    }
}

TEST(SkinArchiveTest, EntriesThatShareTheirBytesEndTheWalk) {
    // A directory of a megabyte could name one bomb thousands of times: minutes of inflating. Empty blocks
    // are worse, because no limit on what comes out of them is ever reached.
    const ZipEntry bomb{.name = "main.bmp", .data = QByteArray(9 << 20, '\0'), .declaredSize = 1};
    const ZipEntry hollow{.name = "main.bmp",
                          .data = QByteArray("\0\0\0\xff\xff", 5).repeated(1'600'000),
                          .stored = true,
                          .declaredSize = 1,
                          .method = 8};
    for (const ZipEntry &entry : {bomb, hollow}) {
        const QByteArray zip = repeated(zipFile({entry, {"text.bmp", "1"}}), 15'000);
        const std::clock_t start = std::clock();
        EXPECT_EQ(SkinArchive::fromZip(zip).files(), Files());
        EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 20);
    }
}

TEST(SkinArchiveTest, RefusesAHugeDirectory) {
    const QByteArray sound = zipFile({{"main.bmp", "1"}, {"text.bmp", "1"}});
    const QByteArray longName = zipFile({{QByteArray(200, 'n'), "1"}, {"text.bmp", "1"}});
    // The 64-bit record counts instead of the plain one.
    const QByteArray record =
        QByteArray("PK\6\6").leftJustified(32, '\0') + QByteArray(8, '\1') + QByteArray(16, '\0');
    const QByteArray locator = QByteArray("PK\6\7").leftJustified(20, '\0');
    for (const QByteArray &zip :
         {repeated(sound, 30'000), repeated(longName, 8'000), record + locator + sound.last(22)}) {
        try {
            (void)SkinArchive::fromZip(zip);
            ADD_FAILURE() << "accepted";
        } catch (const SkinError &error) {
            EXPECT_EQ(error, SkinError::unreadableArchive(QStringLiteral("Too many entries")));
        }
    }
}

TEST(SkinArchiveTest, GivesBackTheRoomThatADeclaredSizeTook) {
    const QByteArray small(1'200, 'x');
    const QByteArray zip = zipFile({{.name = "main.bmp", .data = small, .declaredSize = 1'000'000}});
    EXPECT_LT(SkinArchive::fromZip(zip).files().first().capacity(), 2 * small.size());
}

#if !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer)
TEST(SkinArchiveTest, RefusesWhatMemoryDoesNotHold) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process without room that earlier tests left behind
    std::vector<ZipEntry> entries;
    for (const char *name : {"aa.txt", "bb.txt", "cc.txt", "dd.txt", "ee.txt", "ff.txt", "gg.txt"})
        entries.push_back({name, QByteArray(8 << 20, 'x')});
    const QByteArray zip = zipFile(entries);
    const auto loadInLittle = [&zip] {
        QFile status(QStringLiteral("/proc/self/statm"));
        (void)status.open(QIODevice::ReadOnly);
        const rlim_t used = status.readAll().split(' ').first().toULongLong() * 4096;
        const rlimit limit{used + (4 << 20), used + (4 << 20)};
        setrlimit(RLIMIT_AS, &limit);
        try {
            (void)SkinArchive::fromZip(zip);
        } catch (const SkinError &error) {
            _exit(error == SkinError::notEnoughMemory() ? 0 : 1);
        }
        _exit(2);
    };
    EXPECT_EXIT(loadInLittle(), testing::ExitedWithCode(0), "");
}
#endif

TEST(SkinArchiveTest, OpensFilesAndRefusesWhatIsNoArchive) {
    const TestFolder folder;
    folder.write("text.wsz", "GIF89a and so on");
    folder.write("empty.wsz", {});
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.path("pipe.wsz")).constData(), 0600), 0);
    QList<QUrl> rows{QUrl(QStringLiteral("https://example.org/a.wsz")), QUrl()};
    for (const char *name : {"text.wsz", "empty.wsz", "pipe.wsz", "missing.wsz"})
        rows.append(QUrl::fromLocalFile(folder.path(name)));
    const QString prefix = QStringLiteral("Unreadable archive: ");
    for (const QUrl &url : rows) {
        SCOPED_TRACE(url.toString().toStdString());
        const QString message = refusal(url);
        EXPECT_TRUE(message.startsWith(prefix) && message.size() > prefix.size()) << message.toStdString();
    }
    const QByteArray zip = zipFile({{"main.bmp", text}});
    EXPECT_THROW((void)SkinArchive::fromZip(zip.chopped(30)), SkinError);
    const QUrl url = QUrl::fromLocalFile(folder.write("späte skin#1.wsz", zip));
    EXPECT_EQ(SkinArchive(url).files(), files({{"main.bmp", text}}));
}

TEST(SkinArchiveTest, ReadsAFolderInPathOrder) {
    const TestFolder folder;
    for (const char *name :
         {"b/Main.bmp", "a/sub/MAIN.BMP", "Text.BMP", ".hidden.bmp", ".git/gen.bmp", "a.exe"})
        folder.write(name, name);
    folder.write("volume.bmp", QByteArray(21, 'x'));
    ASSERT_TRUE(QFile::link(folder.path("Text.BMP"), folder.path("posbar.bmp")));
    ASSERT_TRUE(QFile::link(folder.path(), folder.path("loop")));
    EXPECT_EQ(SkinArchive(QUrl::fromLocalFile(folder.path()), {.maxEntryBytes = 20}).files(),
              files({{"main.bmp", "a/sub/MAIN.BMP"}, {"text.bmp", "Text.BMP"}}));
}

TEST(SkinArchiveTest, ReadsTheFirstFilesOfAHugeFolder) {
    EXPECT_EQ(refusal(QUrl(QStringLiteral("file:///usr"))), QString());
}

TEST(SkinArchiveTest, LooksUpByNameAndExtension) {
    const SkinArchive archive(
        files({{"Skin/Main.BMP", "bmp"}, {"main.png", "png"}, {"GEN.PNG", "gen"}, {"sub/", ""}}));
    EXPECT_EQ(archive.files(), files({{"main.bmp", "bmp"}, {"main.png", "png"}, {"gen.png", "gen"}}));
    const QStringList both{QStringLiteral("BMP"), QStringLiteral("png")};
    EXPECT_EQ(archive.file(QStringLiteral("MAIN"), both), "bmp");
    EXPECT_EQ(archive.file(QStringLiteral("gen"), both), "gen");
    EXPECT_EQ(archive.file(QStringLiteral("text"), both), std::nullopt);
}
