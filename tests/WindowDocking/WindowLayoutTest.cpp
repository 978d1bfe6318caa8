#include "WindowDocking/WindowLayout.h"

#include "Printing.h"
#include "WindowDocking/DesktopSpace.h"
#include "tests/Support/TestFolder.h"

#include <gtest/gtest.h>

using namespace vantor;
using enum WindowKind;

TEST(WindowLayoutTest, LayoutOutlivesTheProgram) {
    const TestFolder folder;
    const QString path = folder.path("settings.ini");
    const WindowLayout layout{
        .windows = {{QStringLiteral("main"), {-120, 40.5}}, {QStringLiteral("playlist"), {0, 300}}}};
    {
        QSettings settings(path, QSettings::IniFormat);
        WindowLayoutStore(settings).save(layout);
    }
    QSettings settings(path, QSettings::IniFormat);
    EXPECT_EQ(settings.value(QStringLiteral("windowLayout")).toString().toStdString(),
              R"({"version":1,"windows":{"main":{"left":-120,"top":40.5},"playlist":{"left":0,"top":300}}})");
    EXPECT_EQ(WindowLayoutStore(settings).load(), layout);
    EXPECT_EQ(WindowLayoutStore(settings, QStringLiteral("other")).load(), std::nullopt);
    EXPECT_EQ(layout.topLeft(main), (Offset{-120, 40.5}));
    EXPECT_EQ(layout.topLeft(equalizer), std::nullopt);
}

TEST(WindowLayoutTest, WhatIsNoLayoutCountsAsAbsent) {
    const TestFolder folder;
    QSettings settings(folder.path("settings.ini"), QSettings::IniFormat);
    const std::pair<const char *, bool> rows[] = {
        {R"({"version":1,"windows":{}})", true},
        {R"({"version":1,"windows":{"browser":{"left":1,"top":2}},"later":[]})", true},
        {R"({"version":2,"windows":{}})", false},
        {R"({"version":1.5,"windows":{}})", false},
        {R"({"version":"1","windows":{}})", false},
        {R"({"windows":{}})", false},
        {R"({"version":1})", false},
        {R"({"version":1,"windows":[]})", false},
        {R"({"version":1,"windows":{"main":{"left":1}}})", false},
        {R"({"version":1,"windows":{"main":{"left":1,"top":"2"}}})", false},
        {R"({"version":1,"windows":{"main":{"left":1,"top":1e999}}})", false},
        {R"({"version":1,"windows":{})", false},
        {"[1]", false},
        {"", false},
    };
    for (const auto &[text, isLayout] : rows) {
        settings.setValue(QStringLiteral("windowLayout"), QString::fromUtf8(text));
        EXPECT_EQ(WindowLayoutStore(settings).load().has_value(), isLayout) << text;
    }
}

TEST(WindowLayoutTest, KindsAndTheirNames) {
    for (const WindowKind kind : allWindowKinds)
        EXPECT_EQ(windowKindFromRawValue(rawValue(kind)), kind);
    EXPECT_EQ(windowKindFromRawValue(u"Main"), std::nullopt);
}

TEST(DesktopSpaceTest, UpwardsCoordinatesTurnOver) {
    const DesktopSpace space{900};
    const QRectF rect(100, -50, 275, 116); // its upper edge at 66
    EXPECT_EQ(space.box(rect), (Box{100, 834, 275, 116}));
    EXPECT_EQ(space.rect(space.box(rect)), rect);
}
