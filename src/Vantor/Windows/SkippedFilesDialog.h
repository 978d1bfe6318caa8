#pragma once

#include "AudioCore/Queue/SkippedFile.h"

#include <QDialog>

#include <vector>

namespace vantor {

/// Lists the files that were not taken in, each with the reason. Deletes itself when closed. Main thread.
class SkippedFilesDialog : public QDialog {
    Q_OBJECT

  public:
    SkippedFilesDialog(const std::vector<SkippedFile> &files, QWidget *parent);
};

} // namespace vantor
