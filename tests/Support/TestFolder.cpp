#include "tests/Support/TestFolder.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

namespace vantor {

QString TestFolder::write(const char *name, const QByteArray &bytes) const {
    QFile file(path(name));
    if (!QDir().mkpath(QFileInfo(file).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    return file.fileName();
}

QByteArray TestFolder::read(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read " + path.toStdString());
    return file.readAll();
}

ProgramRun runProgram(const char *program, const QStringList &arguments, const TestFolder &folder,
                      const QString &timeZone) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(name), folder.path());
    environment.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:/nonexistent"));
    environment.insert(QStringLiteral("TZ"), timeZone);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start(QString::fromUtf8(program), arguments);
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace vantor
