#pragma once

#include "Vantor/Remote/RemoteOutput.h"

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
        bool isSelected = false;
        NowPlaying playing;                 ///< stopped before anything is known
        std::optional<OutputDevice> leader; ///< of the group in which it plays as a member
        QList<OutputDevice> members;        ///< of the group that it leads
        QList<OutputDevice> joinable;       ///< what may play along with it, or does

        bool operator==(const Row &) const = default;
    };
    /// In the order of the source; a selected speaker that is not there comes last.
    [[nodiscard]] QList<Row> rows() const;
    /// What it does, as people say it.
    [[nodiscard]] static QString statusOf(const Row &row);

    void select(const OutputDevice &output) { m_selected.select(output); }
    void setVolume(const OutputDevice::ID &output, double volume);
    void setMember(const OutputDevice::ID &leader, const OutputDevice::ID &member, bool isMember);
    /// Whether the selected speaker's music could be moved there.
    [[nodiscard]] bool canTakeMusic(const OutputDevice &output) const;
    /// Moves the music there, and the selection when that has worked.
    void takeMusic(const OutputDevice &output);

  Q_SIGNALS:
    void changed();

  private:
    struct Watch;

    void watchAll();
    QCoro::Task<> follow(std::weak_ptr<Watch> alive);
    QCoro::Task<> sendVolume(OutputDevice::ID output, double volume);
    QCoro::Task<> changeGroup(OutputDevice::ID leader, OutputDevice::ID member, bool isMember);
    QCoro::Task<> transfer(OutputDevice output);
    [[nodiscard]] std::shared_ptr<MusicBackend> backend() const;

    RemoteOutput &m_selected;
    std::shared_ptr<MusicBackend> m_backend; ///< whose outputs are followed
    std::map<QString, std::shared_ptr<Watch>> m_watches;
};

} // namespace vantor
