#include "AudioCore/Equalizer/EQFFile.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

QByteArray preamble() {
    return QByteArrayLiteral("Winamp EQ library file v1.1\x1A!--");
}

QByteArray entry(const QByteArray &name, const QByteArray &values) {
    return name + QByteArray(257 - name.size(), '\0') + values;
}

EQPreset preset(const QString &name, float preamp, std::vector<float> gains) {
    return EQPreset(name, preamp, gains);
}

} // namespace

TEST(EQFFileTest, WritesTheBytesOfEveryLevel) {
    const std::vector<EQPreset> presets{
        preset(QStringLiteral("Caf\u00E9 \u20AC"), -6, {12, -12, 0, 20, 5.8F}),
        preset(QStringLiteral("\u266B \U0001F3B5 \u0081"), 0, {}),
    };
    const QByteArray expected =
        preamble() + entry("Caf\xE9 \x80", QByteArray("\x00\x3F\x1F\x00\x10\x1F\x1F\x1F\x1F\x1F\x2F", 11)) +
        entry("? ? ?", QByteArray(11, '\x1F'));
    EXPECT_EQ(EQFFile::serialize(presets), expected);
    EXPECT_EQ(EQFFile::serialize({}), preamble());
}

TEST(EQFFileTest, ReadsWhatOthersWrote) {
    const QByteArray flat(11, '\x1F');
    struct {
        const char *name;
        QByteArray entries;
        std::vector<EQPreset> expected;
    } const rows[] = {
        {"levels",
         entry("A", QByteArray("\x00\x3F\x1F\x40\xFF\x10\x1F\x1F\x1F\x1F\x2F", 11)),
         {preset(QStringLiteral("A"), -6, {12, -12, 0, -12, -12, 5.8F})}},
        {"rubbish behind the name", entry(QByteArray("B\0C", 3), flat), {preset(QStringLiteral("B"), 0, {})}},
        {"name without end", QByteArray(257, '\x80') + flat, {preset(QString(257, QChar(0x20AC)), 0, {})}},
        {"UTF-8, as 81 is no character",
         entry("\xC5\x81x\xFF", flat),
         {preset(QStringLiteral("\u0141x\uFFFD"), 0, {})}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(EQFFile::parse(preamble() + row.entries), row.expected);
    }
}

TEST(EQFFileTest, RefusesDamagedFiles) {
    using Case = EQFFile::ParseError::Case;
    const QByteArray whole = preamble() + entry("A", QByteArray(11, '\0'));
    QByteArray otherVersion = whole;
    otherVersion[26] = '2';
    struct {
        const char *name;
        QByteArray data;
        Case expected;
    } const rows[] = {
        {"cut preamble", whole.first(30), Case::invalidHeader},
        {"other version", otherVersion, Case::invalidHeader},
        {"entry without preamp", whole.chopped(1), Case::truncated},
        {"stray bytes", whole + QByteArray(10, '\0'), Case::truncated},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        try {
            (void)EQFFile::parse(row.data);
            ADD_FAILURE() << "accepted";
        } catch (const EQFFile::ParseError &error) {
            EXPECT_EQ(error.errorCase(), row.expected);
            EXPECT_FALSE(error.description().isEmpty());
        }
    }
}

TEST(EQFFileTest, WhatIsWrittenReadsBack) {
    EXPECT_EQ(EQFFile::parse(EQFFile::serialize(EQPreset::builtIn())), EQPreset::builtIn());
    const std::vector<EQPreset> longName{preset(QString(300, QLatin1Char('n')), 0, {})};
    EXPECT_EQ(EQFFile::parse(EQFFile::serialize(longName)).front().name(), QString(256, QLatin1Char('n')));
}
