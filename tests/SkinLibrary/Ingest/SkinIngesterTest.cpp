#include "SkinLibrary/Ingest/SkinIngester.h"

#include "Platform/NativePath.h"
#include "tests/SkinLibrary/LibraryFixture.h"

#include <gtest/gtest.h>

#include <system_error>

using namespace vantor;
using namespace vantor::test;

TEST(SkinIngester, InspectsWhateverIsThere) {
    const TestFolder folder;
    const QByteArray bomb(64 << 20, '\0');
    const struct {
        const char *name;
        QByteArray bytes;
        SkinInspection expected;
    } cases[] = {
        {"sound.wsz", soundSkin(1), {QStringLiteral("Read me.1"), SkinStatus::ok, {}}},
        {"large.wsz",
         zipFile({{"song.mp3", QByteArray(5 << 20, 'x'), true}}),
         {{}, SkinStatus::failed, {QStringLiteral("No classic skin bitmaps found")}}},
        {"modern.wsz",
         zipFile({{"skin.xml", "<skin/>"}, {"readme.txt", "hi"}}),
         {QStringLiteral("hi"),
          SkinStatus::failed,
          {QStringLiteral("Modern (Winamp 3/5) skin; not supported")}}},
        {"bomb.wsz",
         zipFile({{"main.bmp", bomb}, {"text.bmp", bomb}, {"readme.txt", "boom"}}),
         {QStringLiteral("boom"), SkinStatus::failed, {QStringLiteral("No classic skin bitmaps found")}}},
        {"garbage.wsz",
         "no archive at all",
         {{}, SkinStatus::failed, {QStringLiteral("Unreadable archive: Not a zip archive")}}},
    };
    const SkinIngester ingester;
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        const QString path = folder.write(row.name, row.bytes);
        EXPECT_EQ(ingester.inspect(path), row.expected);
        EXPECT_EQ(ingester.digests(path), SkinContentHash::digests(row.bytes));
    }
    const QByteArray odd = folder.path("Bl\xC3\xA5").toUtf8().chopped(2) + "\xE5.wsz";
    ASSERT_EQ(rename(qPrintable(folder.path("sound.wsz")), odd.constData()), 0);
    EXPECT_EQ(ingester.inspect(NativePath::text(odd)), cases[0].expected);
    unlink(odd.constData());
    const SkinInspection missing = ingester.inspect(folder.path("missing.wsz"));
    EXPECT_EQ(missing.warnings, QStringList{QStringLiteral("Unreadable archive: No such file or directory")});
    ASSERT_EQ(mkfifo(qPrintable(folder.path("pipe.wsz")), 0600), 0);
    EXPECT_THROW((void)ingester.digests(folder.path("pipe.wsz")), std::system_error);
}

TEST(SkinContentHash, AgreesWithPublishedDigests) {
    const SkinDigests abc{
        QStringLiteral("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"),
        QStringLiteral("900150983cd24fb0d6963f7d28e17f72"),
    };
    EXPECT_EQ(SkinContentHash::digests("abc"), abc);
    EXPECT_TRUE(SkinContentHash::isValid(abc.sha256));
    EXPECT_FALSE(SkinContentHash::isValid(abc.sha256.toUpper()));
    EXPECT_FALSE(SkinContentHash::isValid(abc.md5));
}
