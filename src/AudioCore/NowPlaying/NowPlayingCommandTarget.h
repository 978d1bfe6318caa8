#pragma once

namespace vantor {

/// What the system's now-playing surface commands. Main thread.
class NowPlayingCommandTarget {
  public:
    virtual ~NowPlayingCommandTarget() = default;

    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void togglePlayPause() = 0;
    virtual void stop() = 0;
    virtual void next() = 0;
    virtual void previous() = 0;
    virtual void seek(double seconds) = 0;
};

} // namespace vantor
