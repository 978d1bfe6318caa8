#include "Vantor/Speaker/SpeakerFigures.h"

#include "Vantor/Speaker/NetworkSpeaker.h"
#include "Vantor/Speaker/SpeakerGraph.h"

#include <QGridLayout>
#include <QLocale>

#include <chrono>
#include <limits>

namespace vantor {

using namespace std::chrono_literals;

static constexpr auto interval = 200ms;

static QString number(double value, int decimals) {
    return QLocale().toString(std::abs(value), 'f', decimals);
}

/// With a sign that is as wide as the other one.
static QString signedNumber(double value, int decimals) {
    const QString digits = number(value, decimals);
    const bool isZero = digits == number(0, decimals);
    return (isZero ? QString() : QString(QChar(value < 0 ? 0x2212 : u'+'))) + digits;
}

static QString decimalsAsNeeded(double value) {
    return number(value, value < 0.1 ? 2 : value < 1 ? 1 : 0);
}

SpeakerFigures::SpeakerFigures(const NetworkSpeaker &speaker) : m_speaker(speaker) {
    using Scale = SpeakerGraph::Scale;
    using Figures = SendspinFigures;
    const auto milliseconds = [](double value) {
        return value < 1000 ? tr("%1 ms").arg(decimalsAsNeeded(value))
                            : tr("%1 s").arg(number(value / 1000, 0));
    };
    const auto count = [](double value) { return number(value, 0); };
    const auto whilePlaying = [](auto member) {
        return [member](const Figures &figures) {
            return figures.isPlaying ? std::optional<double>(member(figures)) : std::nullopt;
        };
    };
    const auto always = [](auto member) {
        return [member](const Figures &figures) { return std::optional<double>(member(figures)); };
    };
    // The server's clock at the left, what becomes of the sound at the right.
    m_rows = {
        {new SpeakerGraph({.title = tr("Clock offset"),
                           .hint = tr("By how much the server's clock is ahead of this computer's."),
                           .scale = Scale::aroundMiddle,
                           .least = 0.5,
                           .text =
                               [](double value) {
                                   return std::abs(value) < 1000
                                              ? tr("%1 ms").arg(signedNumber(value, 2))
                                              : tr("%1 s").arg(signedNumber(value / 1000, 3));
                               },
                           .rangeText = milliseconds}),
         always([](const Figures &figures) { return figures.offset / 1000; })},
        {new SpeakerGraph({.title = tr("Sync error"),
                           .hint = tr("By how much what is heard is too early; with a minus sign, too late."),
                           .scale = Scale::aroundZero,
                           .least = 0.5,
                           .text = [](double value) { return tr("%1 ms").arg(signedNumber(value, 2)); },
                           .rangeText = milliseconds}),
         whilePlaying([](const Figures &figures) { return figures.error * 1000; })},
        {new SpeakerGraph(
             {.title = tr("Clock drift"),
              .hint = tr("By how many millionths the server's clock is faster than this computer's."),
              .scale = Scale::aroundZero,
              .least = 10,
              .text = [](double value) { return tr("%1 ppm").arg(signedNumber(value, 1)); },
              .rangeText = [](double value) { return tr("%1 ppm").arg(number(value, 0)); }}),
         always([](const Figures &figures) { return figures.drift * 1e6; })},
        {new SpeakerGraph({.title = tr("Buffer"),
                           .hint = tr("How long the sound lasts that is already here."),
                           .scale = Scale::fromZero,
                           .least = 1,
                           .text = [](double value) { return tr("%1 s").arg(number(value, 1)); },
                           .rangeText = [](double value) { return tr("%1 s").arg(number(value, 0)); }}),
         always([](const Figures &figures) { return figures.bufferedMs / 1000; })},
        {new SpeakerGraph({.title = tr("Clock error"),
                           .hint = tr("How exactly the server's clock is known."),
                           .scale = Scale::fromZero,
                           .least = 0.1,
                           .text = [](double value) { return tr("±%1 ms").arg(number(value, 2)); },
                           .rangeText = milliseconds}),
         [](const Figures &figures) {
             const bool isKnown = figures.clockError < std::numeric_limits<std::int64_t>::max();
             return isKnown ? std::optional(static_cast<double>(figures.clockError) / 1000) : std::nullopt;
         }},
        {new SpeakerGraph({.title = tr("Late chunks"),
                           .hint = tr("Pieces of the stream that came when their time was over."),
                           .scale = Scale::perSecond,
                           .least = 5,
                           .text = count,
                           .rangeText = count}),
         always([](const Figures &figures) { return figures.late; })},
        {new SpeakerGraph({.title = tr("Resyncs"),
                           .hint = tr("Jumps because sound was missing or far from its time."),
                           .scale = Scale::perSecond,
                           .least = 2,
                           .text = count,
                           .rangeText = count}),
         always([](const Figures &figures) { return figures.resyncs; })},
        {new SpeakerGraph({.title = tr("Dropped chunks"),
                           .hint = tr("Pieces of the stream that did not fit or could not be decoded."),
                           .scale = Scale::perSecond,
                           .least = 5,
                           .text = count,
                           .rangeText = count}),
         always([](const Figures &figures) { return figures.dropped; })}};
    auto *const layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (int i = 0; i < static_cast<int>(m_rows.size()); ++i)
        layout->addWidget(m_rows[static_cast<std::size_t>(i)].graph, i / 2, i % 2);
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &SpeakerFigures::ask);
}

void SpeakerFigures::showEvent(QShowEvent *event) {
    ask();
    m_timer.start();
    QWidget::showEvent(event);
}

void SpeakerFigures::hideEvent(QHideEvent *event) {
    m_timer.stop();
    QWidget::hideEvent(event);
}

void SpeakerFigures::ask() {
    const auto figures = m_speaker.figures();
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    for (const Row &row : m_rows)
        row.graph->add(now.count(), figures ? row.value(*figures) : std::nullopt);
}

} // namespace vantor
