#include "MusicAssistantKit/Backend/LibraryMapping.h"
#include "MusicAssistantKit/Wire/MAEnvelope.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <benchmark/benchmark.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A page of tracks with the members that servers send.
QString page(int count) {
    QJsonArray tracks;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i);
        const QJsonObject mapping{{u"item_id"_s, number},
                                  {u"provider_domain"_s, u"filesystem_local"_s},
                                  {u"available"_s, true},
                                  {u"provider_instance"_s, u"filesystem_local--abc"_s},
                                  {u"audio_format"_s, QJsonObject{{u"content_type"_s, u"flac"_s},
                                                                  {u"sample_rate"_s, 44100},
                                                                  {u"bit_depth"_s, 16},
                                                                  {u"bit_rate"_s, 900}}}};
        const QJsonObject image{{u"type"_s, u"thumb"_s},
                                {u"path"_s, u"Artist/Album %1/cover.jpg"_s.arg(i / 10)}};
        tracks.append(QJsonObject{{u"item_id"_s, number},
                                  {u"provider"_s, u"library"_s},
                                  {u"name"_s, u"Title of track %1 “live”"_s.arg(i)},
                                  {u"uri"_s, u"library://track/%1"_s.arg(i)},
                                  {u"media_type"_s, u"track"_s},
                                  {u"duration"_s, 200 + i % 60},
                                  {u"favorite"_s, i % 7 == 0},
                                  {u"provider_mappings"_s, QJsonArray{mapping}},
                                  {u"metadata"_s, QJsonObject{{u"images"_s, QJsonArray{image}}}}});
    }
    const QJsonObject message{{u"message_id"_s, u"12"_s}, {u"result"_s, tracks}, {u"partial"_s, false}};
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

void parseAlone(benchmark::State &state) {
    const QByteArray text = page(static_cast<int>(state.range(0))).toUtf8();
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(text));
    state.SetBytesProcessed(state.iterations() * text.size());
}

/// The frame as it arrives, down to the name of every item.
void decodeResult(benchmark::State &state) {
    const QString text = page(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const MAEnvelope envelope = MAEnvelope::decode(text);
        const MAReader reader(std::get<MAEnvelope::Result>(envelope.content).result);
        qsizetype letters = 0;
        for (qsizetype i = 0; i < reader.size(); ++i)
            letters += reader.entry(i).member("name").string().size();
        benchmark::DoNotOptimize(letters);
    }
    state.SetBytesProcessed(state.iterations() * text.toUtf8().size());
}

/// The same, down to the library's records.
void decodeTracks(benchmark::State &state) {
    const QString text = page(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const MAEnvelope envelope = MAEnvelope::decode(text);
        const MAReader reader(std::get<MAEnvelope::Result>(envelope.content).result);
        QList<LibraryTrack> tracks;
        for (qsizetype i = 0; i < reader.size(); ++i)
            tracks.append(malibrary::readTrack(reader.entry(i)));
        benchmark::DoNotOptimize(tracks);
    }
    state.SetBytesProcessed(state.iterations() * text.toUtf8().size());
}

BENCHMARK(parseAlone)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeResult)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeTracks)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);

} // namespace
