#pragma once

#include "MusicBackendKit/RadioURLInput.h"

#include <functional>

class QWidget;

/// The small questions of the Library window. Each shows itself over `parent`, returns at once and deletes
/// itself. Main thread.
namespace vantor::LibraryDialogs {

/// `then` is given the name without blanks around it.
void askName(QWidget *parent, const QString &title, const QString &button, const QString &name,
             const std::function<void(const QString &)> &then);
/// Takes only an address that can be one of a station.
void askRadio(QWidget *parent, const std::function<void(const RadioURLInput &)> &then);

/// A playlist file to read; `then` is given its text, `failed` a sentence.
void readPlaylist(QWidget *parent, const std::function<void(const QString &m3u)> &then,
                  const std::function<void(const QString &)> &failed);
/// Where to write one named `name`; `failed` is given a sentence.
void writePlaylist(QWidget *parent, const QString &name, const QString &m3u,
                   const std::function<void(const QString &)> &failed);

} // namespace vantor::LibraryDialogs
