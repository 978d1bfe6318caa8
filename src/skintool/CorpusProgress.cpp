#include "skintool/CorpusProgress.h"

#include <unistd.h>

#include <cmath>

namespace vantor {

namespace {

using namespace std::chrono_literals;

constexpr auto clearLine = "\r\x1B[K";

QString duration(double seconds) {
    const auto whole = static_cast<qint64>(std::ceil(seconds));
    const QString clock = QStringLiteral("%1:%2")
                              .arg(whole / 60 % 60, whole < 3600 ? 1 : 2, 10, QLatin1Char('0'))
                              .arg(whole % 60, 2, 10, QLatin1Char('0'));
    return whole < 3600 ? clock : QString::number(whole / 3600) + QLatin1Char(':') + clock;
}

} // namespace

QString corpusCounts(const std::map<CorpusStatus, std::int64_t> &counts) {
    QStringList parts;
    for (const auto &[status, count] : counts)
        parts.append(QString::number(count) + QLatin1Char(' ') + rawValue(status));
    return parts.join(QStringLiteral(", "));
}

CorpusProgress::CorpusProgress(std::int64_t total, std::int64_t before)
    : m_isTerminal(isatty(STDERR_FILENO) == 1), m_total(total), m_before(before) {}

QString CorpusProgress::line(const std::map<CorpusStatus, std::int64_t> &counts, std::int64_t done) const {
    const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    const double rate = seconds > 0 ? static_cast<double>(done - m_before) / seconds : 0;
    QString text = QStringLiteral("%1/%2 (%3 %)")
                       .arg(done)
                       .arg(m_total)
                       .arg(done * 100 / std::max<std::int64_t>(m_total, 1));
    if (rate > 0)
        text += QStringLiteral(", %1/s, %2 left")
                    .arg(rate, 0, 'f', 1)
                    .arg(duration(static_cast<double>(m_total - done) / rate));
    return counts.empty() ? text : text + QStringLiteral(": ") + corpusCounts(counts);
}

void CorpusProgress::update(const std::map<CorpusStatus, std::int64_t> &counts, std::int64_t done) {
    const auto now = Clock::now();
    if (now - m_last < (m_isTerminal ? 200ms : 10'000ms))
        return;
    m_last = now;
    const QByteArray text = line(counts, done).toUtf8();
    if (m_isTerminal)
        std::fprintf(stderr, "%s%s", clearLine, text.constData());
    else
        std::fprintf(stderr, "%s\n", text.constData());
}

void CorpusProgress::say(const QString &line) {
    end();
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

void CorpusProgress::end() {
    if (m_isTerminal)
        std::fputs(clearLine, stderr);
}

} // namespace vantor
