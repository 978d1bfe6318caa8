#include "AudioCore/Network/IcyProtocol.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(IcyProtocolTest, TitlesAreFoundWhateverStandsInThem) {
    const std::tuple<const char *, QByteArray, std::optional<QString>> rows[] = {
        {"usual", "StreamTitle='A - B';StreamUrl='http://x';", QStringLiteral("A - B")},
        {"quotes", "StreamTitle='Don't; 'n' stop';StreamUrl='';", QStringLiteral("Don't; 'n' stop")},
        {"quote before semicolon", "StreamTitle='say 'hi'; then go';", QStringLiteral("say 'hi'; then go")},
        {"not closed", "StreamTitle='A", QStringLiteral("A")},
        {"no semicolon", "StreamTitle='A'", QStringLiteral("A")},
        {"padded", QByteArray("StreamTitle='A';\0\0\0", 19), QStringLiteral("A")},
        {"utf-8", "StreamTitle='Bj\xc3\xb6rk';", QStringLiteral("Björk")},
        {"windows", "StreamTitle='Bj\xf6rk \x96 x';", QStringLiteral("Björk – x")},
        {"second", "StreamUrl='x';StreamTitle='A';", QStringLiteral("A")},
        {"control bytes", "StreamTitle='A\n\tB';", QStringLiteral("A B")},
        {"gone", "StreamTitle='';", QString()},
        {"other", "StreamUrl='x';", std::nullopt},
        {"empty", "", std::nullopt},
    };
    for (const auto &[name, block, title] : rows)
        EXPECT_EQ(IcyProtocol::streamTitle(block), title) << name;
    EXPECT_LE(IcyProtocol::streamTitle("StreamTitle='" + QByteArray(4000, 'x'))->size(), 1024);
}

TEST(IcyProtocolTest, TheFilterTakesAnySlicing) {
    QByteArray stream = "abcd";
    stream += QByteArray("\1", 1) + "StreamTitle='1';" + "efgh" + '\0' + "ijkl" + '\0' + "mn";
    for (qsizetype slice = 1; slice <= stream.size(); ++slice) {
        SCOPED_TRACE(slice);
        IcyProtocol::Filter filter(4);
        QByteArray sound;
        std::optional<qsizetype> titleAt;
        for (qsizetype at = 0; at < stream.size(); at += slice) {
            const QByteArray piece = stream.mid(at, slice);
            for (QByteArrayView bytes = piece; !bytes.isEmpty();) {
                const QByteArrayView part = filter.take(bytes);
                if (filter.takeTitle())
                    titleAt = sound.size();
                sound.append(part);
            }
        }
        EXPECT_EQ(sound, "abcdefghijklmn");
        EXPECT_EQ(titleAt, 4);
    }
}
