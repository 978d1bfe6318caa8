#include "AudioCore/Playback/TrackStreamer.h"

#include "AudioCore/Decoding/FileInput.h"
#include "AudioCore/Network/ProgressiveInput.h"

#include <cmath>

namespace vantor {

static constexpr int secondsAhead = 2;
// How long the thread rests when the node has enough, and when the node must let something go first.
static constexpr std::chrono::milliseconds restWhenFull{200};
static constexpr std::chrono::milliseconds restWhenBlocked{10};

TrackStreamer::TrackStreamer(std::function<void(const Report &)> onReport)
    : m_onReport(std::move(onReport)), m_thread([this] { run(); }) {
    connect(this, &TrackStreamer::reported, this, &TrackStreamer::deliverReports, Qt::QueuedConnection);
}

TrackStreamer::~TrackStreamer() {
    {
        const MutexLock lock(m_mutex);
        m_quitting = true;
        m_stop.request_stop();
    }
    m_requested.notify_one();
    m_thread.join();
}

void TrackStreamer::play(Request request) {
    {
        const MutexLock lock(m_mutex);
        m_stop.request_stop(); // what waits for a server would not hear of it
        m_stop = std::stop_source();
        request.stop = m_stop.get_token();
        m_pending = std::move(request);
    }
    m_requested.notify_one();
}

void TrackStreamer::run() {
    Wait wait = Wait::forRequest;
    while (takeRequest(wait))
        wait = work();
}

// False when the streamer ends.
bool TrackStreamer::takeRequest(Wait wait) {
    MutexLock lock(m_mutex);
    while (wait == Wait::forRequest && !m_pending && !m_quitting)
        lock.wait(m_requested);
    if ((wait == Wait::forRoom || wait == Wait::shortly) && !m_pending && !m_quitting)
        lock.waitFor(m_requested, wait == Wait::forRoom ? restWhenFull : restWhenBlocked);
    if (m_pending) {
        m_request = *std::exchange(m_pending, std::nullopt);
        m_isNew = true;
    }
    return !m_quitting;
}

TrackStreamer::Wait TrackStreamer::work() {
    try {
        if (std::exchange(m_isNew, false))
            begin();
        return m_request.node ? fill() : Wait::forRequest;
    } catch (const AudioInput::Interrupted &) {
        m_decoder.reset(); // in the middle of something
        return Wait::forRequest;
    } catch (const AudioCoreError &error) {
        reportFailure(error);
    } catch (const ProgressiveError &error) {
        reportFailure(error);
    } catch (const std::exception &) { // out of memory
        reportFailure(AudioCoreError::readFailure());
    }
    m_decoder.reset();
    m_input.reset();
    m_request.node.reset();
    return Wait::forRequest;
}

void TrackStreamer::begin() {
    m_block = {};
    m_hasBegun = false;
    m_isReported = false;
    m_atEnd = false;
    const bool isSame = m_input && m_request.node && m_inputUrl == m_request.url && m_request.start > 0;
    if (!isSame || m_decoderRate != m_request.sampleRate)
        m_decoder.reset();
    if (!isSame) {
        m_input.reset();
        m_download.reset();
    }
    if (!m_request.node)
        return;
    if (m_input)
        m_input->setStopToken(m_request.stop);
    if (!m_decoder)
        open();
    if (m_request.start > 0 && m_input->size())
        m_decoder->seek(m_request.start);
}

void TrackStreamer::open() {
    if (!m_input || !m_input->size() || !m_input->seek(0)) {
        m_input.reset(); // before another connection
        m_inputUrl = m_request.url;
        if (m_inputUrl.isLocalFile()) {
            m_input = std::make_shared<FileInput>(m_inputUrl.toLocalFile());
        } else {
            auto input = std::make_shared<ProgressiveInput>(m_inputUrl);
            m_download = input->download();
            m_input = std::move(input);
        }
        m_input->setStopToken(m_request.stop);
    }
    m_decoder = std::make_unique<AudioFileDecoder>(m_input, m_request.sampleRate);
    m_decoderRate = m_request.sampleRate;
}

// One step; says how long the next one can wait.
TrackStreamer::Wait TrackStreamer::fill() {
    PlayerNode &node = *m_request.node;
    if (m_block.empty() && !m_atEnd) {
        if (m_hasBegun && node.framesAhead() >= std::int64_t{secondsAhead} * m_request.sampleRate)
            return Wait::forRoom;
        m_block = m_decoder->read();
        m_atEnd = m_block.empty();
        if (m_atEnd && !m_hasBegun && m_request.start <= 0)
            throw AudioCoreError::readFailure(); // a song without a single frame
    }
    if (!m_hasBegun) {
        const std::int64_t startFrame = std::llround(m_request.start * m_request.sampleRate);
        if (!node.beginSegment(m_request.generation, startFrame))
            return Wait::shortly;
        m_hasBegun = true;
    }
    m_block = m_block.subspan(node.write(m_block));
    if (!m_isReported && (m_atEnd || node.hasEnoughToStart()))
        reportBegin();
    if (!m_block.empty())
        return Wait::shortly;
    if (!m_atEnd)
        return Wait::none;
    return node.endSegment() ? Wait::forRequest : Wait::shortly;
}

// Not before the node would sound: an output that wakes to silence may rest for a while before it asks again.
void TrackStreamer::reportBegin() {
    m_isReported = true;
    report({.generation = m_request.generation,
            .format = m_decoder->format(),
            .duration = m_decoder->duration(),
            .download = m_download,
            .error = std::nullopt});
}

void TrackStreamer::reportFailure(const PlaybackError &error) {
    report({.generation = m_request.generation, .format = {}, .duration = 0, .download = {}, .error = error});
}

void TrackStreamer::report(Report report) {
    {
        const MutexLock lock(m_mutex);
        m_reports.push_back(std::move(report));
    }
    Q_EMIT reported();
}

void TrackStreamer::deliverReports() {
    std::vector<Report> reports;
    {
        const MutexLock lock(m_mutex);
        reports.swap(m_reports);
    }
    for (const Report &report : reports)
        m_onReport(report);
}

} // namespace vantor
