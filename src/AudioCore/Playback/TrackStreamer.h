#pragma once

#include "AudioCore/Decoding/AudioFileDecoder.h"
#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Network/DownloadBuffer.h"
#include "AudioCore/Playback/PlaybackError.h"
#include "AudioCore/PlaybackFormat.h"
#include "AudioCore/Queue/TrackRange.h"
#include "Platform/ThreadSafety.h"

#include <QObject>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace vantor {

/// Opens and decodes files and streams on a thread of its own and keeps a player node filled. Only the newest
/// request counts: one that was replaced before its turn is never opened. What is to follow a request is
/// begun as soon as that one is decoded to its end, right behind it in the node. Main thread.
class TrackStreamer : public QObject {
    Q_OBJECT

  public:
    struct Request {
        std::uint32_t generation = 0;
        QUrl url;                             ///< a local file, or what ProgressiveInput takes
        std::optional<TrackRange> range = {}; ///< of the file; none: all of it
        double start = 0; ///< seconds in the track; above 0 what is open already is used again, and radio
                          ///< goes on as it is
        int sampleRate = 0;
        std::shared_ptr<PlayerNode> node; ///< none: rest and close the file
        std::stop_token stop = {};        ///< the streamer's own: something else is wanted
    };

    /// The first sound of a request is in the node, or the request failed, or both, one after the other.
    struct Report {
        std::uint32_t generation = 0;
        PlaybackFormat format;
        double duration = 0;                            ///< seconds; 0 when unknown
        std::shared_ptr<const DownloadBuffer> download; ///< none for local files
        std::optional<PlaybackError> error;
        bool endsInNode = false; ///< with an error: the node has the sound from before it, and its end
    };

    /// Reports arrive through the event loop of the thread that makes the streamer.
    explicit TrackStreamer(std::function<void(const Report &)> onReport);
    /// Waits for the decoder to finish its present step; not for a server.
    ~TrackStreamer() override;

    /// Takes the place of all that was asked for before.
    void play(Request request);
    void rest() { play({}); }
    /// What is to come after the request of generation `after`, each with a newer generation than the one
    /// before. What has been begun already goes on; if it is no longer among them, it is given up.
    void follow(std::uint32_t after, std::vector<Request> requests);

    /// The node plays again after a pause, in which nobody takes anything from it and the decoder sleeps.
    void wake();

  Q_SIGNALS:
    void reported();

  private:
    enum class Wait { none, shortly, forRoom, forRequest };
    struct FollowUp {
        std::uint32_t after = 0;
        std::vector<Request> requests;
    };

    void run();
    [[nodiscard]] bool takeRequest(Wait wait);
    void takeFollowUp(FollowUp followUp);
    void become(Request request);
    void becomeFollower();
    void stopAllBut(const FollowUp &wanted) VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] bool hasNews() const VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] Wait work();
    [[nodiscard]] Wait breakOff(const PlaybackError &error);
    void dropDecoder();
    void begin();
    void open();
    void readBlock();
    void joinFollower();
    [[nodiscard]] Wait fill();
    [[nodiscard]] Wait finish();
    [[nodiscard]] bool hasEnoughAhead() const;
    [[nodiscard]] double place() const;
    [[nodiscard]] std::int64_t framesOfRequest() const;
    [[nodiscard]] double duration() const;
    void report(Report report);
    void reportBegin();
    void reportFailure();
    void deliverReports();

    const std::function<void(const Report &)> m_onReport;
    Mutex m_mutex;
    std::condition_variable m_requested;
    std::optional<Request> m_pending VANTOR_GUARDED_BY(m_mutex);
    std::optional<FollowUp> m_pendingFollowUp VANTOR_GUARDED_BY(m_mutex);
    std::vector<Report> m_reports VANTOR_GUARDED_BY(m_mutex);
    // What ends the waits of the newest request and of those that are to follow it, by generation.
    std::map<std::uint32_t, std::stop_source> m_stops VANTOR_GUARDED_BY(m_mutex);
    bool m_quitting VANTOR_GUARDED_BY(m_mutex) = false;

    // Decode thread's.
    Request m_request;
    std::uint32_t m_begun = 0;       ///< the newest generation that was ever m_request
    std::deque<Request> m_followers; ///< of m_request
    bool m_isComplete = false;       ///< all of m_request is in the node, or it failed
    bool m_isNew = false;
    bool m_isReported = false;
    bool m_hasBegun = false;
    bool m_atEnd = false;
    std::optional<PlaybackError> m_failure; ///< what makes m_request end early
    std::shared_ptr<AudioInput> m_input;    ///< stays when the decoder goes, so that no download starts again
    std::shared_ptr<const DownloadBuffer> m_download;
    QUrl m_inputUrl;
    std::unique_ptr<AudioFileDecoder> m_decoder;
    int m_decoderRate = 0;
    std::span<const StereoFrame> m_block; ///< decoded and not yet in the node
    std::span<const StereoFrame> m_rest;  ///< decoded behind m_block
    std::int64_t m_framesDue = 0;         ///< still to be taken for m_request, if the decoder has them
    std::optional<double> m_readUpTo;     ///< seconds in the file: the end of a range that has been read

    // Between the end of a file whose sample rate is changed and its follower's beginning: both are resampled
    // as one sound, so the first frames that the follower's decoder gives are the file's last.
    std::uint32_t m_joined = 0;    ///< generation of the follower that m_decoder belongs to already
    std::uint32_t m_joinTried = 0; ///< generation of a follower

    std::thread m_thread; ///< last: it uses the others
};

} // namespace vantor
