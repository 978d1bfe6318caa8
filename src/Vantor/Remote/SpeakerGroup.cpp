#include "Vantor/Remote/SpeakerGroup.h"

#include "LibraryBrowser/LibraryBrowser.h"

#include <algorithm>

namespace vantor {

SpeakerGroup SpeakerGroup::of(const OutputDevice &output, const LibraryBrowser &browser) {
    const QList<OutputDevice> &outputs = browser.outputs();
    const auto find = [&](const OutputDevice::ID &id) -> std::optional<OutputDevice> {
        const auto found = std::ranges::find(outputs, id, &OutputDevice::id);
        return found != outputs.end() ? std::optional(*found) : std::nullopt;
    };
    SpeakerGroup group;
    for (const OutputActivity &activity : browser.activities()) {
        const std::optional<OutputDevice> other = find(activity.output);
        if (activity.output == output.id && activity.leader && *activity.leader != output.id)
            group.leader = find(*activity.leader);
        else if (activity.leader == output.id && activity.output != output.id && other)
            group.members.append(*other);
    }
    for (const OutputDevice &other : outputs) {
        const bool mayJoin = output.groupableWith && output.groupableWith->contains(other.id);
        if (other.id != output.id && other.isAvailable && (mayJoin || group.members.contains(other)))
            group.joinable.append(other);
    }
    return group;
}

} // namespace vantor
