#include "Vantor/App/LaunchOptions.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

QUrl inCurrentFolder(const char *name) {
    return QUrl::fromLocalFile(QDir::current().filePath(QLatin1String(name)));
}

} // namespace

TEST(LaunchOptionsTest, ReadsOptionsFilesAndSkinsInAnyOrder) {
    LaunchOptions all;
    all.skin = inCurrentFolder("named.zip");
    all.files = {inCurrentFolder("a.flac"), inCurrentFolder("-odd.mp3")};
    all.seconds = 2.5;
    all.screenshot = QStringLiteral("out.png");

    LaunchOptions skinAmongFiles;
    skinAmongFiles.skin = inCurrentFolder("B.WSZ");
    skinAmongFiles.files = {inCurrentFolder("x.ogg")};

    const struct {
        QStringList arguments;
        LaunchOptions expected;
    } rows[] = {
        {{}, {}},
        {{QStringLiteral("a.flac"), QStringLiteral("--seconds"), QStringLiteral("2.5"),
          QStringLiteral("worn.wsz"), QStringLiteral("--skin"), QStringLiteral("named.zip"),
          QStringLiteral("--screenshot"), QStringLiteral("out.png"), QStringLiteral("--"),
          QStringLiteral("-odd.mp3")},
         all},
        {{QStringLiteral("a.wsz"), QStringLiteral("x.ogg"), QStringLiteral("B.WSZ")}, skinAmongFiles},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.arguments.join(QLatin1Char(' ')).toStdString());
        const auto parsed = LaunchOptions::parse(row.arguments);
        ASSERT_TRUE(std::holds_alternative<LaunchOptions>(parsed));
        EXPECT_EQ(std::get<LaunchOptions>(parsed), row.expected);
    }
}

TEST(LaunchOptionsTest, SaysWhatIsWrong) {
    const struct {
        QStringList arguments;
        const char *firstLine;
        int status;
    } rows[] = {
        {{QStringLiteral("--bogus")}, "unknown option: --bogus", 2},
        {{QStringLiteral("--skin")}, "--skin needs a value", 2},
        {{QStringLiteral("--seconds"), QStringLiteral("0")},
         "--seconds needs a number above 0, at most 86400",
         2},
        {{QStringLiteral("--seconds"), QStringLiteral("nan")},
         "--seconds needs a number above 0, at most 86400",
         2},
        {{QStringLiteral("--seconds"), QStringLiteral("1e9")},
         "--seconds needs a number above 0, at most 86400",
         2},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.arguments.join(QLatin1Char(' ')).toStdString());
        const auto parsed = LaunchOptions::parse(row.arguments);
        ASSERT_TRUE(std::holds_alternative<LaunchOptions::Message>(parsed));
        const auto &message = std::get<LaunchOptions::Message>(parsed);
        EXPECT_EQ(message.text.section(QLatin1Char('\n'), 0, 0).toStdString(), row.firstLine);
        EXPECT_EQ(message.exitStatus, row.status);
    }
}
