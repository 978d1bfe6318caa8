#include "tests/Support/BitmapBuilder.h"
#include "tests/skintool/SampleSkins.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vantor::test;

namespace {

struct Outcome {
    int exitCode = -1;
    QStringList out;
    QStringList err;
};

QStringList lines(const QByteArray &bytes) {
    QStringList result = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
    EXPECT_TRUE(result.last().isEmpty());
    result.removeLast();
    return result;
}

/// Runs the real program without a display.
Outcome run(const QStringList &arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SKINTOOL), arguments);
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), lines(process.readAllStandardOutput()),
            lines(process.readAllStandardError())};
}

void write(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

qsizetype count(const QStringList &all, const char *prefix) {
    return std::ranges::count_if(
        all, [&](const QString &line) { return line.startsWith(QLatin1StringView(prefix)); });
}

QString latin(const char *text) {
    return QString::fromLatin1(text);
}

class SkintoolTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(QDir().mkpath(path("skin")));
        write(path("skin/main.bmp"), solidBMP(275, 116, {10, 200, 30}));
        write(path("skin/region.txt"), "[Normal]\nNumPoints=4\nPointList=0,0, 200,0, 200,116, 0,116\n");
    }
    [[nodiscard]] QString path(const char *name) const { return m_folder.filePath(latin(name)); }

  private:
    QTemporaryDir m_folder;
};

} // namespace

TEST(SkintoolSamplesTest, EverySampleGivesItsResult) {
    const QTemporaryDir folder;
    const std::vector<SampleSkin> skins = sampleSkins();
    EXPECT_GE(skins.size(), 50U);
    for (const SampleSkin &skin : skins) {
        SCOPED_TRACE(skin.name.toStdString());
        const QString file = folder.filePath(skin.name);
        write(file, skin.bytes);
        const QString png = folder.filePath(latin("out.png"));
        QFile::remove(png);
        const Outcome outcome = run({latin("-v"), latin("--png"), png, file});
        EXPECT_EQ(outcome.exitCode, skin.exitCode) << outcome.err.join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(count(outcome.out, "warning: "), skin.warnings);
        EXPECT_EQ(count(outcome.out, "fallback: "), skin.fallbacks);
        EXPECT_EQ(outcome.err.size(), skin.exitCode);
        EXPECT_EQ(QImage(png).size(), skin.exitCode == 0 ? QSize(275, 116) : QSize(0, 0));
        EXPECT_FALSE(outcome.out.join(QLatin1Char(' ')).contains(QLatin1Char('\x1B')));
    }
}

TEST_F(SkintoolTest, ExplainsMisuseAndRefusals) {
    const QString usage =
        latin("usage: skintool [-v|--verbose] [--png <out> [--state webamp|idle] [--scale N] "
              "[--compare <refdir>] [--no-region]] <skin.wsz | folder>");
    Outcome outcome = run({});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.err, (QStringList{latin("missing <skin.wsz | folder>"), usage}));
    EXPECT_EQ(outcome.out, QStringList());
    outcome = run({latin("corpus"), latin("folder")});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_TRUE(outcome.err.last().startsWith(latin("usage: skintool corpus <dir> --out <dir>")));
    outcome = run({path("")});
    EXPECT_EQ(outcome.exitCode, 0) << "the skin lies below the folder";
    outcome = run({path("nowhere")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(count(outcome.err, "Unreadable archive: "), 1);
}

TEST_F(SkintoolTest, DrawsTheRegionAtAScale) {
    ASSERT_EQ(run({latin("--png"), path("masked.png"), latin("--scale"), latin("2"), path("skin")}).exitCode,
              0);
    ASSERT_EQ(run({latin("--png"), path("whole.png"), latin("--no-region"), path("skin")}).exitCode, 0);
    const QImage masked(path("masked.png"));
    const QImage whole(path("whole.png"));
    ASSERT_EQ(masked.size(), QSize(550, 232));
    ASSERT_EQ(whole.size(), QSize(275, 116));
    EXPECT_EQ(masked.pixel(399, 222), qRgb(10, 200, 30));
    EXPECT_EQ(qAlpha(masked.pixel(400, 222)), 0);
    EXPECT_EQ(whole.pixel(200, 110), qRgb(10, 200, 30));
    EXPECT_EQ(run({latin("--png"), path("a.png"), latin("--scale"), latin("70000"), path("skin")}).exitCode,
              1);
    EXPECT_EQ(run({latin("--png"), path("no/such/folder.png"), path("skin")}).exitCode, 1);
}

TEST_F(SkintoolTest, ComparesWithAReference) {
    ASSERT_TRUE(QDir().mkpath(path("refs")));
    const auto compare = [&](const char *state) {
        return run({latin("--png"), path("out.png"), latin("--state"), latin(state), latin("--compare"),
                    path("refs"), path("skin")});
    };
    EXPECT_EQ(compare("idle").exitCode, 1) << "no reference";
    ASSERT_TRUE(QFile::copy(path("out.png"), path("refs/main.png")));
    Outcome outcome = compare("idle");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out.last(), latin("compare: 0 of 31900 pixels differ (0.00 %)"));
    EXPECT_FALSE(QFile::exists(path("out-difference.png")));
    EXPECT_EQ(compare("webamp").exitCode, 1) << "the two states look different";

    QImage reference(path("out.png"));
    ASSERT_TRUE(run({latin("--png"), path("idle.png"), path("skin")}).exitCode == 0);
    reference = QImage(path("idle.png"));
    reference.setPixel(3, 110, qRgb(1, 2, 3));
    reference.setPixel(12, 114, qRgb(1, 2, 3));
    ASSERT_TRUE(reference.save(path("refs/main.png")));
    outcome = compare("idle");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out.last(), latin("compare: 2 of 31900 pixels differ (0.01 %), x 3, y 110, 10x5"));
    EXPECT_EQ(QImage(path("out-difference.png")).size(), QSize(275, 116));

    ASSERT_TRUE(reference.scaled(100, 100).save(path("refs/main.png")));
    EXPECT_EQ(compare("idle").exitCode, 1);
}
