#pragma once

#include "Vantor/Remote/LatestSender.h"
#include "Vantor/Remote/RemoteOutput.h"

#include <map>

namespace vantor {

/// All outputs of the music source with what they do, and what can be done to each of them without selecting
/// it. While it is watched it follows what every speaker plays. Main thread; borrows the output.
class Speakers : public QObject {
    Q_OBJECT

  public:
    explicit Speakers(RemoteOutput &selected, QObject *parent = nullptr);
    ~Speakers() override;

    struct Row {
        OutputDevice device;
        bool isSelected = false;
        NowPlaying playing; ///< stopped before anything is known
        std::optional<OutputDevice> leader; ///< of the group that it plays in as a member
        QList<OutputDevice> members;        ///< of the group that it leads
        QList<OutputDevice> joinable;       ///< outputs that may join it, its members included

        bool operator==(const Row &) const = default;
    };
    /// In the order of the source, this computer first.
    [[nodiscard]] QList<Row> rows() const;
    /// What it does, in a sentence: "Playing Artist - Title", "Not available".
    [[nodiscard]] static QString status(const Row &row);

    void select(const OutputDevice &output) { m_selected.select(output); }
    void setVolume(const OutputDevice::ID &output, double volume);
    void setMember(const OutputDevice::ID &leader, const OutputDevice::ID &member, bool isMember);
    /// Moves the queue of the selected speaker there, which then is selected.
    void transferTo(const OutputDevice &output);

  Q_SIGNALS:
    void changed();

  private:
    RemoteOutput &m_selected;
};

} // namespace vantor
