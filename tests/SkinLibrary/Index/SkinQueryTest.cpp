#include "SkinLibrary/Index/SkinQuery.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(SkinQuery, MakesAnExpressionOfQuotedPrefixes) {
    const struct {
        const char *name;
        QString text;
        std::optional<QString> expected;
    } cases[] = {
        {"words", QStringLiteral(" green \t day\nsky "), QStringLiteral("\"green\"* \"day\"* \"sky\"*")},
        {"operators", QStringLiteral("a OR (b) -c*"), QStringLiteral("\"a\"* \"OR\"* \"(b)\"* \"-c*\"*")},
        {"a quote", QStringLiteral("7\"rock"), QStringLiteral("\"7\"\"rock\"*")},
        {"pieces without a letter", QStringLiteral("!! a ..."), QStringLiteral("\"a\"*")},
        {"punctuation only", QStringLiteral("!!!"), std::nullopt},
        {"letters beyond the first plane", QStringLiteral("\U00010400"), QStringLiteral("\"\U00010400\"*")},
        {"a null character", QStringLiteral("ab") + QChar() + QStringLiteral("cd"),
         QStringLiteral("\"ab\"* \"cd\"*")},
        {"nothing", QString(), std::nullopt},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(matchExpression(row.text), row.expected);
    }
}

TEST(SkinQuery, CountsCharactersAsAReaderDoes) {
    EXPECT_FALSE(SkinQuery{.text = QStringLiteral("a")}.hasText());
    EXPECT_FALSE(SkinQuery{.text = QStringLiteral("e\u0301")}.hasText());
    EXPECT_FALSE(SkinQuery{.text = QStringLiteral("\U0001F3B5")}.hasText());
    EXPECT_TRUE(SkinQuery{.text = QStringLiteral("ab")}.hasText());
}
