#include "MusicBackendKit/MediaIDTransfer.h"

#include <QMimeData>

#include <gtest/gtest.h>

using namespace vantor;

TEST(MediaIDTransferTest, SurvivesADrag) {
    const MediaIDTransfer rows[] = {
        {},
        {{{MediaKind::album, u"library://album/1?x=\"ä\"\n"_qs},
          {MediaKind::radio, QString(u"🎵\0end"_qs)},
          {MediaKind::album, QString()}}},
    };
    for (const MediaIDTransfer &transfer : rows) {
        QMimeData data;
        EXPECT_FALSE(MediaIDTransfer::read(data));
        transfer.write(data);
        EXPECT_TRUE(data.hasFormat(u"co.kelvane.vantor.media-id"_qs));
        EXPECT_EQ(MediaIDTransfer::read(data), transfer);
    }
}

TEST(MediaIDTransferTest, WhatOthersWroteIsReadOrRefused) {
    const MediaID one{MediaKind::track, u"1"_qs};
    const std::pair<QByteArray, std::optional<MediaIDTransfer>> rows[] = {
        {R"({ "ids": [ {"rawValue": "1", "kind": "track", "more": 1} ], "version": 2 })",
         MediaIDTransfer{{one}}},
        {R"({"ids":[{"kind":"track","rawValue":"1"},{"kind":"zebra","rawValue":"1"}]})", std::nullopt},
        {R"({"ids":[{"kind":"track","rawValue":1}]})", std::nullopt},
        {R"({"ids":[{"kind":"Track","rawValue":"1"}]})", std::nullopt},
        {R"({"ids":["track:1"]})", std::nullopt},
        {R"({"ids":{"kind":"track","rawValue":"1"}})", std::nullopt},
        {R"([{"kind":"track","rawValue":"1"}])", std::nullopt},
        {R"({"ids":[)", std::nullopt},
        {QByteArray(100'000, '['), std::nullopt},
        {"", std::nullopt},
        {R"({"ids":[]})" + QByteArray(MediaIDTransfer::maxBytes, ' '), std::nullopt},
    };
    for (const auto &[bytes, expected] : rows)
        EXPECT_EQ(MediaIDTransfer::fromJson(bytes), expected)
            << bytes.first(qMin(bytes.size(), 80)).toStdString();
}
