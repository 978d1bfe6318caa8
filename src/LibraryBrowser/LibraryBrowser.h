#pragma once

#include "LibraryBrowser/LibraryFailure.h"
#include "MusicBackendKit/MusicBackend.h"

#include <QObject>

#include <deque>

namespace vantor {

/// The parts of a library that can be browsed, in the order in which they are shown.
enum class LibrarySection { artists, albums, tracks, playlists, radios, favorites, recommendations };

/// Those that a source with these capabilities has.
[[nodiscard]] QList<LibrarySection> librarySections(MusicBackendCapabilities capabilities);

/// The music source that is browsed now, one at a time, and what is asked of it. The lists of the library
/// follow it. Main thread; nothing blocks.
class LibraryBrowser : public QObject {
    Q_OBJECT

  public:
    enum class State { noSource, connecting, connected, failed };

    using QObject::QObject;
    ~LibraryBrowser() override;

    /// Takes leave of the source before and connects this one; none is allowed.
    void setBackend(const std::shared_ptr<MusicBackend> &backend);
    /// Takes leave of the source before. There is another one, but it cannot be asked: it is being looked
    /// for, or was not found for a reason.
    void setUnavailable(const std::optional<LibraryFailure> &why);
    /// None, too, while it is not connected.
    [[nodiscard]] std::shared_ptr<MusicBackend> connected() const;
    /// Whether the source that was connected has lost what it comes from, and is on its way back: what is
    /// shown stays, and nothing can be done meanwhile.
    [[nodiscard]] bool isInterrupted() const { return m_isInterrupted && m_state == State::connected; }
    void setInterrupted(bool isInterrupted);
    [[nodiscard]] const std::shared_ptr<MusicBackend> &backend() const { return m_backend; }
    [[nodiscard]] MusicBackendCapabilities capabilities() const;

    [[nodiscard]] State state() const { return m_state; }
    /// Why the source failed.
    [[nodiscard]] const std::optional<LibraryFailure> &failure() const { return m_failure; }
    /// Connects once more; has the source looked for again when there is none to connect.
    void retry();
    /// The source's content may have changed in any way.
    void refresh() { Q_EMIT refreshed(); }
    /// What the source offers may have changed.
    void refreshCapabilities() { Q_EMIT capabilitiesChanged(); }

    /// Kept in step with the source.
    [[nodiscard]] const QList<OutputDevice> &outputs() const { return m_outputs; }
    /// What plays where, as far as the source tells.
    [[nodiscard]] const QList<OutputActivity> &activities() const { return m_activities; }
    /// Where it plays: what was chosen for this source, as unavailable while it is not there, else this
    /// computer or the first; none while there is no output.
    [[nodiscard]] std::optional<OutputDevice> output() const;
    /// Until another source comes. `name`: as long as the source does not tell a better one.
    void chooseOutput(const OutputDevice::ID &id, const QString &name = {});

    // What goes wrong with these is told by failed().
    /// Requests are carried out one after another.
    void play(const PlayRequest &request);
    void setFavorite(const QList<MediaID> &ids, bool on);

  Q_SIGNALS:
    /// Another source, or none; lists are empty until it is connected.
    void sourceChanged();
    void stateChanged();
    void interruptionChanged(); ///< whether it is interrupted
    void capabilitiesChanged();
    void sourceAsked();    ///< look for it again
    void outputsChanged(); ///< or which one is chosen
    void outputChosen(const vantor::OutputDevice &output);
    void aboutToPlay(const vantor::OutputDevice &on); ///< it was asked to
    void activitiesChanged();
    void changed(const vantor::LibraryChange &change);
    void refreshed();
    void failed(const QString &sentence);

  private:
    struct Play {
        std::shared_ptr<MusicBackend> backend; ///< whose items they are
        OutputDevice on;
        PlayRequest request;
    };

    void takeLeave(const std::shared_ptr<MusicBackend> &next);
    void beginTurn(State state, const std::optional<LibraryFailure> &failure);
    void connectBackend();
    QCoro::Task<> openConnection();
    QCoro::Task<> loadOutputs();
    QCoro::Task<> followActivities();
    QCoro::Task<> followChanges();
    QCoro::Task<> playInTurn();
    QCoro::Task<> setFavorites(QList<MediaID> ids, bool on);
    void setState(State state, const std::optional<LibraryFailure> &failure = {});

    std::shared_ptr<MusicBackend> m_backend;
    State m_state = State::noSource;
    bool m_isInterrupted = false;
    std::optional<LibraryFailure> m_failure;
    QList<OutputDevice> m_outputs;
    std::deque<Play> m_plays;                   ///< the first one is being carried out
    std::optional<OutputDevice> m_chosenOutput; ///< as it was told last
    QList<OutputActivity> m_activities;
    AsyncStream<QList<OutputActivity>> m_activityStream;
    bool m_loadsOutputs = false;
    bool m_outputsAreOld = false; ///< they have changed since they were asked for
    AsyncStream<LibraryChange> m_changes;
    /// Whose answers are awaited.
    std::shared_ptr<char> m_turn = std::make_shared<char>();
};

} // namespace vantor
