#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace vantor {

/// A folder for the files of one test, which goes when the test ends.
class TestFolder {
  public:
    [[nodiscard]] QString path(const char *name = "") const {
        return m_folder.filePath(QString::fromUtf8(name));
    }
    /// Makes the folders on the way too; throws std::runtime_error.
    QString write(const char *name, const QByteArray &bytes) const;
    [[nodiscard]] static QByteArray read(const QString &path);

  private:
    QTemporaryDir m_folder;
};

/// What a program that has ended said; status −1 for one that crashed or hung.
struct ProgramRun {
    int status = -1;
    QString out;
    QString err;
};

/// Runs one of our programs in a folder, without a display, a sound server or the user's settings.
[[nodiscard]] ProgramRun runProgram(const char *program, const QStringList &arguments,
                                    const TestFolder &folder,
                                    const QString &timeZone = QStringLiteral("UTC"));

} // namespace vantor
