#include "AudioCore/Network/HttpParsing.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(HttpParsingTest, HeadsAreReadOrRefused) {
    const std::tuple<const char *, QByteArray, std::optional<int>> rows[] = {
        {"icy", "ICY 200 OK\r\nicy-name:x\r\n\r\nsound", 200},
        {"http", "HTTP/1.0 404 Gone\nA: b\n\n", 404},
        {"unfinished", "ICY 200 OK\r\nicy-na", std::nullopt},
        {"no status", "ICY OK\r\n\r\n", 0},
        {"other", "SSH-2.0\r\n\r\n", 0},
        {"empty", "", std::nullopt},
        {"endless", QByteArray(HttpParsing::longestHead, 'x'), 0},
    };
    for (const auto &[name, bytes, status] : rows) {
        SCOPED_TRACE(name);
        const auto head = HttpParsing::parseHead(bytes);
        EXPECT_EQ(head ? std::optional(head->status) : std::nullopt, status);
    }
    EXPECT_EQ(HttpParsing::parseHead("ICY 200 OK\r\nICY-Name: A: b\r\n\r\nsound"),
              (HttpParsing::Head{200, {{"icy-name", "A: b"}}, 30}));
}

TEST(HttpParsingTest, BodiesOfAllKindsTakeAnySlicing) {
    enum End { complete, broken, more };
    const std::tuple<const char *, QByteArray, QByteArray, QByteArray, End> rows[] = {
        {"counted", "Content-Length: 5", "helloXX", "hello", complete},
        {"cut", "Content-Length: 9", "hello", "hello", more},
        {"empty", "Content-Length: 0", "", "", complete},
        {"chunks", "Transfer-Encoding: Chunked", "3\r\nhel\r\n2;a=b\r\nlo\r\n0\r\n\r\n", "hello", complete},
        {"trailer", "Transfer-Encoding: chunked", "5\r\nhello\r\n0\r\nA: b\r\n\r\nX", "hello", complete},
        {"chunk cut", "Transfer-Encoding: chunked", "5\r\nhel", "hel", more},
        {"no size", "Transfer-Encoding: chunked", "zz\r\nhello", "", broken},
        {"negative", "Transfer-Encoding: chunked", "-5\r\nhello", "", broken},
        {"too long", "Transfer-Encoding: chunked", "5\r\nhelloXX\r\n0\r\n\r\n", "hello", broken},
        {"endless line", "Transfer-Encoding: chunked", QByteArray(400, '1'), "", broken},
    };
    for (const auto &[name, header, stream, body, end] : rows) {
        SCOPED_TRACE(name);
        const auto head = HttpParsing::parseHead("HTTP/1.1 200 OK\r\n" + header + "\r\n\r\n");
        ASSERT_TRUE(head);
        for (qsizetype slice = 1; slice <= stream.size() + 1; ++slice) {
            HttpParsing::Body filter(*head);
            QByteArray found;
            for (qsizetype at = 0; at < stream.size(); at += slice) {
                const QByteArray piece = stream.mid(at, slice);
                for (QByteArrayView bytes = piece; !bytes.isEmpty();)
                    found.append(filter.take(bytes));
            }
            ASSERT_EQ(found, body) << slice;
            ASSERT_EQ(filter.hasEnded(), end != more) << slice;
            ASSERT_EQ(filter.isComplete(), end == complete) << slice;
        }
    }
}
