#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

/// Plain sheets drawn in code, which stand in for those that a skin lacks. Each is made once per process and
/// shared; any thread.
namespace vantor::GeneratedBaseSkin {

/// The sheets that can be generated, ascending.
[[nodiscard]] const QStringList &sheetNames();

/// A sheet exactly as large as its sprites need; a null image for a name outside sheetNames().
[[nodiscard]] QImage sheet(const QString &name);

} // namespace vantor::GeneratedBaseSkin
