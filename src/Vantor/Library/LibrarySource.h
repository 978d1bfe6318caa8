#pragma once

#include "LibraryBrowser/LibraryFailure.h"
#include "MusicBackendKit/MusicBackend.h"

#include <QObject>

namespace vantor {

/// One of the program's music libraries: what is known of it beside what its backend tells. Main thread.
class LibrarySource : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    /// Under which the choice of it is kept.
    [[nodiscard]] virtual QString key() const = 0;
    [[nodiscard]] virtual QString name() const = 0;

    /// It is looked at from now on: there will be a backend, or a failure. Whoever takes the backend connects
    /// it and disconnects it.
    virtual void open() = 0;
    /// Nobody looks at it any more.
    virtual void close() = 0;
    /// Looks again for what was not there.
    virtual void retry() = 0;

    [[nodiscard]] const std::shared_ptr<MusicBackend> &backend() const { return m_backend; }
    /// Why there is no backend; without one and the other it is being looked for.
    [[nodiscard]] const std::optional<LibraryFailure> &failure() const { return m_failure; }
    /// What it does now, as a sentence; empty when it rests.
    [[nodiscard]] virtual QString activity() const = 0;
    /// Whether the backend has lost what it comes from and is on its way back; told by activityChanged().
    [[nodiscard]] virtual bool isInterrupted() const { return false; }

  Q_SIGNALS:
    void backendChanged(); ///< or the failure
    void activityChanged();
    void contentChanged(); ///< in any way, beside what the backend announces
    void capabilitiesChanged();
    void nameChanged();

  protected:
    void setBackend(const std::shared_ptr<MusicBackend> &backend,
                    const std::optional<LibraryFailure> &failure = {}) {
        m_backend = backend;
        m_failure = failure;
        Q_EMIT backendChanged();
    }

  private:
    std::shared_ptr<MusicBackend> m_backend;
    std::optional<LibraryFailure> m_failure;
};

} // namespace vantor
