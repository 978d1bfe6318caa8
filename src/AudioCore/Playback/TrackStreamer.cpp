#include "AudioCore/Playback/TrackStreamer.h"

#include "AudioCore/Decoding/FileInput.h"
#include "AudioCore/Network/ProgressiveInput.h"
#include "Platform/NativePath.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantor {

// How much is decoded ahead of what is heard, in seconds. What waits behind another track gets less: it may
// be exchanged for something else several times, and each leaves its part in the node until the join.
static constexpr double ahead = 2;
static constexpr double aheadInWaiting = 1;
// How long the thread rests when the node has enough, and when the node must let something go first.
static constexpr std::chrono::milliseconds restWhenFull{200};
static constexpr std::chrono::milliseconds restWhenBlocked{10};

static bool contains(const std::vector<TrackStreamer::Request> &requests, std::uint32_t generation) {
    return std::ranges::find(requests, generation, &TrackStreamer::Request::generation) != requests.end();
}

TrackStreamer::TrackStreamer(std::function<void(const Report &)> onReport)
    : m_onReport(std::move(onReport)), m_thread([this] { run(); }) {
    connect(this, &TrackStreamer::reported, this, &TrackStreamer::deliverReports, Qt::QueuedConnection);
}

TrackStreamer::~TrackStreamer() {
    {
        const MutexLock lock(m_mutex);
        m_quitting = true;
        stopAllBut({});
    }
    m_requested.notify_one();
    m_thread.join();
}

void TrackStreamer::play(Request request) {
    {
        const MutexLock lock(m_mutex);
        stopAllBut({});
        request.stop = m_stops[request.generation].get_token();
        m_pending = std::move(request);
        m_pendingFollowUp.reset();
    }
    m_requested.notify_one();
}

void TrackStreamer::follow(std::uint32_t after, std::vector<Request> requests) {
    {
        const MutexLock lock(m_mutex);
        FollowUp followUp{after, std::move(requests)};
        stopAllBut(followUp);
        for (Request &request : followUp.requests)
            request.stop = m_stops[request.generation].get_token();
        m_pendingFollowUp = std::move(followUp);
    }
    m_requested.notify_one();
}

void TrackStreamer::wake() {
    {
        const MutexLock lock(m_mutex);
    } // it has seen that the node plays, or waits by now
    m_requested.notify_one();
}

// What waits for a server would not hear of anything else.
void TrackStreamer::stopAllBut(const FollowUp &wanted) {
    std::erase_if(m_stops, [&wanted](auto &stop) {
        const bool isWanted = stop.first == wanted.after || contains(wanted.requests, stop.first);
        if (!isWanted)
            stop.second.request_stop();
        return !isWanted;
    });
}

void TrackStreamer::run() {
    Wait wait = Wait::forRequest;
    while (takeRequest(wait))
        wait = work();
}

bool TrackStreamer::hasNews() const {
    return m_pending || m_pendingFollowUp || m_quitting;
}

// False when the streamer ends.
bool TrackStreamer::takeRequest(Wait wait) {
    MutexLock lock(m_mutex);
    const auto sleeps = [&] {
        return wait == Wait::forRequest || (wait == Wait::forRoom && !m_request.node->isPlaying());
    };
    while (sleeps() && !hasNews())
        lock.wait(m_requested);
    if ((wait == Wait::forRoom || wait == Wait::shortly) && !hasNews())
        lock.waitFor(m_requested, wait == Wait::forRoom ? restWhenFull : restWhenBlocked);
    if (m_pending) {
        m_followers.clear();
        become(*std::exchange(m_pending, std::nullopt));
    }
    if (m_pendingFollowUp)
        takeFollowUp(*std::exchange(m_pendingFollowUp, std::nullopt));
    return !m_quitting;
}

void TrackStreamer::become(Request request) {
    m_request = std::move(request);
    m_begun = std::max(m_begun, m_request.generation);
    m_isNew = true;
    m_isComplete = false;
}

void TrackStreamer::becomeFollower() {
    if (m_followers.empty())
        return;
    become(std::move(m_followers.front()));
    m_followers.pop_front();
}

void TrackStreamer::takeFollowUp(FollowUp followUp) {
    const std::uint32_t present = m_request.generation;
    const bool isWanted = followUp.after == present || contains(followUp.requests, present);
    m_followers.clear();
    for (Request &request : followUp.requests) {
        if (request.generation > m_begun) // else it is in the node already
            m_followers.push_back(std::move(request));
    }
    if (!isWanted)
        become({});
    if (!isWanted || m_isComplete)
        becomeFollower();
}

TrackStreamer::Wait TrackStreamer::work() {
    try {
        if (std::exchange(m_isNew, false))
            begin();
        return m_request.node && !m_isComplete ? fill() : Wait::forRequest;
    } catch (const AudioInput::Interrupted &) {
        dropDecoder(); // in the middle of something
        return Wait::forRequest;
    } catch (const AudioCoreError &error) {
        return breakOff(error);
    } catch (const ProgressiveError &error) {
        return breakOff(error);
    } catch (const std::exception &) { // out of memory
        return breakOff(AudioCoreError::readFailure());
    }
}

// What has been decoded already is heard, and the failure told when its end is in the node.
TrackStreamer::Wait TrackStreamer::breakOff(const PlaybackError &error) {
    m_failure = error;
    if (m_hasBegun && !m_isReported)
        reportBegin();
    dropDecoder();
    m_input.reset();
    if (!m_hasBegun)
        return finish();
    m_block = {};
    m_atEnd = true;
    return Wait::none;
}

// It may be the follower's already.
void TrackStreamer::dropDecoder() {
    m_decoder.reset();
    m_rest = {};
    m_joined = 0;
}

void TrackStreamer::begin() {
    m_hasBegun = false;
    m_isReported = false;
    m_atEnd = false;
    m_failure.reset();
    m_block = {};
    m_framesDue = framesOfRequest();
    const bool isJoined = m_request.node && m_joined == m_request.generation;
    const bool isNextRange = m_request.node && m_decoder && m_inputUrl == m_request.url &&
                             m_decoderRate == m_request.sampleRate && m_request.start <= 0 &&
                             m_request.range && m_readUpTo == m_request.range->start;
    m_joined = 0;
    m_readUpTo.reset();
    if (isJoined || isNextRange) { // the decoder goes on
        m_input->setStopToken(m_request.stop);
        return;
    }
    m_rest = {};
    const bool isSame = m_input && m_request.node && m_inputUrl == m_request.url && place() > 0;
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
    if (place() > 0 && m_input->size())
        m_decoder->seek(place());
}

// Seconds in the file.
double TrackStreamer::place() const {
    return m_request.start + (m_request.range ? m_request.range->start : 0);
}

// Counted from the file's start, so that ranges which meet have every frame once.
std::int64_t TrackStreamer::framesOfRequest() const {
    if (!m_request.range || !m_request.range->end)
        return std::numeric_limits<std::int64_t>::max();
    const auto frame = [this](double seconds) { return std::llround(seconds * m_request.sampleRate); };
    return std::max<std::int64_t>(frame(*m_request.range->end) - frame(place()), 0);
}

double TrackStreamer::duration() const {
    const double whole = m_decoder->duration();
    if (!m_request.range)
        return whole;
    double end = m_request.range->end.value_or(whole);
    if (whole > 0)
        end = std::min(end, whole);
    return std::max(end - m_request.range->start, 0.0);
}

void TrackStreamer::open() {
    if (!m_input || !m_input->size() || !m_input->seek(0)) {
        m_input.reset(); // before another connection
        m_inputUrl = m_request.url;
        if (m_inputUrl.isLocalFile()) {
            m_input = std::make_shared<FileInput>(NativePath::fromUrl(m_inputUrl));
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
        if (m_hasBegun && hasEnoughAhead())
            return Wait::forRoom;
        readBlock();
        m_atEnd = m_block.empty();
        if (m_atEnd && m_framesDue == 0 && m_request.range)
            m_readUpTo = m_request.range->end;
        if (m_atEnd && !m_hasBegun && m_request.start <= 0)
            throw AudioCoreError::readFailure(); // a song without a single frame
    }
    if (!m_hasBegun) {
        const std::int64_t startFrame = std::llround(m_request.start * m_request.sampleRate);
        if (!node.beginSegment(m_request.generation, startFrame, m_decoder->replayGain()))
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
    return finish();
}

void TrackStreamer::readBlock() {
    const bool mayBeAtEnd = m_joined == 0 && m_rest.empty() && m_framesDue > 0;
    if (mayBeAtEnd && !m_followers.empty() && m_hasBegun && !m_decoder->hasMore())
        joinFollower();
    if (m_rest.empty() && m_framesDue > 0)
        m_rest = m_decoder->read();
    const auto due = static_cast<std::size_t>(m_framesDue);
    m_block = m_rest.first(std::min(m_rest.size(), due));
    m_rest = m_rest.subspan(m_block.size());
    m_framesDue -= static_cast<std::int64_t>(m_block.size());
}

// Worth it where the sample rate is changed; otherwise a file's end needs to know nothing of what follows.
void TrackStreamer::joinFollower() {
    const Request &follower = m_followers.front();
    const bool areWhole =
        !(m_request.range && m_request.range->end) && !(follower.range && follower.range->start > 0);
    if (!areWhole || m_decoder->format().sampleRate == m_request.sampleRate || !follower.url.isLocalFile() ||
        std::exchange(m_joinTried, follower.generation) == follower.generation)
        return;
    try {
        auto input = std::make_shared<FileInput>(NativePath::fromUrl(follower.url));
        auto next = std::make_unique<AudioFileDecoder>(input, follower.sampleRate);
        const std::optional<std::int64_t> frames = next->continueFrom(*m_decoder);
        if (!frames)
            return;
        if (!m_isReported)
            reportBegin();
        m_decoder = std::move(next);
        m_input = std::move(input);
        m_inputUrl = follower.url;
        m_download.reset();
        m_framesDue = *frames;
        m_joined = follower.generation;
    } catch (const std::exception &) { // it will fail again when its turn has come
    }
}

bool TrackStreamer::hasEnoughAhead() const {
    const double seconds = m_request.node->isSounding() ? ahead : aheadInWaiting;
    return static_cast<double>(m_request.node->framesAhead()) >= seconds * m_request.sampleRate;
}

TrackStreamer::Wait TrackStreamer::finish() {
    if (m_hasBegun && !m_request.node->endSegment())
        return Wait::shortly;
    if (m_failure)
        reportFailure();
    m_isComplete = true;
    becomeFollower();
    return m_isComplete ? Wait::forRequest : Wait::none;
}

// Not before the node would sound: an output that wakes to silence may rest for a while before it asks again.
void TrackStreamer::reportBegin() {
    m_isReported = true;
    report({.generation = m_request.generation,
            .format = m_decoder->format(),
            .duration = duration(),
            .download = m_download,
            .error = std::nullopt});
}

void TrackStreamer::reportFailure() {
    report({.generation = m_request.generation,
            .format = {},
            .duration = 0,
            .download = {},
            .error = m_failure,
            .endsInNode = m_hasBegun});
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
