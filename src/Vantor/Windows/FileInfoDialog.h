#pragma once

#include "AudioCore/Queue/TrackInfo.h"

#include <QDialog>

namespace vantor {

/// The facts known about a track, as a small sheet whose texts can be selected. Deletes itself when closed.
class FileInfoDialog : public QDialog {
    Q_OBJECT

  public:
    FileInfoDialog(const TrackInfo &info, QWidget *parent);
};

} // namespace vantor
