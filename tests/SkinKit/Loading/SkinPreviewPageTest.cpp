#include "SkinKit/Loading/SkinPreviewPage.h"

#include "SkinKit/Loading/SkinArchive.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(SkinPreviewPageTest, ChoosesAndDecodesTheReadme) {
    const QByteArray limit(20'480, 'x');
    const QByteArray accents(10'241, '\xE9');
    const struct {
        const char *name;
        std::vector<std::pair<const char *, QByteArray>> files;
        std::optional<QString> expected;
    } rows[] = {
        {"no text", {{"main.bmp", "x"}, {"pledit.txt", "x"}, {"viscolor.txt", "x"}, {"region.txt", "x"}}, {}},
        {"the read-me before others", {{"a.txt", "a"}, {"Skin/README-de.txt", "read"}}, u"read"_qs},
        {"the first of others", {{"b.txt", "b"}, {"a.txt", "a"}}, u"a"_qs},
        {"code page 1252", {{"a.txt", "\x93Gr\xFC\xDF\x94"}}, u"“Grüß”"_qs},
        {"neither encoding", {{"a.txt", "\x81\xFF"}}, {}},
        {"empty", {{"a.txt", ""}}, QString()},
        {"at the limit", {{"a.txt", limit}}, QString::fromLatin1(limit)},
        {"above it", {{"a.txt", limit + "y"}}, QString::fromLatin1(limit) + u"…"_qs},
        {"cut in two", {{"a.txt", limit.chopped(1) + "€"}}, QString::fromLatin1(limit.chopped(1)) + u"…"_qs},
        {"1252 text that grows", {{"a.txt", accents}}, QString::fromLatin1(accents.chopped(1)) + u"…"_qs},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        QMap<QString, QByteArray> files;
        for (const auto &[name, data] : row.files)
            files.insert(QString::fromLatin1(name), data);
        EXPECT_EQ(SkinPreviewPage::readme(SkinArchive(files)), row.expected);
    }
}
