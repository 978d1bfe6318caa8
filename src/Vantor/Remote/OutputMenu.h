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
/// Adds an entry for each with the group that it leads or plays in, the selected one ticked; choosing one
/// selects it. The output is borrowed.
void fill(QMenu &menu, RemoteOutput &remote);
/// Adds entries for what may play along with an output, or the one that ends its playing along.
void fillGroup(QMenu &menu, RemoteOutput &remote, const OutputDevice &output);

} // namespace OutputMenu
} // namespace vantor
