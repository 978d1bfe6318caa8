#include "SendspinKit/Session/SendspinConnectionConfiguration.h"
#include "SendspinKit/Session/SendspinError.h"
#include "SendspinKit/Session/SendspinIdentity.h"
#include "SendspinKit/Wire/SendspinIncoming.h"
#include "tests/Support/TestFolder.h"

#include <QRegularExpression>
#include <QSettings>

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

using Incoming = SendspinIncoming;

/// The detail of the refusal; empty when the text was taken.
QString problemOf(const QString &text) {
    try {
        (void)Incoming::decode(text);
    } catch (const SendspinError &error) {
        EXPECT_EQ(error.errorCase(), SendspinError::Case::malformed);
        return error.detail();
    }
    return {};
}

QByteArray frameOf(qsizetype size, char type = 4) {
    QByteArray frame = QByteArray::fromHex("00fffffffffffffffe") + "sound";
    frame[0] = type;
    return frame.left(size);
}

} // namespace

TEST(SendspinIncoming, TellsMessagesApart) {
    struct Row {
        QString text;
        decltype(Incoming::content) expected;
    };
    const Row rows[] = {
        {uR"({"type":"server/hello","payload":{"server_id":"s","name":"n","version":1,)"
         R"("active_roles":["player@v1"],"connection_reason":"playback","new":{}}})"_s,
         SendspinServerHello{u"s"_s, u"n"_s, 1, {u"player@v1"_s}, u"playback"_s}},
        {uR"({"type":"server/time","payload":{"client_transmitted":-1,"server_received":1700000000000001,)"
         R"("server_transmitted":3}})"_s,
         Incoming::ServerTime{-1, 1'700'000'000'000'001, 3}},
        {uR"({"type":"stream/start","payload":{"player":{"codec":"flac","sample_rate":44100,"channels":2,)"
         R"("bit_depth":24,"codec_header":"ZkxhQw=="},"server_transmitted":7}})"_s,
         Incoming::StreamStart{{u"flac"_s, 44'100, 2, 24, "fLaC"}, 7}},
        {uR"({"type":"stream/start","payload":{"player":{"codec":"pcm","sample_rate":48000.0,"channels":1,)"
         R"("bit_depth":16,"codec_header":null}}})"_s,
         Incoming::StreamStart{{u"pcm"_s, 48'000, 1, 16, {}}, {}}},
        {uR"({"type":"stream/clear","payload":{}})"_s, Incoming::StreamClear{}},
        {uR"({"type":"stream/end","payload":{"roles":["artwork","player"]}})"_s, Incoming::StreamEnd{}},
        {uR"({"type":"stream/end","payload":{"roles":["artwork"]}})"_s, Incoming::Ignored{u"stream/end"_s}},
        {uR"({"type":"group/update","payload":{"playback_state":"playing","group_id":null}})"_s,
         SendspinGroupUpdate{u"playing"_s, QString(), {}}},
        {uR"({"type":"server/command","payload":{"player":{"command":"volume","volume":130}}})"_s,
         Incoming::ServerCommand{u"volume"_s, 100, {}, {}}},
        {uR"({"type":"server/command","payload":{"player":{"command":"mute","mute":true}}})"_s,
         Incoming::ServerCommand{u"mute"_s, {}, true, {}}},
        {uR"({"type":"server/command","payload":{"player":{"command":"set_static_delay",)"
         R"("static_delay_ms":9999}}})"_s,
         Incoming::ServerCommand{u"set_static_delay"_s, {}, {}, 5000}},
        {uR"({"type":"server/command","payload":{"player":{"command":"set_output_delay",)"
         R"("output_delay_ms":-3}}})"_s,
         Incoming::ServerCommand{u"set_output_delay"_s, {}, {}, 0}},
        {uR"({"type":"server/surprise"})"_s, Incoming::Ignored{u"server/surprise"_s}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(qPrintable(row.text));
        EXPECT_EQ(Incoming::decode(row.text).content, row.expected);
    }
}

TEST(SendspinIncoming, SaysWhatIsMalformed) {
    struct Row {
        QString text;
        const char *detail;
    };
    const QString start = uR"({"type":"stream/start","payload":{"player":{"codec":"pcm","sample_rate":%1,)"
                          R"("channels":%2,"bit_depth":%3,"codec_header":%4}}})"_s;
    const Row rows[] = {
        {u""_s, "no JSON object"},
        {u"{\"type\":"_s, "no JSON object"},
        {u"[]"_s, "no JSON object"},
        {u"{}"_s, "no type"},
        {u"{\"type\":7}"_s, "no type"},
        {uR"({"type":"server/time"})"_s, "server/time: missing value at payload"},
        {uR"({"type":"server/time","payload":[]})"_s, "server/time: type mismatch at payload"},
        {uR"({"type":"server/time","payload":{"client_transmitted":1,"server_received":2.5,)"
         R"("server_transmitted":3}})"_s,
         "server/time: type mismatch at payload.server_received"},
        {uR"({"type":"server/time","payload":{"client_transmitted":9000000000000000000,"server_received":2,)"
         R"("server_transmitted":3}})"_s,
         "server/time: corrupt data at payload.client_transmitted"},
        {uR"({"type":"server/hello","payload":{"server_id":"s","name":"n","version":1,"active_roles":[1]}})"_s,
         "server/hello: type mismatch at payload.active_roles.0"},
        {start.arg(u"0"_s, u"2"_s, u"16"_s, u"null"_s),
         "stream/start: corrupt data at payload.player.sample_rate"},
        {start.arg(u"48000"_s, u"65"_s, u"16"_s, u"null"_s),
         "stream/start: corrupt data at payload.player.channels"},
        {start.arg(u"48000"_s, u"2"_s, u"\"x\""_s, u"null"_s),
         "stream/start: type mismatch at payload.player.bit_depth"},
        {start.arg(u"48000"_s, u"2"_s, u"16"_s, u"\"%%\""_s),
         "stream/start: corrupt data at payload.player.codec_header"},
        {uR"({"type":"stream/clear","payload":{"roles":"player"}})"_s,
         "stream/clear: type mismatch at payload.roles"},
        {uR"({"type":"group/update","payload":{"group_name":3}})"_s,
         "group/update: type mismatch at payload.group_name"},
        {uR"({"type":"server/command","payload":{"player":{"command":"mute","mute":1}}})"_s,
         "server/command: type mismatch at payload.player.mute"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(qPrintable(row.text));
        EXPECT_EQ(problemOf(row.text), QLatin1StringView(row.detail));
    }
}

TEST(SendspinIncoming, CutsAudioFrames) {
    for (const qsizetype size : {0, 1, 8}) {
        SCOPED_TRACE(size);
        EXPECT_THROW((void)Incoming::decodeAudio(frameOf(size)), SendspinError);
    }
    EXPECT_EQ(Incoming::decodeAudio(frameOf(9)), (SendspinAudioChunk{-2, {}}));
    EXPECT_EQ(Incoming::decodeAudio(frameOf(14)), (SendspinAudioChunk{-2, "sound"}));
    EXPECT_EQ(Incoming::decodeAudio(frameOf(14, 8)), std::nullopt) << "a picture";
}

TEST(SendspinError, HasASentenceForEachCase) {
    EXPECT_EQ(SendspinError::unauthorized(u"expired"_s).description(),
              u"Music Assistant refused the Sendspin connection (token)."_s);
    EXPECT_EQ(SendspinError::handshake(u"x"_s).description(), u"The Sendspin handshake failed (x)."_s);
    EXPECT_EQ(SendspinError::malformed(u"x"_s, {}).description(),
              u"Music Assistant sent a malformed Sendspin message (x)."_s);
    EXPECT_EQ(SendspinError::timeout(u"x"_s).description(), u"Music Assistant did not answer in time (x)."_s);
    EXPECT_EQ(SendspinError::transport(u"x"_s).description(), u"The Sendspin connection failed (x)."_s);
    EXPECT_EQ(SendspinError::roleRejected().description(),
              u"Music Assistant did not accept Vantor as a Sendspin player."_s);
}

TEST(SendspinIdentity, StaysTheSame) {
    const TestFolder folder;
    const QString path = folder.path("settings.conf");
    QString first;
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.setValue(u"sendspin.clientID"_s, QString());
        const auto identity = SendspinIdentity::load(settings, u"desk"_s);
        EXPECT_EQ(identity.name, u"Vantor (desk)"_s);
        first = identity.clientID;
    }
    static const QRegularExpression pattern(u"^vantor-[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$"_s);
    EXPECT_TRUE(pattern.match(first).hasMatch()) << qPrintable(first);
    QSettings settings(path, QSettings::IniFormat);
    EXPECT_EQ(SendspinIdentity::load(settings, u"lap"_s), (SendspinIdentity{first, u"Vantor (lap)"_s}));
}
