#include "Vantor/App/LaunchOptions.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace vantor;

static LaunchOptions options(const char *skin, const QStringList &files) {
    const auto here = [](const QString &name) { return QUrl::fromLocalFile(QDir::current().filePath(name)); };
    LaunchOptions options;
    options.skin = here(QLatin1String(skin));
    for (const QString &file : files)
        options.files.append(here(file));
    return options;
}

TEST(LaunchOptionsTest, ReadsOptionsFilesAndSkinsInAnyOrder) {
    LaunchOptions all = options("named.zip", {u"a.flac"_qs, u"-odd.mp3"_qs});
    all.seconds = 2.5;
    all.screenshot = u"out.png"_qs;
    LaunchOptions addressed = options("a.zip", {});
    addressed.files = {QUrl(u"https://h/b?c=d"_qs)};
    LaunchOptions more = options("B.WSZ", {u"x.ogg"_qs});
    more.command = LaunchCommand::enqueue;
    LaunchOptions next;
    next.command = LaunchCommand::next;
    const std::pair<const char *, LaunchOptions> rows[] = {
        {"--enqueue x.ogg B.WSZ", more},
        {"--next", next},
        {"a.flac --seconds 2.5 worn.wsz --skin named.zip --screenshot out.png -- -odd.mp3", all},
        {"a.wsz x.ogg B.WSZ", options("B.WSZ", {u"x.ogg"_qs})},
        {"--skin a.zip HTTPS://h/b?c=d", addressed},
    };
    for (const auto &[line, expected] : rows) {
        const auto parsed = LaunchOptions::parse(QString::fromLatin1(line).split(u' '));
        ASSERT_TRUE(std::holds_alternative<LaunchOptions>(parsed)) << line;
        EXPECT_EQ(std::get<LaunchOptions>(parsed), expected) << line;
    }
    EXPECT_EQ(std::get<LaunchOptions>(LaunchOptions::parse({})), LaunchOptions());
}

TEST(LaunchOptionsTest, SaysWhatIsWrong) {
    const char *const badSeconds = "--seconds needs a number above 0, at most 86400";
    for (const auto &[line, firstLine] : {std::pair("--bogus", "unknown option: --bogus"),
                                          {"--play --stop", "only one command at a time: --stop"},
                                          {"--next a.mp3", "files go with --play or --enqueue only"},
                                          {"--enqueue", "--enqueue needs files"},
                                          {"--skin", "--skin needs a value"},
                                          {"--seconds 0", badSeconds},
                                          {"--seconds nan", badSeconds},
                                          {"--seconds 1e9", badSeconds}}) {
        const auto parsed = LaunchOptions::parse(QString::fromLatin1(line).split(u' '));
        ASSERT_TRUE(std::holds_alternative<LaunchOptions::Message>(parsed)) << line;
        const auto &message = std::get<LaunchOptions::Message>(parsed);
        EXPECT_EQ(message.text.section(u'\n', 0, 0).toStdString(), firstLine);
        EXPECT_EQ(message.exitStatus, 2);
    }
}
