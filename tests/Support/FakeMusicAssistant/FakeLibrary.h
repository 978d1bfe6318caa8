#pragma once

#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"

namespace vantor {

/// The made-up library of a FakeMusicAssistant, of any size, with the commands that read and change it. Items
/// are made when they are asked for. Lives no longer than the server; one thread.
class FakeLibrary : public QObject {
  public:
    struct Size {
        int tracks = 1'000; ///< ten to an album, fifty to an artist
        int playlists = 8;
        int radios = 12;
        int favoriteEvery = 7; ///< the first of so many
    };
    /// How servers of a certain age speak.
    enum class Dialect {
        today,
        old, ///< no list of commands, no summaries, rows with their items, pictures by their path
    };

    int longestPage = 10'000; ///< whatever is asked for

    FakeLibrary(FakeMusicAssistant &server, Size size, Dialect dialect = Dialect::today);

    [[nodiscard]] const Size &size() const { return m_size; }
    [[nodiscard]] int count(const QString &mediaType) const;
    /// As the server sends it; null for one that is not there. `index` from 0.
    [[nodiscard]] QJsonValue item(const QString &mediaType, int index) const;
    [[nodiscard]] QJsonValue itemByURI(const QString &uri) const;
    [[nodiscard]] static QString uri(const QString &mediaType, int index);
    /// The tracks and stations that an item stands for.
    [[nodiscard]] QStringList expanded(const QString &uri) const;
    [[nodiscard]] Dialect dialect() const { return m_dialect; }
    /// Of a playlist: URIs.
    [[nodiscard]] QStringList tracksOf(int playlist) const { return m_playlists.value(playlist).tracks; }

    /// To everybody who listens, about an item as it is now.
    void sendItemEvent(const QString &event, const QString &uri);
    /// The command list gets this entry too.
    void listCommand(const QString &name, const QStringList &parameters);
    void unlistCommand(const QString &name) { m_listed.remove(name); }
    int addPlaylist(const QString &name, const QStringList &tracks);

  private:
    struct Playlist {
        QString name;
        QString domain = QStringLiteral("builtin");
        bool isEditable = true;
        bool isDynamic = false;
        QStringList tracks;
    };
    struct Radio {
        QString name;
        QString url;
    };
    using Args = QJsonObject;

    void makePlaylists();
    void addListCommands();
    void addItemCommands();
    void addPlaylistCommands();
    void addFavoriteCommands();
    void addRecommendationCommands();
    void addPages();
    /// A command whose arguments, but those with "?", have to be there.
    void command(const QString &name, const QStringList &parameters,
                 FakeMusicAssistant::CommandHandler handler);

    [[nodiscard]] QJsonObject base(const QString &mediaType, int index, const QString &name) const;
    [[nodiscard]] QJsonObject image(const QString &path) const;
    [[nodiscard]] QJsonObject mapping(const QString &mediaType, int index) const;
    [[nodiscard]] QJsonObject artist(int index) const;
    [[nodiscard]] QJsonObject album(int index) const;
    [[nodiscard]] QJsonObject track(int index) const;
    [[nodiscard]] QJsonObject playlist(int index) const;
    [[nodiscard]] QJsonObject radio(int index) const;
    [[nodiscard]] QString nameOf(const QString &mediaType, int index) const;
    [[nodiscard]] QJsonArray stretch(const QString &mediaType, const Args &args) const;
    [[nodiscard]] QList<int> favorites(const QString &mediaType) const;
    [[nodiscard]] bool isFavorite(const QString &uri, int index) const;
    [[nodiscard]] FakeMusicAssistant::HTTPAnswer picture(const QUrl &target) const;

    FakeMusicAssistant &m_server;
    const Size m_size;
    const Dialect m_dialect;
    QHash<QString, bool> m_favorites; ///< what was changed, by URI
    QMap<int, Playlist> m_playlists;
    QList<Radio> m_radios;
    QMap<QString, QStringList> m_listed; ///< commands and their parameters
};

} // namespace vantor
