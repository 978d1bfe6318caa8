#pragma once

#include <QString>

#include <exception>
#include <optional>
#include <span>
#include <stop_token>
#include <utility>

namespace vantor {

/// The bytes of one piece of music, wherever they come from. One thread at a time.
class AudioInput {
  public:
    /// A call that waited was told to stop. What was being read is in no defined state any more.
    class Interrupted : public std::exception {};

    AudioInput() = default;
    virtual ~AudioInput() = default;
    AudioInput(const AudioInput &) = delete;
    AudioInput &operator=(const AudioInput &) = delete;

    /// Ends calls that wait, from whatever thread asks it to: they throw Interrupted.
    void setStopToken(std::stop_token token) { m_stop = std::move(token); }

    /// At least one byte and at most what fits, or 0 at the end. May wait for bytes. Throws Interrupted, and
    /// AudioCoreError or ProgressiveError when no more can be had.
    [[nodiscard]] virtual std::size_t read(std::span<char> bytes) = 0;
    /// Goes on reading at a place of 0 or more; false when that cannot be reached.
    [[nodiscard]] virtual bool seek(qint64 position) = 0;
    [[nodiscard]] virtual qint64 position() const = 0;
    /// None for what has no known end. May wait and throw as read() does; so may isSeekable().
    [[nodiscard]] virtual std::optional<qint64> size() = 0;
    /// Whether every place can be reached. Without it, what has been read can be read again if there is a
    /// size.
    [[nodiscard]] virtual bool isSeekable() = 0;
    /// The file's name: its ending helps to tell formats apart.
    [[nodiscard]] virtual QString name() const = 0;
    /// Whether the bytes arrive while they are played.
    [[nodiscard]] virtual bool isProgressive() const { return false; }

  protected:
    [[nodiscard]] const std::stop_token &stopToken() const { return m_stop; }

  private:
    std::stop_token m_stop;
};

} // namespace vantor
