#pragma once

#include "LibraryBrowser/LibraryBrowser.h"
#include "LibraryBrowser/LibraryItem.h"

namespace vantor {

/// What the output that is chosen in the library plays now, for lists that mark it. Main thread; borrows the
/// browser.
class LibraryNowPlaying : public QObject {
    Q_OBJECT

  public:
    explicit LibraryNowPlaying(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Whether this is what plays, or is held.
    [[nodiscard]] bool isOn(const MediaID &id) const { return m_now.item == id; }
    /// The same; an album by its title and artist, since outputs tell only the track.
    [[nodiscard]] bool isOn(const LibraryItem &item) const;
    /// Whether it sounds, rather than being held.
    [[nodiscard]] bool sounds() const { return m_now.state == NowPlaying::State::playing; }

  Q_SIGNALS:
    void changed(); ///< not for the time that passes

  private:
    void follow();
    QCoro::Task<> listen();
    void take(const NowPlaying &now);

    LibraryBrowser &m_browser;
    std::weak_ptr<MusicBackend> m_backend; ///< which is listened to
    NowPlaying m_now;
    AsyncStream<NowPlaying> m_states;
    std::shared_ptr<char> m_turn; ///< of the stream that is listened to
};

} // namespace vantor
