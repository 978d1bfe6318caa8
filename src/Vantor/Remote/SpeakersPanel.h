#pragma once

#include "Vantor/Remote/Speakers.h"

#include <QDialog>
#include <QScrollArea>

class QLabel;
class QToolButton;
class QVBoxLayout;

namespace vantor {

class SpeakerRow;

/// Every output of the music source with what it plays, to be selected, turned up and down, and grouped. Main
/// thread; borrows the output.
class SpeakersPanel : public QScrollArea {
    Q_OBJECT

  public:
    explicit SpeakersPanel(RemoteOutput &selected, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

  private:
    void takeRows();
    [[nodiscard]] QString emptyText() const;

    Speakers m_speakers;
    QVBoxLayout *m_layout;
    QLabel *m_empty;                        ///< in place of rows
    std::map<QString, SpeakerRow *> m_rows; ///< by output
};

/// The panel as a window. Deletes itself when it is closed.
class SpeakersDialog : public QDialog {
    Q_OBJECT

  public:
    SpeakersDialog(RemoteOutput &selected, QWidget *parent);
};

/// A button that names the selected output and opens the panel above itself, for the foot of a window; hidden
/// while there is nothing to choose.
[[nodiscard]] QToolButton *makeOutputButton(RemoteOutput &selected, QWidget *parent = nullptr);

} // namespace vantor
