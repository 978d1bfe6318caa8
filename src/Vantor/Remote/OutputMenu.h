#pragma once

#include "MusicBackendKit/OutputDevice.h"

class QMenu;

namespace vantor {

class RemoteOutput;

/// The outputs of the music source as a menu. Main thread.
namespace OutputMenu {

/// As the user knows it.
[[nodiscard]] QString nameOf(const OutputDevice &output);
/// A foreign name as the text of an entry: an ampersand in it is no key of the menu.
[[nodiscard]] QString label(QString name);
/// Adds an entry for each, the selected one ticked; choosing one selects it. The output is borrowed.
void fill(QMenu &menu, RemoteOutput &remote);

} // namespace OutputMenu
} // namespace vantor
