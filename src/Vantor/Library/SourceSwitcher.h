#pragma once

#include <QComboBox>

namespace vantor {

class MusicLibrary;

/// Chooses which source is the library; not there when there is only one. Main thread; borrows the library.
class SourceSwitcher : public QComboBox {
    Q_OBJECT

  public:
    explicit SourceSwitcher(MusicLibrary &library, QWidget *parent = nullptr);

  private:
    void fill();

    MusicLibrary &m_library;
};

} // namespace vantor
