#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Outcome {
    int status = -1;
    QString output;
    QString errors;
};

/// Runs the real program without a display, a sound server or the user's settings.
Outcome run(const QTemporaryDir &folder, const QStringList &arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(name), folder.path());
    environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:/nonexistent"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(VANTOR_PROGRAM), arguments);
    if (!process.waitForFinished(30000))
        process.kill();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

TEST(ProgramTest, WithoutADisplayItPlaysTheDemoReportsAndWritesAPicture) {
    const QTemporaryDir folder;
    const Outcome result = run(folder, {QStringLiteral("--seconds"), QStringLiteral("1.5")});
    EXPECT_EQ(result.status, 0) << result.errors.toStdString();
    for (const char *word : {"track", "playing", "peak -"})
        EXPECT_TRUE(result.output.contains(QLatin1String(word))) << word << "\n"
                                                                 << result.output.toStdString();
    const QImage picture(folder.filePath(QStringLiteral("vantor.png")));
    EXPECT_EQ(picture.size(), QSize(275, 116));
}

TEST(ProgramTest, WhatCannotBePlayedIsSaidAndFails) {
    const QTemporaryDir folder;
    QFile rubbish(folder.filePath(QStringLiteral("rubbish.mp3")));
    ASSERT_TRUE(rubbish.open(QIODevice::WriteOnly));
    rubbish.write(QByteArray(3000, 'x'));
    rubbish.close();
    const struct {
        QString argument;
        const char *sentence;
        int status;
    } rows[] = {
        {QStringLiteral("rubbish.mp3"),
         "Could not play rubbish.mp3: This file is not a supported audio file.", 1},
        {QStringLiteral("missing.flac"), "Could not play missing.flac: ", 1},
        {QStringLiteral("--bogus"), "unknown option: --bogus", 2},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.argument.toStdString());
        const Outcome result = run(folder, {row.argument});
        EXPECT_EQ(result.status, row.status);
        EXPECT_TRUE(result.errors.contains(QLatin1String(row.sentence))) << result.errors.toStdString();
    }
}
