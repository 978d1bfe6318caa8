#include "MusicAssistantKit/Backend/MusicAssistantBackendErrors.h"

namespace vantor::MusicAssistantBackendErrors {

using namespace Qt::Literals::StringLiterals;

namespace {

QString pageName(SettingsPage page) {
    return page == SettingsPage::library ? u"Library"_s : u"Music Assistant"_s;
}

} // namespace

MusicBackendError noServer(SettingsPage page) {
    return MusicBackendError::notConfigured(
        u"Add a Music Assistant server under Settings › %1."_s.arg(pageName(page)));
}

MusicBackendError noServerReachable() {
    return MusicBackendError::unreachable(u"No Music Assistant server reachable"_s);
}

MusicBackendError noToken(SettingsPage page) {
    return MusicBackendError::notConfigured(
        u"Enter the Music Assistant token under Settings › %1."_s.arg(pageName(page)));
}

MusicBackendError unreadableToken() {
    return MusicBackendError::notConfigured(u"The Music Assistant token could not be read."_s);
}

MusicBackendError localPlayerOff() {
    return MusicBackendError::notConfigured(u"This Mac isn't connected to Music Assistant. Turn on Play on "
                                            "this Mac in Settings › Music Assistant."_s);
}

MusicBackendError localPlayerComing() {
    return MusicBackendError::unreachable(u"Music Assistant is still setting up this Mac as a player. Try "
                                          "again in a few seconds."_s);
}

MusicBackendError localPlayerAway() {
    return MusicBackendError::unreachable(u"This Mac isn't connected to Music Assistant right now."_s);
}

MusicBackendError requestFailed() {
    return MusicBackendError::backend(u"The Music Assistant request failed."_s);
}

MusicBackendError notPermitted() {
    return MusicBackendError::forbidden(u"The Music Assistant request failed."_s);
}

MusicBackendError tooLarge() {
    return MusicBackendError::backend(u"That is too large for Music Assistant."_s);
}

MusicBackendError unreadableAnswer() {
    return MusicBackendError::backend(u"Music Assistant's answer could not be read."_s);
}

MusicBackendError noArtwork() {
    return MusicBackendError::backend(u"Music Assistant could not provide the artwork."_s);
}

MusicBackendError artworkSizeRefused() {
    return MusicBackendError::backend(u"Music Assistant refused the artwork size."_s);
}

MusicBackendError newPlaylistWithoutName() {
    return MusicBackendError::backend(u"A playlist needs a name."_s);
}

MusicBackendError playlistWithoutName() {
    return MusicBackendError::backend(u"The playlist needs a name."_s);
}

MusicBackendError builtInRename() {
    return MusicBackendError::forbidden(u"Built-in playlists can't be renamed."_s);
}

MusicBackendError builtInDelete() {
    return MusicBackendError::forbidden(u"Built-in playlists can't be deleted."_s);
}

MusicBackendError readOnlyPlaylist(const QString &name) {
    return MusicBackendError::forbidden(u"“%1” is read-only."_s.arg(name));
}

MusicBackendError emptyPlaylistFile() {
    return MusicBackendError::backend(u"The playlist file is empty."_s);
}

MusicBackendError reorderingUnsupported() {
    return MusicBackendError::unsupported(MusicBackendCapability::playlistEditing,
                                          u"Reordering needs a newer Music Assistant."_s);
}

MusicBackendError emptyQueue() {
    return MusicBackendError::backend(u"The queue is empty: there is nothing to save."_s);
}

MusicBackendError unusableQueue() {
    return MusicBackendError::backend(u"Nothing in this queue can go in a playlist."_s);
}

MusicBackendError notInLibrary() {
    return MusicBackendError::backend(u"Only items in the Music Assistant library can be unfavorited."_s);
}

} // namespace vantor::MusicAssistantBackendErrors
