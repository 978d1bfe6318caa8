#include "Vantor/Speaker/SpeakerGraph.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

constexpr int padding = 8;
constexpr int graphHeight = 34;
constexpr int textGap = 3;         // between the texts and the graph
constexpr double readable = 0.5;   // seconds that a text stays, so that it can be read
constexpr double longestBreak = 1; // seconds between two values: a longer one is a gap

/// Read when somebody asks: told at every change, a screen reader would never be silent.
class GraphInterface : public QAccessibleWidget {
  public:
    explicit GraphInterface(SpeakerGraph *graph) : QAccessibleWidget(graph, QAccessible::Chart) {}

    [[nodiscard]] QString text(QAccessible::Text what) const override {
        const auto *const graph = static_cast<const SpeakerGraph *>(widget());
        switch (what) {
        case QAccessible::Name:
            return SpeakerGraph::tr("%1: %2").arg(graph->look().title, graph->valueText());
        case QAccessible::Description:
            return SpeakerGraph::tr("%1 Graph of the last minute, %2.")
                .arg(graph->look().hint, graph->rangeText());
        default:
            return {};
        }
    }
};

QAccessibleInterface *makeInterface(const QString &, QObject *object) {
    auto *const graph = qobject_cast<SpeakerGraph *>(object);
    return graph ? new GraphInterface(graph) : nullptr;
}

/// The next of 1, 2, 5, 10 … upwards, so that the range changes seldom.
double roundUp(double value) {
    const double magnitude = std::pow(10, std::floor(std::log10(value)));
    for (const double step : {1, 2, 5}) {
        if (value <= step * magnitude * (1 + 1e-9))
            return step * magnitude;
    }
    return 10 * magnitude;
}

QColor mixed(const QColor &a, const QColor &b, float share) {
    return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * share,
                            a.greenF() + (b.greenF() - a.greenF()) * share,
                            a.blueF() + (b.blueF() - a.blueF()) * share);
}

/// Digits have one width, so that a number that changes stands still, whatever the font.
void drawNumbers(QPainter &painter, double right, double baseline, const QString &text) {
    const QFontMetricsF metrics(painter.font());
    double digit = 0;
    for (char16_t character = u'0'; character <= u'9'; ++character)
        digit = std::max(digit, metrics.horizontalAdvance(QChar(character)));
    double x = right;
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        const double own = metrics.horizontalAdvance(text[i]);
        const double width = text[i].isDigit() ? digit : own;
        x -= width;
        painter.drawText(QPointF(x + (width - own) / 2, baseline), text.mid(i, 1));
    }
}

} // namespace

SpeakerGraph::SpeakerGraph(Look look) : m_look(std::move(look)), m_text(QChar(0x2013)) {
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    setFocusPolicy(Qt::TabFocus);
    setToolTip(m_look.hint);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void SpeakerGraph::add(double now, std::optional<double> value) {
    m_samples.push_back({now, value});
    while (m_samples.front().time < now - seconds)
        m_samples.pop_front();
    const QString text = value ? m_look.text(*value) : QString(QChar(0x2013));
    if (text != m_text && (now - m_textTime >= readable || m_samples.size() == 1)) {
        m_text = text;
        m_textTime = now;
    }
    update();
}

/// How much the total grew in each second, the last one first.
std::vector<double> SpeakerGraph::grownPerSecond() const {
    std::vector<double> grown(static_cast<std::size_t>(seconds), 0);
    for (std::size_t i = 1; i < m_samples.size(); ++i) {
        const auto &before = m_samples[i - 1].value;
        const auto &after = m_samples[i].value;
        const auto age = static_cast<std::size_t>(m_samples.back().time - m_samples[i].time);
        if (before && after && *after > *before && age < grown.size())
            grown[age] += *after - *before;
    }
    return grown;
}

SpeakerGraph::Range SpeakerGraph::range() const {
    if (m_look.scale == Scale::perSecond) {
        const std::vector<double> grown = grownPerSecond();
        return {0, roundUp(std::max(m_look.least, *std::ranges::max_element(grown)))};
    }
    std::optional<Range> all;
    for (const Sample &sample : m_samples) {
        if (!sample.value)
            continue;
        const double value = *sample.value;
        all = all ? Range{std::min(all->from, value), std::max(all->to, value)} : Range{value, value};
    }
    if (!all)
        all = {0, 0};
    if (m_look.scale == Scale::fromZero)
        return {0, roundUp(std::max(m_look.least, all->to))};
    const double middle = m_look.scale == Scale::aroundZero ? 0 : (all->from + all->to) / 2;
    const double reach = roundUp(std::max({m_look.least, all->to - middle, middle - all->from}));
    return {middle - reach, middle + reach};
}

QString SpeakerGraph::rangeText() const {
    const Range shown = range();
    switch (m_look.scale) {
    case Scale::fromZero:
        return tr("0 to %1").arg(m_look.rangeText(shown.to));
    case Scale::aroundZero:
        return tr("within ±%1").arg(m_look.rangeText(shown.to));
    case Scale::aroundMiddle:
        return tr("%1 from bottom to top").arg(m_look.rangeText(shown.to - shown.from));
    case Scale::perSecond:
        return tr("up to %1 a second").arg(m_look.rangeText(shown.to));
    }
    return {};
}

// What it looks like

QFont SpeakerGraph::smallFont() const {
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    return small;
}

QSize SpeakerGraph::sizeHint() const {
    const int texts = fontMetrics().height() + QFontMetrics(smallFont()).height() + 2 * textGap;
    return {18 * fontMetrics().averageCharWidth() + 2 * padding, texts + graphHeight + 2 * padding};
}

QRect SpeakerGraph::graphRect() const {
    return rect().adjusted(padding, padding + fontMetrics().height() + textGap, -padding,
                           -padding - QFontMetrics(smallFont()).height() - textGap);
}

void SpeakerGraph::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    painter.setPen(hasFocus() ? palette().color(QPalette::Highlight) : mixed(base, text, 0.16F));
    painter.setBrush(base);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
    drawTexts(painter);

    const QRectF area = graphRect();
    const double zero = m_look.scale == Scale::aroundZero ? area.center().y() : area.bottom();
    painter.setPen(QPen(mixed(base, text, 0.16F), 1));
    painter.drawLine(QPointF(area.left(), zero), QPointF(area.right(), zero));
    if (m_look.scale == Scale::perSecond)
        drawBars(painter, area);
    else
        drawLine(painter, area);
}

void SpeakerGraph::drawTexts(QPainter &painter) const {
    const QRect inner = rect().adjusted(padding, padding, -padding, -padding);
    painter.setPen(palette().color(QPalette::Text));
    drawNumbers(painter, inner.right() + 1, inner.top() + fontMetrics().ascent(), m_text);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignTop, m_look.title);
    painter.setFont(smallFont());
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignBottom, rangeText());
}

/// The theme's colour, drawn towards the text's so that it stands out on dark and light ground.
static QColor lineColor(const QPalette &palette) {
    return mixed(palette.color(QPalette::Highlight), palette.color(QPalette::Text), 0.2F);
}

void SpeakerGraph::drawLine(QPainter &painter, const QRectF &area) const {
    if (m_samples.empty())
        return;
    const Range shown = range();
    QPainterPath line;
    double last = 0;
    bool isBroken = true;
    for (const Sample &sample : m_samples) {
        isBroken = isBroken || sample.time - last > longestBreak;
        last = sample.time;
        if (!sample.value) {
            isBroken = true;
            continue;
        }
        const double age = (m_samples.back().time - sample.time) / seconds;
        const double share = (*sample.value - shown.from) / (shown.to - shown.from);
        const QPointF point(area.right() - age * area.width(),
                            area.bottom() - std::clamp(share, 0.0, 1.0) * area.height());
        if (isBroken)
            line.moveTo(point);
        else
            line.lineTo(point);
        isBroken = false;
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(lineColor(palette()), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(line);
}

void SpeakerGraph::drawBars(QPainter &painter, const QRectF &area) const {
    const std::vector<double> grown = grownPerSecond();
    const double most = range().to;
    const double width = area.width() / seconds;
    painter.setPen(Qt::NoPen);
    painter.setBrush(lineColor(palette()));
    for (std::size_t age = 0; age < grown.size(); ++age) {
        const double height = grown[age] / most * area.height();
        const double right = area.right() - static_cast<double>(age) * width;
        if (height > 0)
            painter.drawRect(QRectF(right - width, area.bottom() - height, width - 0.5, height));
    }
}

} // namespace vantor
