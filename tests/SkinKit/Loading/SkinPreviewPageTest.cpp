#include "SkinKit/Loading/SkinPreviewPage.h"

#include "SkinKit/Loading/SkinArchive.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(SkinPreviewPageTest, ChoosesAndDecodesTheReadme) {
    const QByteArray limit(20'480, 'x');
    const struct {
        const char *name;
        std::vector<std::pair<const char *, QByteArray>> files;
        std::optional<QString> expected;
    } rows[] = {
        {"no text", {{"main.bmp", "x"}, {"pledit.txt", "x"}, {"viscolor.txt", "x"}, {"region.txt", "x"}}, {}},
        {"the read-me before others",
         {{"a.txt", "a"}, {"Skin/README-de.txt", "read"}},
         QStringLiteral("read")},
        {"the first of others", {{"b.txt", "b"}, {"a.txt", "a"}}, QStringLiteral("a")},
        {"code page 1252",
         {{"a.txt", "\x93"
                    "Gr\xFC\xDF"
                    "e\x94"}},
         QStringLiteral("“Grüße”")},
        {"neither encoding", {{"a.txt", "\x81\xFF"}}, {}},
        {"empty", {{"a.txt", ""}}, QString()},
        {"at the limit", {{"a.txt", limit}}, QString::fromLatin1(limit)},
        {"above it", {{"a.txt", limit + "y"}}, QString::fromLatin1(limit) + QStringLiteral("…")},
        {"a character cut in two",
         {{"a.txt", limit.chopped(1) + "€uro"}},
         QString::fromLatin1(limit.chopped(1)) + QStringLiteral("…")},
        {"1252 text that grows",
         {{"a.txt", QByteArray(10'241, '\xE9')}},
         QString(10'240, QChar(0xE9)) + QStringLiteral("…")},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        QMap<QString, QByteArray> files;
        for (const auto &[name, data] : row.files)
            files.insert(QString::fromLatin1(name), data);
        EXPECT_EQ(SkinPreviewPage::readme(SkinArchive(files)), row.expected);
    }
}
