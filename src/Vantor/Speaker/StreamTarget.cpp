#include "Vantor/Speaker/StreamTarget.h"

#include "Vantor/Speaker/NetworkSpeaker.h"

namespace vantor {

StreamTarget::StreamTarget(LocalTarget &local) : m_local(local) {}

StreamTarget::~StreamTarget() = default;

void StreamTarget::setSpeaker(NetworkSpeaker *speaker) {
    m_speaker = speaker;
}

bool StreamTarget::isStreaming() const {
    return m_speaker && m_speaker->isStreaming();
}

PlaybackView StreamTarget::view() const {
    PlaybackView view = m_local.view();
    if (!isStreaming())
        return view;
    view.state = PlaybackState::playing;
    view.wantsToPlay = true;
    view.elapsed = m_speaker->streamedFor();
    view.duration = 0;
    view.volume = m_speaker->volume();
    view.isEmpty = false;
    return view;
}

void StreamTarget::transport(const TransportCommand &command) {
    using Kind = TransportCommand::Kind;
    if (command.kind == Kind::setVolume && m_speaker)
        m_speaker->setVolume(command.value);
    else if (command.kind == Kind::togglePlayPause)
        m_local.transport(TransportCommand::pause()); // of what is heard
    else if (command.kind != Kind::seek)              // it has no places
        m_local.transport(command);
}

bool StreamTarget::isMuted() const {
    return m_speaker && m_speaker->isMuted();
}

void StreamTarget::setMuted(bool muted) {
    if (m_speaker)
        m_speaker->setMuted(muted);
}

QString StreamTarget::name() const {
    return m_speaker ? m_speaker->streamName() : QString();
}

void StreamTarget::showFormat(MainWindowStatus &status) const {
    const auto format = m_speaker ? m_speaker->streamFormat() : std::nullopt;
    if (!format)
        return;
    status.sampleRate = format->sampleRate;
    status.channels = format->channels;
    if (const auto figures = m_speaker->figures(); figures && figures->bitrate > 0)
        status.bitrateKbps = figures->bitrate;
}

} // namespace vantor
