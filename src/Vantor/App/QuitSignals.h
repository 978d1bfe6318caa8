#pragma once

#include <QObject>

namespace vantor {

/// Ends the program as its own command does when the system asks it to (SIGTERM, SIGINT, SIGHUP), so that it
/// says goodbye to its servers and keeps what it has to. A second signal ends it at once. One in a process;
/// main thread, after the application object.
class QuitSignals : public QObject {
    Q_OBJECT

  public:
    QuitSignals();
    ~QuitSignals() override;
};

} // namespace vantor
