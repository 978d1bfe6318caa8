#pragma once

#include "Vantor/Model/EqualizerModel.h"

#include <QMenu>

namespace vantor {

/// The menu of the Presets button: what there is to choose from, the user's own to be kept and named, what
/// belongs to the current track, and preset files. Made anew each time, because what it lists changes. Main
/// thread; borrows the model.
class PresetsMenu : public QMenu {
    Q_OBJECT

  public:
    /// `window`: the parent of the menu's dialogs.
    PresetsMenu(EqualizerModel &model, QWidget &window, QWidget &parent);

    /// Opens at a point of the screen, returns at once and deletes itself when it closes.
    static void popUp(EqualizerModel &model, QWidget &window, QPoint at);

  private:
    void addPresets(QMenu &menu, const std::vector<EQPreset> &presets);
    void addOwnPresets();
    void addTrack();
    void addFiles();

    EqualizerModel &m_model;
    QWidget &m_window;
};

} // namespace vantor
