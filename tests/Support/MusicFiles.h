#pragma once

#include "tests/Support/TestFolder.h"

#include <QMap>

#include <array>

namespace vantor::test {

/// What is written into a made audio file; empty and 0 leave it out.
struct MadeTags {
    QString title = {};
    QString artist = {};
    QString album = {};
    QString track = {}; ///< "3/12"
    QString disc = {};
    QByteArray cover = {}; ///< a JPEG image
};

/// Makes tagged audio files by the thousand. The sound (a quarter of a second) is encoded once for each
/// format, by the ffmpeg program.
class MusicFiles {
  public:
    MusicFiles();

    /// The extension (flac, mp3, ogg) chooses the format. Makes the folders on the way; throws
    /// std::runtime_error.
    void write(const QString &path, const MadeTags &tags = {}) const;

    /// A music folder of a hundred tracks for each artist: ten albums of ten, in the three formats, with
    /// pictures in the files of every other album and beside those of the others.
    void writeCollection(const QString &folder, int tracks) const;

    /// The names in it.
    [[nodiscard]] static QString artist(int number);
    [[nodiscard]] static QString album(int number);
    [[nodiscard]] static QString title(int number);
    [[nodiscard]] static int yearOfAlbum(int number);
    static constexpr int tracksPerAlbum = 10;
    static constexpr int albumsPerArtist = 10;

    /// A JPEG image, each number's own. About 16 KiB at 160 pixels a side.
    [[nodiscard]] static QByteArray cover(int number, int side = 160);

  private:
    QMap<QString, QByteArray> m_sounds; ///< by extension
};

} // namespace vantor::test
