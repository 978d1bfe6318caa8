#include "skintool/SkinReport.h"

#include "SkinKit/Loading/Skin.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(SkinReportTest, ListsTheSkinInItsOrder) {
    Skin skin;
    const QImage sheet(4, 3, QImage::Format_RGBX8888);
    skin.sheets = {{u"TEXT"_qs, sheet}, {u"MAIN"_qs, sheet}};
    skin.generatedSheets = {u"TEXT"_qs};
    skin.warnings = {u"z"_qs, u"a"_qs};
    skin.fallbacks = {u"colour '\x1b[31m' unusable"_qs};
    skin.visColors.fill({1, 2, 255});
    skin.region.sections = {{u"normal"_qs, {{{0, 0}, {1, 0}, {0, 1}}}}};
    skin.cursors.cursors = {{u"NORMAL"_qs, SkinCursor{{{QImage(32, 16, sheet.format()), {5, 6}}}, {}}}};
    skin.cursors.unreadable = {u"close.cur"_qs};

    EXPECT_EQ(
        SkinReport::summary(u"a.wsz"_qs, skin),
        (QStringList{u"a.wsz: 2 sheets (1 generated), 1 cursor, 2 warnings, 1 fallback"_qs, u"warning: z"_qs,
                     u"warning: a"_qs, u"fallback: colour '\uFFFD[31m' unusable"_qs}));
    const QString colors = u"visualizer:"_qs + u" #0102ff"_qs.repeated(24);
    EXPECT_EQ(
        SkinReport::details(skin, u"one\r\ntwo\rthree\a"_qs),
        (QStringList{u"sheet: MAIN 4x3"_qs, u"sheet: TEXT 4x3 generated"_qs, colors,
                     u"playlist: normal #00ff00, current #ffffff, background #000000, "
                     "selected #0000c6, font Arial"_qs,
                     u"region: normal 1 polygon, 3 points"_qs,
                     u"cursor: NORMAL 32x16, 1 frame, hot spot 5,6"_qs, u"unreadable cursor: close.cur"_qs,
                     u"read-me: one"_qs, u"read-me: two"_qs, u"read-me: three\uFFFD"_qs}));
}
