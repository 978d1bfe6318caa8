#include "SkinKit/Layout/PlaylistWindowControl.h"

#include "SkinKit/Layout/PlaylistWindowLayout.h"

#include <array>

namespace vantor {

using Control = PlaylistWindowControl;
using Entry = PlaylistMenuEntry;

PlaylistWindowControl playlistWindowControlAt(QPoint point, QSize size, bool shaded) {
    if (!QRect({0, 0}, PlaylistWindowLayout::windowSize(size, shaded)).contains(point))
        return Control::none;
    for (int each = static_cast<int>(Control::shade); each <= static_cast<int>(Control::resize); ++each) {
        const auto control = static_cast<Control>(each);
        if (PlaylistWindowLayout::rect(control, size, shaded).contains(point))
            return control;
    }
    return Control::none;
}

namespace PlaylistMenus {

namespace {

constexpr int entryHeight = 18;
constexpr int barWidth = 3;

struct Menu {
    Control button;
    const char *bar;
    std::span<const Entry> entries;
};

constexpr std::array addEntries{Entry::addUrl, Entry::addFolder, Entry::addFiles};
constexpr std::array removeEntries{Entry::removeMisc, Entry::removeAll, Entry::crop, Entry::removeSelected};
constexpr std::array selectEntries{Entry::invertSelection, Entry::selectNone, Entry::selectAll};
constexpr std::array miscEntries{Entry::sort, Entry::fileInfo, Entry::miscOptions};
constexpr std::array listEntries{Entry::newList, Entry::saveList, Entry::loadList};

constexpr std::array<Menu, 5> menus{Menu{Control::add, "PLAYLIST_ADD_MENU_BAR", addEntries},
                                    Menu{Control::remove, "PLAYLIST_REMOVE_MENU_BAR", removeEntries},
                                    Menu{Control::select, "PLAYLIST_SELECT_MENU_BAR", selectEntries},
                                    Menu{Control::misc, "PLAYLIST_MISC_MENU_BAR", miscEntries},
                                    Menu{Control::list, "PLAYLIST_LIST_BAR", listEntries}};

const Menu &facts(PlaylistMenu menu) {
    return menus.at(static_cast<std::size_t>(menu));
}

} // namespace

std::optional<PlaylistMenu> of(PlaylistWindowControl control) {
    for (std::size_t i = 0; i < menus.size(); ++i) {
        if (menus[i].button == control)
            return static_cast<PlaylistMenu>(i);
    }
    return std::nullopt;
}

PlaylistWindowControl button(PlaylistMenu menu) {
    return facts(menu).button;
}

std::span<const PlaylistMenuEntry> entries(PlaylistMenu menu) {
    return facts(menu).entries;
}

QRect rect(PlaylistMenu menu, QSize size) {
    return barRect(menu, size) | PlaylistWindowLayout::rect(button(menu), size, false);
}

QRect barRect(PlaylistMenu menu, QSize size) {
    const QRect last = PlaylistWindowLayout::rect(button(menu), size, false);
    const int height = static_cast<int>(entries(menu).size()) * entryHeight;
    return {last.left() - barWidth, last.bottom() + 1 - height, barWidth, height};
}

QRect entryRect(PlaylistMenu menu, int index, QSize size) {
    const int below = static_cast<int>(entries(menu).size()) - 1 - index;
    return PlaylistWindowLayout::rect(button(menu), size, false).translated(0, -below * entryHeight);
}

std::optional<int> entryAt(PlaylistMenu menu, QPoint point, QSize size) {
    for (int index = 0; index < static_cast<int>(entries(menu).size()); ++index) {
        if (entryRect(menu, index, size).contains(point))
            return index;
    }
    return std::nullopt;
}

QString barSprite(PlaylistMenu menu) {
    return QLatin1String(facts(menu).bar);
}

QString entrySprite(PlaylistMenuEntry entry, bool selected) {
    constexpr std::array names{"ADD_URL",      "ADD_DIR",    "ADD_FILE",        "REMOVE_MISC",
                               "REMOVE_ALL",   "CROP",       "REMOVE_SELECTED", "INVERT_SELECTION",
                               "SELECT_ZERO",  "SELECT_ALL", "SORT_LIST",       "FILE_INFO",
                               "MISC_OPTIONS", "NEW_LIST",   "SAVE_LIST",       "LOAD_LIST"};
    const QString name =
        QStringLiteral("PLAYLIST_") + QLatin1String(names.at(static_cast<std::size_t>(entry)));
    return selected ? name + QStringLiteral("_SELECTED") : name;
}

} // namespace PlaylistMenus
} // namespace vantor
