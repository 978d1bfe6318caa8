#include "MusicBackendKit/RadioURLInput.h"

#include <QUrl>

#include <algorithm>

namespace vantor {

namespace {

/// The host of a URL that is known to have one, as it was written: QUrl lowers and decodes it.
QString writtenHost(const QString &url) {
    QStringView rest = QStringView(url).sliced(url.indexOf(QLatin1String("://")) + 3);
    const auto isEnd = [](QChar c) { return c == u'/' || c == u'?' || c == u'#'; };
    rest = rest.first(std::ranges::find_if(rest, isEnd) - rest.begin());
    rest = rest.sliced(rest.lastIndexOf(u'@') + 1);
    const qsizetype colon = rest.lastIndexOf(u':');
    return rest.first(colon > rest.lastIndexOf(u']') ? colon : rest.size()).toString();
}

} // namespace

std::optional<RadioURLInput> RadioURLInput::parse(const QString &url, const QString &name) {
    const QString text = url.trimmed();
    // QUrl would mend a space; a user who enters one has entered two things.
    if (std::ranges::any_of(text, [](QChar c) { return c.isSpace(); }))
        return std::nullopt;
    const QUrl parsed(text);
    const bool isWeb = parsed.scheme() == QLatin1String("http") || parsed.scheme() == QLatin1String("https");
    if (!parsed.isValid() || !isWeb || parsed.host().isEmpty() || parsed.port() == 0)
        return std::nullopt;
    const QString station = name.trimmed();
    return RadioURLInput{text, station.isEmpty() ? writtenHost(text) : station};
}

} // namespace vantor
