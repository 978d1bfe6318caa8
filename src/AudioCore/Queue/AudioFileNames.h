#pragma once

#include <QStringList>

/// Which files are taken for audio by their names. Any thread.
namespace vantor::AudioFileNames {

/// In lower case, without the dot.
[[nodiscard]] const QStringList &extensions();

[[nodiscard]] bool isAudioFile(QStringView name);

} // namespace vantor::AudioFileNames
