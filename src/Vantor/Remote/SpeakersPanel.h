#pragma once

#include "Vantor/Remote/Speakers.h"

#include <QWidget>

class QToolButton;

namespace vantor {

/// A row for each output: choosing it, what it plays, its volume, its group, moving the music there. Main
/// thread; borrows the output.
class SpeakersPanel : public QWidget {
    Q_OBJECT

  public:
    explicit SpeakersPanel(RemoteOutput &selected, QWidget *parent = nullptr);
};

/// Names the selected output and opens the panel above itself. For the foot of a window.
[[nodiscard]] QToolButton *makeOutputButton(RemoteOutput &selected, QWidget *parent);

} // namespace vantor
