#include "MusicBackendKit/MarqueeText.h"

#include <algorithm>
#include <cmath>

namespace vantor::MarqueeText {

namespace {

// Not a number counts as the lowest value.
double clampedFraction(double value) {
    return value > 0 ? std::min(value, 1.0) : 0;
}

qint64 wholeSeconds(double seconds) {
    constexpr double most = 1e15; // far beyond any duration, and safe to convert
    return std::isfinite(seconds) ? static_cast<qint64>(std::clamp(seconds, 0.0, most)) : 0;
}

int percent(double fraction) {
    return static_cast<int>(std::round(clampedFraction(fraction) * 100));
}

QString bandLabel(int hertz) {
    return hertz > 999 ? QStringLiteral("%1KHz").arg(hertz / 1000) : QStringLiteral("%1Hz").arg(hertz);
}

} // namespace

QString idle() {
    return QStringLiteral("Vantor");
}

QString buffering() {
    return QStringLiteral("Buffering…");
}

QString name(const QString &artist, const QString &title) {
    return artist.isEmpty() ? title : artist + QStringLiteral(" - ") + title;
}

QString time(double seconds) {
    const qint64 whole = wholeSeconds(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QString track(const QString &artist, const QString &title, double duration, std::optional<int> number) {
    QString text = name(artist, title);
    if (number)
        text.prepend(QString::number(*number) + QStringLiteral(". "));
    if (duration > 0)
        text += QStringLiteral(" (") + time(duration) + QLatin1Char(')');
    return text;
}

QString display(const NowPlaying &playing, std::optional<int> number) {
    const QString title = playing.title.value_or(QString());
    if (title.isEmpty())
        return idle();
    if (playing.state == NowPlaying::State::loading && playing.item)
        return buffering();
    return track(playing.artist.value_or(QString()), title, playing.duration.value_or(0), number);
}

QString volume(double volume) {
    return QStringLiteral("Volume: %1%").arg(percent(volume));
}

QString balance(double balance) {
    const int share = percent(std::abs(balance));
    if (share == 0)
        return QStringLiteral("Balance: Center");
    return QStringLiteral("Balance: %1% %2")
        .arg(share)
        .arg(balance < 0 ? QStringLiteral("Left") : QStringLiteral("Right"));
}

QString seek(double fraction, double duration) {
    const double place = clampedFraction(fraction);
    return QStringLiteral("Seek to: %1/%2 (%3%)")
        .arg(time(duration * place), time(duration))
        .arg(static_cast<int>(place * 100));
}

QString equalizer(std::optional<int> bandHz, double gain) {
    const QString label = bandHz ? bandLabel(*bandHz) : QStringLiteral("Preamp");
    // Halves go up on both sides of zero; no such value prints as "-0".
    const double tenths = std::isfinite(gain) ? std::floor(gain * 10 + 0.5) : 0;
    return QStringLiteral("EQ: %1 %2%3 dB")
        .arg(label, tenths > 0 ? QStringLiteral("+") : QString(), QString::number(tenths / 10));
}

} // namespace vantor::MarqueeText
