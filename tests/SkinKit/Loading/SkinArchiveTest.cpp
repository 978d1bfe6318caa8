#include "SkinKit/Loading/SkinArchive.h"

#include "SkinKit/Loading/SkinError.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/ZipBuilder.h"

#include <QFile>
#include <QtEndian>

#include <gtest/gtest.h>
#include <sys/stat.h>

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

TEST(SkinArchiveTest, ManyBombsEndTheWalk) {
    // A directory of a few megabytes could name one bomb 65,535 times: an hour of inflating.
    const QByteArray sound = zipFile(
        {{.name = "main.bmp", .data = QByteArray(9 << 20, '\0'), .declaredSize = 1}, {"text.bmp", "1"}});
    const qsizetype directory = sound.indexOf("PK\1\2");
    const qsizetype second = sound.indexOf("PK\1\2", directory + 4);
    const QByteArray bomb = sound.mid(directory, second - directory);
    constexpr quint16 copies = 20'000;
    QByteArray zip = sound.left(directory) + bomb.repeated(copies) + sound.mid(second);
    char *end = zip.data() + zip.size() - 22;
    qToLittleEndian<quint16>(copies + 1, end + 8);
    qToLittleEndian<quint16>(copies + 1, end + 10);
    qToLittleEndian(static_cast<quint32>(zip.size() - 22 - directory), end + 12);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(SkinArchive::fromZip(zip).files(), Files());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

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
    EXPECT_EQ(refusal(QUrl(QStringLiteral("file:///usr"))),
              prefix + QStringLiteral("Too many files in the folder"));
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

TEST(SkinArchiveTest, LooksUpByNameAndExtension) {
    const SkinArchive archive(
        files({{"Skin/Main.BMP", "bmp"}, {"main.png", "png"}, {"GEN.PNG", "gen"}, {"sub/", ""}}));
    EXPECT_EQ(archive.files(), files({{"main.bmp", "bmp"}, {"main.png", "png"}, {"gen.png", "gen"}}));
    const QStringList both{QStringLiteral("BMP"), QStringLiteral("png")};
    EXPECT_EQ(archive.file(QStringLiteral("MAIN"), both), "bmp");
    EXPECT_EQ(archive.file(QStringLiteral("gen"), both), "gen");
    EXPECT_EQ(archive.file(QStringLiteral("text"), both), std::nullopt);
}
