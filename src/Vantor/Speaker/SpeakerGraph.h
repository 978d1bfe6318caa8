#pragma once

#include <QWidget>

#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace vantor {

/// One figure of how a speaker is doing: its name, its value now, and how it went for the last minute. It is
/// told values with the time, a few a second; unseen it keeps them and does nothing else. Main thread.
class SpeakerGraph : public QWidget {
    Q_OBJECT

  public:
    /// What the height of the graph means.
    enum class Scale {
        fromZero,     ///< nothing at the foot
        aroundZero,   ///< too little below the middle, too much above
        aroundMiddle, ///< of the minute's values: how they change is what matters
        perSecond     ///< the value is a running total; a bar for each second that added to it
    };
    struct Look {
        QString title;
        QString hint; ///< a sentence about what it is
        Scale scale = Scale::fromZero;
        double least = 1; ///< what reaches the edge at least, so that noise stays small
        std::function<QString(double)> text;
        std::function<QString(double)> rangeText; ///< of a value at the edge of the graph
    };
    static constexpr double seconds = 60; ///< that it shows

    explicit SpeakerGraph(Look look);

    /// `now`: in seconds, never less than before. None where there is nothing to tell.
    void add(double now, std::optional<double> value);
    /// What it shows, in words.
    [[nodiscard]] QString valueText() const { return m_text; }
    [[nodiscard]] QString rangeText() const;
    [[nodiscard]] const Look &look() const { return m_look; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    struct Sample {
        double time = 0;
        std::optional<double> value;
    };
    struct Range {
        double from = 0;
        double to = 1;
    };

    [[nodiscard]] QFont smallFont() const;
    [[nodiscard]] QRect graphRect() const;
    [[nodiscard]] Range range() const;
    [[nodiscard]] std::vector<double> grownPerSecond() const;
    void drawTexts(QPainter &painter) const;
    void drawLine(QPainter &painter, const QRectF &area) const;
    void drawBars(QPainter &painter, const QRectF &area) const;

    const Look m_look;
    std::deque<Sample> m_samples; ///< of the last minute, the oldest first
    QString m_text;
    double m_textTime = 0; ///< when it was last changed
};

} // namespace vantor
