#include "skintool/SkinReport.h"

#include "SkinKit/Loading/Skin.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(SkinReportTest, ListsTheSkinInItsOrder) {
    Skin skin;
    const QImage sheet(4, 3, QImage::Format_RGBX8888);
    skin.sheets = {{QStringLiteral("TEXT"), sheet}, {QStringLiteral("MAIN"), sheet}};
    skin.generatedSheets = {QStringLiteral("TEXT")};
    skin.warnings = {QStringLiteral("z"), QStringLiteral("a")};
    skin.fallbacks = {QStringLiteral("colour '\x1b[31m' unusable")};
    skin.visColors.fill({1, 2, 255});
    skin.region.sections = {{QStringLiteral("normal"), {{{0, 0}, {1, 0}, {0, 1}}}}};
    skin.cursors.cursors = {
        {QStringLiteral("NORMAL"), SkinCursor{{{QImage(32, 16, sheet.format()), {5, 6}}}, {}}}};
    skin.cursors.unreadable = {QStringLiteral("close.cur")};

    EXPECT_EQ(SkinReport::summary(QStringLiteral("a.wsz"), skin),
              (QStringList{QStringLiteral("a.wsz: 2 sheets (1 generated), 1 cursor, 2 warnings, 1 fallback"),
                           QStringLiteral("warning: z"), QStringLiteral("warning: a"),
                           QStringLiteral("fallback: colour '\uFFFD[31m' unusable")}));
    QString colors = QStringLiteral("visualizer:");
    for (int i = 0; i < 24; ++i)
        colors += QStringLiteral(" #0102ff");
    EXPECT_EQ(
        SkinReport::details(skin, QStringLiteral("one\r\ntwo\rthree\a")),
        (QStringList{QStringLiteral("sheet: MAIN 4x3"), QStringLiteral("sheet: TEXT 4x3 generated"), colors,
                     QStringLiteral("playlist: normal #00ff00, current #ffffff, background #000000, "
                                    "selected #0000c6, font Arial"),
                     QStringLiteral("region: normal 1 polygon, 3 points"),
                     QStringLiteral("cursor: NORMAL 32x16, 1 frame, hot spot 5,6"),
                     QStringLiteral("unreadable cursor: close.cur"), QStringLiteral("read-me: one"),
                     QStringLiteral("read-me: two"), QStringLiteral("read-me: three\uFFFD")}));
}
