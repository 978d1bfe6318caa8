#pragma once

#include "Vantor/Library/LibraryPlace.h"

class QSettings;

/// Where one is in the library, kept from one run to the next. Main thread.
namespace vantor::LibraryPlaceStore {

/// `sourceID`: of the source that the place is in.
void save(QSettings &settings, const LibraryPlace &place, const QString &sourceID);
/// The section of the stored place.
[[nodiscard]] LibrarySection section(const QSettings &settings);
/// None when it was in another source, or a section itself.
[[nodiscard]] std::optional<LibraryPlace> place(const QSettings &settings, const QString &sourceID);

} // namespace vantor::LibraryPlaceStore
