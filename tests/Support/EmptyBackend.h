#pragma once

#include "MusicBackendKit/MusicBackend.h"

namespace vantor {

/// A library with nothing in it; tests override what they need.
class EmptyBackend : public MusicBackend {
  public:
    QString sourceID() const override { return QStringLiteral("empty"); }
    QString displayName() const override { return QStringLiteral("Empty"); }
    MusicBackendCapabilities capabilities() const override { return {}; }
    QCoro::Task<> connect() override { co_return; }
    QCoro::Task<> disconnect() override { co_return; }
    QCoro::Task<Page<LibraryArtist>> artists(PageRequest) override { co_return Page<LibraryArtist>(); }
    QCoro::Task<Page<LibraryAlbum>> albums(std::optional<MediaID>, PageRequest) override {
        co_return Page<LibraryAlbum>();
    }
    QCoro::Task<QList<LibraryTrack>> tracks(MediaID) override { co_return QList<LibraryTrack>(); }
    QCoro::Task<Page<LibraryPlaylist>> playlists(PageRequest) override { co_return Page<LibraryPlaylist>(); }
    QCoro::Task<QList<LibraryTrack>> tracksOfPlaylist(MediaID) override { co_return QList<LibraryTrack>(); }
    QCoro::Task<SearchResults> search(QString, int) override { co_return SearchResults(); }
    QCoro::Task<QByteArray> artwork(ArtworkRef, int) override { co_return QByteArray(); }
    QCoro::Task<QList<OutputDevice>> outputs() override { co_return QList<OutputDevice>(); }
    QCoro::Task<> play(QList<MediaID>, OutputDevice, PlayMode) override { co_return; }
    QCoro::Task<> transport(TransportCommand, OutputDevice::ID) override { co_return; }
    AsyncStream<NowPlaying> nowPlaying(OutputDevice::ID) override { return {}; }
};

} // namespace vantor
