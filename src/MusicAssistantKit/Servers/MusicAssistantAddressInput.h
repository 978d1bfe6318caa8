#pragma once

#include <QString>
#include <QUrl>

#include <optional>
#include <variant>

namespace vantor {

/// How an address is protected on its way.
enum class MusicAssistantAddressSecurity {
    encrypted,
    local,       ///< plain, on the user's own network
    tailnet,     ///< plain inside Tailscale's encryption
    requiresTLS, ///< plain through the Internet: refused
};

[[nodiscard]] MusicAssistantAddressSecurity classifyAddress(const QUrl &url);

/// Server addresses as people type them. Pure functions.
namespace MusicAssistantAddressInput {

/// The port on which Music Assistant serves plain http and its WebSocket.
inline constexpr int defaultPort = 8095;

/// The host that is proposed for a first server: where the home's hub usually is.
[[nodiscard]] QString proposedHost();

enum class Problem { empty, invalid, unsupportedScheme, credentialsNotAllowed, httpsRequired };
/// The sentence for the user.
[[nodiscard]] QString message(Problem problem);

/// The address that `text` means. Without a scheme a local or MagicDNS host gets http, any other https; http
/// without a port gets the default port. Of a path the end slash goes, as do a query and a fragment, which
/// come with an address that was copied from a browser.
[[nodiscard]] std::variant<QUrl, Problem> parse(const QString &text);

/// A short text from which parse() makes the same URL again.
[[nodiscard]] QString displayText(const QUrl &url);

/// Taken literally: every IP address, a name in ".local" and a name of one label.
[[nodiscard]] bool isLocalHost(const QString &host);
/// Whether Tailscale's DNS gives this name to a machine of the user's own.
[[nodiscard]] bool isTailscaleMagicDNS(const QString &host);
/// The parts of an IPv4 address in their order as one number; none for anything else.
[[nodiscard]] std::optional<quint32> ipv4Number(const QString &host);

} // namespace MusicAssistantAddressInput

} // namespace vantor
