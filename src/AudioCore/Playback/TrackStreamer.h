#pragma once

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Decoding/AudioFileDecoder.h"
#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/PlaybackFormat.h"
#include "Platform/ThreadSafety.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace vantor {

/// Opens and decodes files on a thread of its own and keeps a player node filled. Only the newest request
/// counts: one that was replaced before its turn is never opened. Main thread.
class TrackStreamer : public QObject {
    Q_OBJECT

  public:
    struct Request {
        std::uint32_t generation = 0;
        QString path;
        double start = 0; ///< seconds; above 0 a file that is open already is used again
        int sampleRate = 0;
        std::shared_ptr<PlayerNode> node; ///< none: rest and close the file
    };

    /// The first sound of a request is in the node, or the request failed.
    struct Report {
        std::uint32_t generation = 0;
        PlaybackFormat format;
        double duration = 0; ///< seconds; 0 when unknown
        std::optional<AudioCoreError> error;
    };

    /// Reports arrive through the event loop of the thread that makes the streamer.
    explicit TrackStreamer(std::function<void(const Report &)> onReport);
    /// Waits for the decoder to finish its present step.
    ~TrackStreamer() override;

    void play(Request request);
    void rest() { play({}); }

  Q_SIGNALS:
    void reported();

  private:
    enum class Wait { none, shortly, forRoom, forRequest };

    void run();
    [[nodiscard]] bool takeRequest(Wait wait);
    [[nodiscard]] Wait work();
    void begin();
    [[nodiscard]] Wait fill();
    void report(Report report);
    void reportBegin();
    void reportFailure(const AudioCoreError &error);
    void deliverReports();

    const std::function<void(const Report &)> m_onReport;
    Mutex m_mutex;
    std::condition_variable m_requested;
    std::optional<Request> m_pending VANTOR_GUARDED_BY(m_mutex);
    std::vector<Report> m_reports VANTOR_GUARDED_BY(m_mutex);
    bool m_quitting VANTOR_GUARDED_BY(m_mutex) = false;

    // Decode thread's.
    Request m_request;
    bool m_isNew = false;
    bool m_isReported = false;
    bool m_hasBegun = false;
    bool m_atEnd = false;
    std::unique_ptr<AudioFileDecoder> m_decoder;
    QString m_decoderPath;
    int m_decoderRate = 0;
    std::span<const StereoFrame> m_block; ///< decoded and not yet in the node

    std::thread m_thread; ///< last: it uses the others
};

} // namespace vantor
