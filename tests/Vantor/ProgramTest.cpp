#include "LocalPlayback/Queue/QueueStore.h"

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

/// No display, no sound server, no message bus and none of the user's settings.
QProcessEnvironment ownEnvironment(const QTemporaryDir &folder) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "DBUS_SESSION_BUS_ADDRESS"})
        environment.remove(QLatin1String(name));
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(name), folder.path());
    environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:/nonexistent"));
    return environment;
}

/// Runs the real program.
Outcome run(const QTemporaryDir &folder, const QStringList &arguments) {
    QProcess process;
    process.setProcessEnvironment(ownEnvironment(folder));
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

TEST(ProgramTest, TheQueueIsKeptButATimedRunLeavesItAlone) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("co.kelvane.vantor/queue.json"));
    const vantor::QueueStore store(QUrl::fromLocalFile(path));
    QProcessEnvironment environment = ownEnvironment(folder);
    environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":pretended"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const auto startAndKill = [&](std::chrono::milliseconds time) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VANTOR_PROGRAM), {});
        EXPECT_FALSE(process.waitForFinished(static_cast<int>(time.count()))); // nobody has closed the window
        process.kill();
        process.waitForFinished();
    };

    EXPECT_EQ(run(folder, {QStringLiteral("--seconds"), QStringLiteral("0.5")}).status, 0);
    EXPECT_FALSE(QFile::exists(path));
    for (int tries = 0; tries < 5 && !store.load(); ++tries)
        startAndKill(std::chrono::milliseconds(3000 * (tries + 1))); // the first start plays the demo track
    std::optional<vantor::QueueSnapshot> queue = store.load();
    ASSERT_TRUE(queue);
    ASSERT_EQ(queue->items.size(), 1U);

    queue->items.resize(3, queue->items.front());
    queue->currentIndex = 2;
    store.save(*queue);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    EXPECT_EQ(run(folder, {QStringLiteral("--seconds"), QStringLiteral("1.5")}).status, 0);
    startAndKill(std::chrono::seconds(3)); // the queue comes back: no demo track replaces it
    file.close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
}
