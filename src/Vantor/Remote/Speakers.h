#pragma once

#include "Vantor/Remote/RemoteOutput.h"
#include "Vantor/Remote/SpeakerGroup.h"

#include <map>

namespace vantor {

/// All outputs of the music source: what each of them plays, and what can be done to it without selecting it.
/// As long as it lives, it follows every one of them. Main thread; borrows the selected output.
class Speakers : public QObject {
    Q_OBJECT

  public:
    explicit Speakers(RemoteOutput &selected, QObject *parent = nullptr);
    ~Speakers() override;

    struct Row {
        OutputDevice device;
        SpeakerGroup group;
        bool isSelected = false;
        bool isInterrupted = false; ///< nothing can be done until the source has its server again
        NowPlaying playing;         ///< stopped before anything is known
        OutputControls controls;

        bool operator==(const Row &) const = default;
    };
    /// In the order of the source; those that are not there come last.
    [[nodiscard]] QList<Row> rows() const;
    /// What it does, as people say it.
    [[nodiscard]] static QString statusOf(const Row &row);

    [[nodiscard]] RemoteOutput &selected() const { return m_selected; }
    /// One that is muted is heard again.
    void setVolume(const OutputDevice::ID &output, double volume);
    void setMuted(const OutputDevice::ID &output, bool isMuted);
    /// Whether the selected speaker's music could be moved there.
    [[nodiscard]] bool canTakeMusic(const OutputDevice &output) const;
    /// Moves the music there, and the selection when that has worked.
    void takeMusic(const OutputDevice &output);

  Q_SIGNALS:
    void changed();

  private:
    struct Watch;

    void watchAll();
    void takeControls();
    QCoro::Task<> follow(std::weak_ptr<Watch> alive);
    QCoro::Task<> sendVolume(OutputDevice::ID output, double volume);
    QCoro::Task<> carryOut(QCoro::Task<> operation, OutputDevice::ID output);
    [[nodiscard]] bool isSelected(const OutputDevice::ID &output) const;
    [[nodiscard]] Row rowOf(const OutputDevice &output) const;
    QCoro::Task<> transfer(OutputDevice output);
    [[nodiscard]] std::shared_ptr<MusicBackend> backend() const;

    RemoteOutput &m_selected;
    std::shared_ptr<MusicBackend> m_backend; ///< whose outputs are followed
    std::map<QString, std::shared_ptr<Watch>> m_watches;
};

} // namespace vantor
