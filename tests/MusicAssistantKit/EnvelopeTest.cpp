#include "MusicAssistantKit/Wire/MAEnvelope.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

/// One short word for each kind with what matters of it.
QString shortForm(const MAEnvelope &envelope) {
    struct Visitor {
        QString operator()(const MAEnvelope::Unknown &) const { return u"unknown"_s; }
        QString operator()(const MAServerInfo &info) const {
            return u"info %1 %2 %3"_s.arg(info.serverID)
                .arg(info.schemaVersion)
                .arg(info.name.value_or(u"-"_s));
        }
        QString operator()(const MAEnvelope::Result &result) const {
            return u"result %1 %2 %3"_s.arg(result.messageID)
                .arg(static_cast<int>(result.result.kind()))
                .arg(result.partial ? u"partial"_s : u"whole"_s);
        }
        QString operator()(const MAEnvelope::Error &error) const {
            return u"error %1 %2 %3"_s.arg(error.messageID).arg(error.code).arg(error.details);
        }
        QString operator()(const MAServerEvent &event) const {
            return u"event %1 %2"_s.arg(event.event, event.objectID.value_or(u"-"_s));
        }
    };
    return std::visit(Visitor(), envelope.content);
}

MAReader reader(const char *json) {
    return MAReader(MAJSON::parse(json).value_or(MAJSON()));
}

template <typename Read>
QString detailOf(Read read) {
    try {
        read();
    } catch (const MADecodingError &error) {
        return error.detail();
    }
    return u"nothing"_s;
}

} // namespace

TEST(MAEnvelopeTest, TellsMessagesApartByTheirMembers) {
    struct Row {
        const char *text;
        const char *expected;
    };
    // Kinds of MAJSON: 0 boolean, 1 number, 2 string, 3 array, 4 object, 5 null.
    const Row rows[] = {
        {R"({"server_id":"s","schema_version":65,"min_supported_schema_version":28,"name":"N"})",
         "info s 65 N"},
        {R"({"server_id":"s","schema_version":65,"min_supported_schema_version":28,"name":7})",
         "info s 65 -"},
        {R"({"message_id":null,"server_id":"s","schema_version":1,"min_supported_schema_version":1})",
         "info s 1 -"},
        {R"({"server_id":"s","schema_version":"65","min_supported_schema_version":28})", "unknown"},
        {R"({"server_id":"s","schema_version":65})", "unknown"},
        {R"({"server_id":"s","schema_version":"65","event":"e"})", "event e -"},
        {R"({"message_id":"1","server_id":"s","schema_version":65,"min_supported_schema_version":28})",
         "unknown"},
        {R"({"message_id":"7","result":[1]})", "result 7 3 whole"},
        {R"({"message_id":7,"result":null,"partial":true})", "result 7 5 partial"},
        {R"({"message_id":7.0,"result":{},"partial":"true"})", "result 7 4 whole"},
        {R"({"message_id":1e20,"result":0})", "result 100000000000000000000 1 whole"},
        {R"({"message_id":7.5,"result":1})", "unknown"},
        {R"({"message_id":["7"],"result":1})", "unknown"},
        {R"({"message_id":"7","result":1,"error_code":3,"event":"e"})", "result 7 1 whole"},
        {R"({"message_id":"7","error_code":23,"details":"d"})", "error 7 23 d"},
        {R"({"message_id":"7","error_code":23,"details":5})", "error 7 23 "},
        {R"({"message_id":"7","error_code":2.5})", "unknown"},
        {R"({"message_id":"7","error_code":2.5,"event":"e"})", "event e -"},
        {R"({"event":"queue_updated","object_id":"q","data":{}})", "event queue_updated q"},
        {R"({"event":"new_thing","object_id":null})", "event new_thing -"},
        {R"({"event":null})", "unknown"},
        {R"({"message_id":"7","result":1)", "unknown"},
        {R"([{"event":"e"}])", "unknown"},
        {"\"event\"", "unknown"},
        {"", "unknown"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(shortForm(MAEnvelope::decode(QString::fromUtf8(row.text))).toStdString(), row.expected);
    }
}

TEST(MAEnvelopeTest, SurvivesNestingAndFloodsOfTinyValues) {
    const QString deep =
        u"{\"event\":\"e\",\"data\":"_s + QString(200'000, u'[') + QString(200'000, u']') + u'}';
    EXPECT_EQ(MAEnvelope::decode(deep), MAEnvelope());
    const QString flood = u"{\"event\":\"e\",\"data\":["_s + u"[],"_s.repeated(6'000'000) + u"[]]}"_s;
    EXPECT_EQ(MAEnvelope::decode(flood), MAEnvelope());
    const QString wide = u"{\"event\":\"e\",\"data\":["_s + u"1,"_s.repeated(100'000) + u"1]}"_s;
    const auto envelope = MAEnvelope::decode(wide);
    const auto *event = std::get_if<MAServerEvent>(&envelope.content);
    ASSERT_TRUE(event);
    EXPECT_EQ(event->data.size(), 100'001);
}

TEST(MAReaderTest, SaysWhatIsWrongAndWhere) {
    const auto read = reader(R"({"items":[{"name":"a"},{"name":7},{}],"whole":3,"part":3.5,"none":null})");
    const auto nameOf = [&](qsizetype index) {
        const MAReader items = read.member("items");
        const MAReader item = items.entry(index);
        return detailOf([&] { (void)item.member("name").string(); });
    };
    EXPECT_EQ(nameOf(0), u"nothing"_s);
    EXPECT_EQ(nameOf(1), u"type mismatch at items.1.name"_s);
    EXPECT_EQ(nameOf(2), u"missing value at items.2.name"_s);
    EXPECT_EQ(nameOf(3), u"missing value at items.3"_s);
    EXPECT_EQ(detailOf([&] { (void)read.member("none").boolean(); }), u"missing value at none"_s);
    EXPECT_EQ(detailOf([&] { (void)read.member("part").integer(); }), u"type mismatch at part"_s);
    EXPECT_EQ(detailOf([&] { (void)read.member("whole").size(); }), u"type mismatch at whole"_s);
    EXPECT_EQ(detailOf([&] { read.member("whole").failCorrupt(); }), u"corrupt data at whole"_s);
    EXPECT_EQ(read.member("whole").integer(), 3);
    EXPECT_EQ(read.optionalInteger("part"), std::nullopt);
    EXPECT_EQ(read.optionalNumber("part"), 3.5);
}

TEST(MAJSONTest, KeepsWholeNumbersExactly) {
    const auto json = MAJSON::parse(R"({"big":9007199254740993,"zero":0,"minus":-1,"half":0.5,"far":1e300})");
    ASSERT_TRUE(json);
    EXPECT_EQ(json->member("big"_L1).integer(), 9007199254740993);
    EXPECT_EQ(json->member("zero"_L1).integer(), 0);
    EXPECT_EQ(json->member("minus"_L1).integer(), -1);
    EXPECT_EQ(json->member("half"_L1).integer(), std::nullopt);
    EXPECT_EQ(json->member("far"_L1).integer(), std::nullopt);
    EXPECT_EQ(MAJSON(QJsonObject{{u"seconds"_s, 90.0}}).encoded(), R"({"seconds":90})");
}
