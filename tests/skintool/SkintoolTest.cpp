#include "tests/Support/BitmapBuilder.h"
#include "tests/Support/TestFolder.h"
#include "tests/skintool/SampleSkins.h"

#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::test;

namespace {

QStringList lines(const QString &text) {
    EXPECT_TRUE(text.isEmpty() || text.endsWith(QLatin1Char('\n')));
    return text.split(QLatin1Char('\n')).sliced(0, text.count(QLatin1Char('\n')));
}

qsizetype count(const QStringList &all, const char *prefix) {
    return std::ranges::count_if(
        all, [&](const QString &line) { return line.startsWith(QLatin1StringView(prefix)); });
}

class SkintoolTest : public testing::Test, protected TestFolder {
  protected:
    void SetUp() override {
        write("skin/main.bmp", solidBMP(275, 116, {10, 200, 30}));
        write("skin/region.txt", "[Normal]\nNumPoints=4\nPointList=0,0, 200,0, 200,116, 0,116\n");
    }
    /// Runs the real program with the words of a line.
    [[nodiscard]] ProgramRun run(const char *line) const {
        return runProgram(SKINTOOL, QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts),
                          *this);
    }
    [[nodiscard]] QImage image(const char *name) const { return QImage(path(name)); }
};

} // namespace

TEST_F(SkintoolTest, EverySampleGivesItsResult) {
    const std::vector<SampleSkin> skins = sampleSkins();
    EXPECT_GE(skins.size(), 50U);
    for (const SampleSkin &skin : skins) {
        SCOPED_TRACE(skin.name.toStdString());
        write("sample.wsz", skin.bytes);
        QFile::remove(path("out.png"));
        const ProgramRun result = run("-v --png out.png sample.wsz");
        EXPECT_EQ(result.status, skin.exitCode) << result.err.toStdString();
        EXPECT_EQ(count(lines(result.out), "warning: "), skin.warnings);
        EXPECT_EQ(count(lines(result.out), "fallback: "), skin.fallbacks);
        EXPECT_EQ(lines(result.err).size(), skin.exitCode);
        EXPECT_EQ(image("out.png").size(), skin.exitCode == 0 ? QSize(275, 116) : QSize(0, 0));
        EXPECT_FALSE(result.out.contains(QLatin1Char('\x1B')));
    }
}

TEST_F(SkintoolTest, ExplainsMisuseAndRefusals) {
    ProgramRun result = run("");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, u"missing <skin.wsz | folder>\n"
                          "usage: skintool [-v|--verbose] [--png <out> [--state webamp|idle] [--scale N] "
                          "[--compare <refdir>] [--no-region]] <skin.wsz | folder>\n"_qs);
    EXPECT_EQ(result.out, QString());
    result = run("corpus folder");
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(lines(result.err).last().startsWith(u"usage: skintool corpus <dir> --out <dir>"_qs));
    EXPECT_EQ(run(".").status, 0) << "the skin lies below the folder";
    result = run("nowhere");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(count(lines(result.err), "Unreadable archive: "), 1);
}

TEST_F(SkintoolTest, DrawsTheRegionAtAScale) {
    ASSERT_EQ(run("--png masked.png --scale 2 skin").status, 0);
    ASSERT_EQ(run("--png whole.png --no-region skin").status, 0);
    const QImage masked = image("masked.png"), whole = image("whole.png");
    ASSERT_EQ(masked.size(), QSize(550, 232));
    ASSERT_EQ(whole.size(), QSize(275, 116));
    EXPECT_EQ(masked.pixel(399, 222), qRgb(10, 200, 30));
    EXPECT_EQ(qAlpha(masked.pixel(400, 222)), 0);
    EXPECT_EQ(whole.pixel(200, 110), qRgb(10, 200, 30));
    EXPECT_EQ(run("--png a.png --scale 70000 skin").status, 1);
    EXPECT_EQ(run("--png no/such/folder.png skin").status, 1);
}

TEST_F(SkintoolTest, ComparesWithAReference) {
    const char *const idle = "--png out.png --state idle --compare refs skin";
    write("refs/note.txt", {});
    EXPECT_EQ(run(idle).status, 1) << "no reference";
    QImage reference = image("out.png").convertToFormat(QImage::Format_ARGB32);
    reference.setPixel(250, 50, qRgba(255, 255, 255, 0)); // as invisible as the other
    ASSERT_TRUE(reference.save(path("refs/main.png")));
    ProgramRun result = run(idle);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(lines(result.out).last(), u"compare: 0 of 31900 pixels differ (0.00 %)"_qs);
    EXPECT_FALSE(QFile::exists(path("out-difference.png")));
    EXPECT_EQ(run("--png out.png --state webamp --compare refs skin").status, 1)
        << "the states look different";

    reference.setPixel(3, 110, qRgb(1, 2, 3));
    reference.setPixel(12, 114, reference.pixel(12, 114) - 1);
    ASSERT_TRUE(reference.save(path("refs/main.png")));
    result = run(idle);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(lines(result.out).last(), u"compare: 2 of 31900 pixels differ (0.01 %), x 3, y 110, 10x5"_qs);
    const QImage difference = image("out-difference.png");
    EXPECT_EQ(difference.size(), QSize(275, 116));
    EXPECT_EQ(difference.pixel(3, 110), difference.pixel(12, 114));
    EXPECT_NE(difference.pixel(3, 110), difference.pixel(4, 110));

    ASSERT_TRUE(reference.scaled(100, 100).save(path("refs/main.png")));
    EXPECT_EQ(run(idle).status, 1);
}
