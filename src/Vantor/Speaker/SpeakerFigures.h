#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>

namespace vantor {

class NetworkSpeaker;
class SpeakerGraph;
struct SendspinFigures;

/// How well a speaker does, as graphs of the last minute. Asks the speaker a few times a second while it is
/// seen, and never otherwise. Main thread; borrows the speaker.
class SpeakerFigures : public QWidget {
    Q_OBJECT

  public:
    explicit SpeakerFigures(const NetworkSpeaker &speaker);

  protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

  private:
    struct Row {
        SpeakerGraph *graph;
        std::function<std::optional<double>(const SendspinFigures &)> value;
    };
    void ask();

    const NetworkSpeaker &m_speaker;
    std::vector<Row> m_rows;
    QTimer m_timer;
};

} // namespace vantor
