#include "tests/Support/TestFolder.h"

#include <QImage>

#include <gtest/gtest.h>

using namespace vantor;

TEST(ProgramTest, WithoutADisplayItPlaysTheDemoReportsAndWritesAPicture) {
    const TestFolder folder;
    const ProgramRun result = runProgram(VANTOR_PROGRAM, {u"--seconds"_qs, u"1.5"_qs}, folder);
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    for (const char *word : {"track", "playing", "peak -"})
        EXPECT_TRUE(result.out.contains(QLatin1String(word))) << word << "\n" << result.out.toStdString();
    EXPECT_EQ(QImage(folder.path("vantor.png")).size(), QSize(275, 116));
}

TEST(ProgramTest, WhatCannotBePlayedIsSaidAndFails) {
    const TestFolder folder;
    folder.write("rubbish.mp3", QByteArray(3000, 'x'));
    const std::tuple<QString, const char *, int> rows[] = {
        {u"rubbish.mp3"_qs, "Could not play rubbish.mp3: This file is not a supported audio file.", 1},
        {u"missing.flac"_qs, "Could not play missing.flac: ", 1},
        {u"--bogus"_qs, "unknown option: --bogus", 2},
    };
    for (const auto &[argument, sentence, status] : rows) {
        const ProgramRun result = runProgram(VANTOR_PROGRAM, {argument}, folder);
        EXPECT_EQ(result.status, status);
        EXPECT_TRUE(result.err.contains(QLatin1String(sentence))) << result.err.toStdString();
    }
}
