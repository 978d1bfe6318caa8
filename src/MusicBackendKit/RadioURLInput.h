#pragma once

#include <QString>

#include <optional>

namespace vantor {

/// What the user entered to add a radio station. A value; any thread.
struct RadioURLInput {
    QString url;
    QString name;

    /// Both texts trimmed; without a name the URL's host is it, as it was written. None for what is no http
    /// or https URL with a host.
    [[nodiscard]] static std::optional<RadioURLInput> parse(const QString &url, const QString &name);

    bool operator==(const RadioURLInput &) const = default;
};

} // namespace vantor
