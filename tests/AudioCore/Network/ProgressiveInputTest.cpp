#include "AudioCore/Network/ProgressiveInput.h"

#include "AudioCore/Decoding/AudioFileDecoder.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/HttpTestServer.h"
#include "tests/Support/TestFolder.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

using Request = HttpTestServer::Request;
using Connection = HttpTestServer::Connection;

const DownloadTimings impatient{.connect = 500ms, .stall = 200ms, .retries = {10ms, 10ms, 10ms}};

// No two places of it look alike.
QByteArray noise(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 1;
    for (char &byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

QByteArray readAll(AudioInput &input, qsizetype most = 1 << 30) {
    QByteArray all;
    std::array<char, 10'000> piece;
    while (all.size() < most) {
        const std::size_t count = input.read(piece);
        if (count == 0)
            break;
        all.append(piece.data(), static_cast<qsizetype>(count));
    }
    return all;
}

std::optional<ProgressiveError> failureOf(const QUrl &url) {
    try {
        ProgressiveInput input(url, impatient);
        readAll(input, 100'000'000);
    } catch (const ProgressiveError &error) {
        return error;
    }
    return std::nullopt;
}

} // namespace

TEST(ProgressiveInputTest, AFileArrivesWholeWhateverTheServerDoes) {
    const QByteArray body = noise(400'000);
    const auto file = [&](const HttpFileOptions &options) {
        return [&body, options](const Request &request, Connection &connection) {
            HttpTestServer::sendFile(request, connection, body, options);
        };
    };
    const QByteArray tag = "ETag: \"a\"\r\n";
    const std::pair<const char *, HttpTestServer::Handler> rows[] = {
        {"plainly", file({})},
        {"without ranges", file({.ranges = false})},
        {"with drops", file({.closeAfter = 150'000, .headers = tag})},
        {"with stalls", file({.stallAfter = 150'000, .headers = tag})},
        {"in chunks",
         [&](const Request &, Connection &connection) {
             connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
             for (qsizetype at = 0; at < body.size(); at += 7000) {
                 const QByteArray piece = body.mid(at, 7000);
                 connection.send(QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n");
             }
             connection.send("0\r\n\r\n");
         }},
        {"until it closes",
         [&](const Request &, Connection &connection) {
             connection.send("HTTP/1.0 200 OK\r\nContent-Type: audio/flac\r\n\r\n" + body);
         }},
        {"with a drop and no ranges",
         [&](const Request &request, Connection &connection) {
             HttpTestServer::sendFile(request, connection, body,
                                      {.ranges = false, .closeAfter = request.number == 0 ? 150'000 : -1});
         }},
        {"elsewhere",
         [&](const Request &request, Connection &connection) {
             if (request.path == "/song")
                 connection.send("HTTP/1.1 302 Found\r\nLocation: /b\r\nContent-Length: 0\r\n\r\n");
             else
                 HttpTestServer::sendFile(request, connection, body);
         }},
        {"with trouble on the way",
         [&](const Request &request, Connection &connection) {
             if (request.number == 1)
                 connection.send("HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n");
             else
                 HttpTestServer::sendFile(request, connection, body, {.closeAfter = 390'000});
         }},
    };
    for (const auto &[name, handler] : rows) {
        SCOPED_TRACE(name);
        HttpTestServer server(handler);
        ProgressiveInput input(server.url(), impatient);
        EXPECT_TRUE(readAll(input) == body);
        EXPECT_EQ(server.requests().front().headers.value("icy-metadata"), "1");
    }
}

TEST(ProgressiveInputTest, WhatCannotBeReadIsAFailure) {
    const QByteArray body = noise(200'000);
    const auto text = [](const QByteArray &bytes) {
        return [bytes](const Request &, Connection &connection) { connection.send(bytes); };
    };
    const std::pair<const char *, HttpTestServer::Handler> rows[] = {
        {"missing", text("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone")},
        {"server trouble", text("HTTP/1.1 500 No\r\n\r\n")},
        {"no web server", text(QByteArray(100'000, 'x'))},
        {"nothing", text({})},
        {"circular", text("HTTP/1.1 302 Found\r\nLocation: /song\r\nContent-Length: 0\r\n\r\n")},
        {"to a local file", text("HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\n\r\n")},
        {"silent", [](const Request &, Connection &connection) { connection.stall(); }},
        {"shorter than it says",
         [&](const Request &request, Connection &connection) {
             HttpTestServer::sendFile(request, connection, body, {.claimedSize = 300'000});
         }},
        {"another file after a drop",
         [&](const Request &request, Connection &connection) {
             HttpTestServer::sendFile(
                 request, connection, body,
                 {.closeAfter = 50'000,
                  .headers = "ETag: \"" + QByteArray::number(request.number) + "\"\r\n"});
         }},
        {"a head without end",
         [](const Request &, Connection &connection) {
             connection.send("HTTP/1.1 200 OK\r\n");
             while (connection.send("X-Filler: " + QByteArray(1000, 'x') + "\r\n")) {
             }
         }},
    };
    for (const auto &[name, handler] : rows) {
        SCOPED_TRACE(name);
        const HttpTestServer server(handler);
        EXPECT_EQ(failureOf(server.url()), ProgressiveError::readFailure());
    }
    EXPECT_EQ(failureOf(QUrl(QStringLiteral("http://127.0.0.1:1/"))), ProgressiveError::readFailure());
}

TEST(ProgressiveInputTest, SeeksAskForWhatIsMissingAndOnlyForThat) {
    const QByteArray body = noise(4'000'000);
    HttpTestServer server([&](const Request &request, Connection &connection) {
        // Slowly, so that the end is not there by itself.
        HttpTestServer::sendFile(request, connection, body, {.closeAfter = 0});
        for (qint64 at = request.rangeStart.value_or(0);
             at < body.size() && connection.send(body.mid(at, 20'000)) && connection.pause(1); at += 20'000) {
        }
    });
    ProgressiveInput input(server.url());
    ASSERT_TRUE(input.isSeekable());
    for (const qint64 place : {0, 3'999'000, 1'000, 2'000'001, 3'998'000}) {
        SCOPED_TRACE(place);
        ASSERT_TRUE(input.seek(place));
        EXPECT_TRUE(readAll(input, 1000).startsWith(body.mid(place, 1000)));
    }
    ASSERT_TRUE(input.seek(4'000'000));
    EXPECT_EQ(readAll(input).size(), 0);
    EXPECT_LE(server.requests().size(), 4U) << "the ends that were read once are there";
    ASSERT_TRUE(input.seek(0));
    EXPECT_TRUE(readAll(input) == body);
}

TEST(ProgressiveInputTest, WithoutPartsOnlyWhatHasComeCanBeReached) {
    const QByteArray body = noise(4'000'000);
    const HttpTestServer server([&](const Request &request, Connection &connection) {
        HttpTestServer::sendFile(request, connection, body, {.ranges = false, .stallAfter = 500'000});
    });
    ProgressiveInput input(server.url());
    EXPECT_EQ(readAll(input, 500'000), body.first(500'000));
    EXPECT_FALSE(input.isSeekable());
    EXPECT_FALSE(input.seek(3'000'000));
    EXPECT_TRUE(input.seek(1234));
    EXPECT_TRUE(readAll(input, 300'000).startsWith(body.mid(1234, 300'000)));
}

TEST(ProgressiveInputTest, AStalledReadEndsWhenItIsTold) {
    const HttpTestServer server([](const Request &, Connection &connection) { connection.stall(); });
    std::stop_source stop;
    std::jthread stopper([&] {
        std::this_thread::sleep_for(50ms);
        stop.request_stop();
    });
    const auto start = std::chrono::steady_clock::now();
    {
        ProgressiveInput input(server.url());
        input.setStopToken(stop.get_token());
        EXPECT_THROW(readAll(input), AudioInput::Interrupted);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 300ms) << "its end does not wait either";
}

TEST(ProgressiveInputTest, RadioIsFreedOfItsTitlesAndGoesOnAfterADrop) {
    const QByteArray sound = noise(300'000);
    const std::vector<QByteArray> blocks{"StreamTitle='One - It's here';StreamUrl='';", "",
                                         "StreamTitle='Zwei \xe4';"};
    for (const QByteArray status : {"HTTP/1.0 200 OK", "ICY 200 OK"}) {
        SCOPED_TRACE(status.constData());
        HttpTestServer server([&](const Request &request, Connection &connection) {
            connection.send(status + "\r\nicy-name: The Station\r\nicy-br:128\r\nicy-metaint: 64000\r\n\r\n" +
                            HttpTestServer::withMetadata(sound, 64'000, blocks));
            if (request.number > 20)
                connection.stall();
        });
        ProgressiveInput input(server.url(), impatient);
        EXPECT_EQ(input.size(), std::nullopt);
        EXPECT_TRUE(readAll(input, 70'000).startsWith(sound.first(70'000)));
        const auto status1 = input.download()->status();
        EXPECT_EQ(status1.title, QStringLiteral("One - It's here"));
        EXPECT_EQ(status1.stationName, QStringLiteral("The Station"));
        EXPECT_EQ(status1.bitrate, 128);
        EXPECT_TRUE(status1.isLive);
        const QByteArray rest = readAll(input, 500'000);
        EXPECT_EQ(input.download()->status().title, QStringLiteral("Zwei ä"));
        EXPECT_TRUE(rest.contains(sound.first(200'000))) << "sent anew after the drop";
    }
}

TEST(ProgressiveInputTest, AnUnreadRadioTakesNoMoreThanItsShare) {
    std::atomic<qint64> sent = 0;
    const HttpTestServer server([&](const Request &, Connection &connection) {
        connection.send("ICY 200 OK\r\nicy-name: x\r\n\r\n");
        while (sent < 200'000'000 && connection.send(QByteArray(10'000, 'x')))
            sent += 10'000;
    });
    ProgressiveInput input(server.url());
    EXPECT_TRUE(input.info().isLive);
    qint64 before = -1;
    while (before != sent) {
        before = sent;
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_LT(sent, 20'000'000) << "the rest lies in the system's buffers";
}

TEST(ProgressiveInputTest, SongsOfAllFormatsDecodeWhileTheyDownload) {
    const TestFolder folder;
    for (const char *name : {"a.wav", "a.flac", "a.mp3", "a.ogg", "a.opus", "a.m4a", "a.mka"}) {
        SCOPED_TRACE(name);
        writeAudioFile(folder.path(name), {.seconds = 4, .sampleRate = 48000});
        const QByteArray body = TestFolder::read(folder.path(name));
        for (const bool ranges : {true, false}) {
            SCOPED_TRACE(ranges);
            const HttpTestServer server([&](const Request &request, Connection &connection) {
                HttpTestServer::sendFile(request, connection, body,
                                         {.ranges = ranges, .closeAfter = ranges ? body.size() / 3 : -1});
            });
            const auto input = std::make_shared<ProgressiveInput>(server.url(), impatient);
            try {
                AudioFileDecoder decoder(input, 48000);
                AudioFileDecoder local(folder.path(name), 48000);
                // An Ogg file says at its end how long it is.
                const bool isKnown = ranges || std::string_view(name).substr(2, 1) != "o";
                EXPECT_NEAR(decoder.duration(), isKnown ? local.duration() : 0, 0.1);
                std::size_t frames = 0;
                std::size_t expected = 0;
                for (std::size_t count = 1; count > 0; frames += count)
                    count = decoder.read().size();
                for (std::size_t count = 1; count > 0; expected += count)
                    count = local.read().size();
                EXPECT_EQ(frames, expected);
                decoder.seek(2);
                local.seek(2);
                const auto heard = decoder.read();
                const auto source = local.read();
                EXPECT_TRUE(std::ranges::equal(heard, source));
            } catch (const ProgressiveError &error) {
                // The maker of the file puts the index at its end.
                EXPECT_EQ(error, ProgressiveError::notStreamable());
                EXPECT_TRUE(!ranges && std::string_view(name) == "a.m4a");
            }
        }
    }
}

TEST(ProgressiveInputTest, WhatIsNoSongHasItsSentence) {
    const TestFolder folder;
    writeAudioFile(folder.path("a.wav"));
    QByteArray unknownCodec = TestFolder::read(folder.path("a.wav"));
    unknownCodec.replace(20, 2, "zz");
    const std::tuple<const char *, QByteArray, ProgressiveError, const char *> rows[] = {
        {"noise", noise(100'000), ProgressiveError::cannotOpen(), "This file is not a supported audio file."},
        {"page", "<html>no</html>", ProgressiveError::cannotOpen(),
         "This file is not a supported audio file."},
        {"segments", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\nhttp://127.0.0.1:9/a.ts\n",
         ProgressiveError::cannotOpen(), "This file is not a supported audio file."},
        {"codec", unknownCodec, ProgressiveError::formatUnsupported(),
         "This audio file's format is not supported."},
    };
    for (const auto &[name, body, error, sentence] : rows) {
        SCOPED_TRACE(name);
        const HttpTestServer server([&bytes = body](const Request &request, Connection &connection) {
            HttpTestServer::sendFile(request, connection, bytes);
        });
        try {
            AudioFileDecoder decoder(std::make_shared<ProgressiveInput>(server.url(), impatient), 44100);
            ADD_FAILURE() << "opened";
        } catch (const ProgressiveError &thrown) {
            EXPECT_EQ(thrown, error);
            EXPECT_EQ(thrown.description(), QLatin1String(sentence));
        }
        EXPECT_LE(server.requests().size(), 4U);
    }
}
