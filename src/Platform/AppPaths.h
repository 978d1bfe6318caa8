#pragma once

#include <QString>

/// Where the program keeps its files. Any thread.
namespace vantor::AppPaths {

/// The reverse-domain name under which the program keeps its data, settings and log categories.
inline constexpr const char *bundleIdentifier = "co.kelvane.vantor";

/// `$XDG_DATA_HOME/co.kelvane.vantor` (normally below ~/.local/share), or under another program's identifier.
/// Not created by this call.
[[nodiscard]] QString dataFolder(const QString &identifier = QLatin1String(bundleIdentifier));

/// `$XDG_CACHE_HOME/co.kelvane.vantor`. Everything in it can be made again. Not created by this call.
[[nodiscard]] QString cacheFolder();

/// A file that ships with the program (`demo.flac` …): looked for beside the binary's `../share/vantor`,
/// which holds for a build tree and an installation alike. Empty when it is not there.
[[nodiscard]] QString sharedFile(const QString &name);

} // namespace vantor::AppPaths
