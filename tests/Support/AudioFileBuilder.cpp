#include "tests/Support/AudioFileBuilder.h"

#include <QFileInfo>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

#include <numbers>
#include <stdexcept>

namespace vantor {

namespace {

void check(int result, const char *what) {
    if (result >= 0)
        return;
    char reason[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(result, reason, sizeof reason);
    throw std::runtime_error(std::string(what) + ": " + reason);
}

const AVCodec *encoderFor(const QString &extension) {
    static const QMap<QString, const char *> names{
        {QStringLiteral("wav"), "pcm_s16le"}, {QStringLiteral("aiff"), "pcm_s16be"},
        {QStringLiteral("flac"), "flac"},     {QStringLiteral("mp3"), "libmp3lame"},
        {QStringLiteral("ogg"), "libvorbis"}, {QStringLiteral("opus"), "libopus"},
        {QStringLiteral("m4a"), "aac"},       {QStringLiteral("mka"), "flac"}};
    const AVCodec *encoder = avcodec_find_encoder_by_name(names.value(extension, ""));
    if (!encoder)
        throw std::runtime_error("no encoder for " + extension.toStdString());
    return encoder;
}

struct Writer {
    AVFormatContext *file = nullptr;
    AVCodecContext *encoder = nullptr;
    SwrContext *converter = nullptr;
    AVPacket *packet = av_packet_alloc();

    ~Writer() {
        av_packet_free(&packet);
        swr_free(&converter);
        avcodec_free_context(&encoder);
        if (file)
            avio_closep(&file->pb);
        avformat_free_context(file);
    }

    void open(const QString &path, const AudioFileContent &content) {
        const QByteArray name = "file:" + path.toUtf8();
        check(avformat_alloc_output_context2(&file, nullptr, nullptr, name), "format");
        const AVCodec *codec = encoderFor(QFileInfo(path).suffix());
        encoder = avcodec_alloc_context3(codec);
        av_channel_layout_default(&encoder->ch_layout, content.channels);
        encoder->sample_rate = content.sampleRate;
        encoder->sample_fmt = codec->sample_fmts[0];
        encoder->time_base = {1, content.sampleRate};
        encoder->bit_rate = 128000;
        if (file->oformat->flags & AVFMT_GLOBALHEADER)
            encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        check(avcodec_open2(encoder, codec, nullptr), "encoder");
        check(swr_alloc_set_opts2(&converter, &encoder->ch_layout, encoder->sample_fmt, content.sampleRate,
                                  &encoder->ch_layout, AV_SAMPLE_FMT_FLT, content.sampleRate, 0, nullptr),
              "converter");
        check(swr_init(converter), "converter");

        AVStream *stream = avformat_new_stream(file, nullptr);
        stream->time_base = encoder->time_base;
        check(avcodec_parameters_from_context(stream->codecpar, encoder), "stream");
        for (auto tag = content.tags.begin(); tag != content.tags.end(); ++tag) {
            // Ogg keeps its tags with the stream, the others with the file.
            for (AVDictionary **tags : {&file->metadata, &stream->metadata})
                av_dict_set(tags, tag.key().toUtf8(), tag.value().toUtf8(), 0);
        }
        check(avio_open(&file->pb, name, AVIO_FLAG_WRITE), "file");
        AVDictionary *options = nullptr;
        av_dict_set(&options, "write_id3v2", "1", 0); // AIFF would not keep an artist or album otherwise
        const int result = avformat_write_header(file, &options);
        av_dict_free(&options);
        check(result, "header");
    }

    /// A null frame flushes the encoder.
    void encode(const AVFrame *frame) {
        check(avcodec_send_frame(encoder, frame), "encode");
        while (avcodec_receive_packet(encoder, packet) >= 0) {
            av_packet_rescale_ts(packet, encoder->time_base, file->streams[0]->time_base);
            packet->stream_index = 0;
            check(av_interleaved_write_frame(file, packet), "write");
        }
    }

    void encodeSine(const AudioFileContent &content) {
        const auto total = static_cast<qint64>(content.seconds * content.sampleRate);
        const int block = encoder->frame_size > 0 ? encoder->frame_size : 1024;
        std::vector<float> samples;
        for (qint64 start = 0; start < total; start += block) {
            const int count = static_cast<int>(std::min<qint64>(block, total - start));
            samples.clear();
            for (qint64 i = start; i < start + count; ++i) {
                const double phase =
                    2 * std::numbers::pi * content.frequency * static_cast<double>(i) / content.sampleRate;
                samples.insert(samples.end(), static_cast<size_t>(content.channels),
                               static_cast<float>(content.amplitude * std::sin(phase)));
            }
            AVFrame *frame = av_frame_alloc();
            frame->nb_samples = count;
            frame->format = encoder->sample_fmt;
            frame->sample_rate = content.sampleRate;
            frame->pts = start;
            av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout);
            check(av_frame_get_buffer(frame, 0), "frame");
            const auto *input = reinterpret_cast<const uint8_t *>(samples.data());
            check(swr_convert(converter, frame->extended_data, count, &input, count), "convert");
            encode(frame);
            av_frame_free(&frame);
        }
        encode(nullptr);
        check(av_write_trailer(file), "trailer");
    }
};

} // namespace

void writeAudioFile(const QString &path, const AudioFileContent &content) {
    Writer writer;
    writer.open(path, content);
    writer.encodeSine(content);
}

} // namespace vantor
