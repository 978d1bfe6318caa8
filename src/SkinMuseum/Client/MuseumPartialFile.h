#pragma once

#include <QString>

#include <filesystem>

namespace vantor {

struct MuseumDownloadResult;

/// A file in the making in the museum's folder, which goes with this object unless it was saved. Blocks: for
/// one worker, which makes them all. Errors are thrown as MuseumError `notSaved`.
class MuseumPartialFile {
  public:
    /// `skins`: the skins folder, which has to be there; the museum's folder is made in it. What a crash has
    /// left there an hour ago goes.
    explicit MuseumPartialFile(const QString &skins);
    ~MuseumPartialFile();
    Q_DISABLE_COPY_MOVE(MuseumPartialFile)

    /// Puts the bytes, once they are safely on the disk, under the name, or that name with a number, without
    /// replacing any other file. One of these names with these bytes is taken instead.
    [[nodiscard]] MuseumDownloadResult save(const QByteArray &bytes, const QString &name);
    /// Removes it now. Nothing can be saved any more.
    void discard();

  private:
    void write(QByteArrayView bytes);
    [[nodiscard]] bool move(const std::filesystem::path &to) const;

    const std::filesystem::path m_folder;
    const std::filesystem::path m_path;
    int m_file;
};

} // namespace vantor
