#pragma once

#include <QString>

#include <optional>

namespace vantor {

/// How the server names an item: "library://album/12". A value.
struct MAItemURI {
    QString provider; ///< "library", or whose item it is
    QString mediaType;
    QString itemID; ///< may hold any signs

    /// None for what has not these three parts.
    [[nodiscard]] static std::optional<MAItemURI> parse(const QString &text);
    [[nodiscard]] QString text() const;
    [[nodiscard]] bool isOfLibrary() const { return provider == QLatin1StringView("library"); }

    bool operator==(const MAItemURI &) const = default;
};

} // namespace vantor
