#include "skintool/CorpusOutput.h"

#include "Platform/NativePath.h"
#include "skintool/CorpusOptions.h"
#include "skintool/CorpusSample.h"

#include <QDateTime>
#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>
#include <QSysInfo>

#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <thread>

namespace vantor {

namespace {

CorpusError unwritable(const QString &file, const QString &reason) {
    return CorpusError(QStringLiteral("Could not write %1: %2").arg(file, reason));
}

CorpusError unreadable(const QString &file, const QString &reason) {
    return CorpusError(QStringLiteral("Could not read %1: %2").arg(file, reason));
}

/// What must not change between a run and its resumption.
QJsonObject optionsObject(const CorpusOptions &options, const QString &root) {
    const auto number = [](std::int64_t value) { return QJsonValue(static_cast<qint64>(value)); };
    return {{QStringLiteral("dir"), root},
            {QStringLiteral("timeout"), number(options.timeoutSeconds)},
            {QStringLiteral("max-memory"), number(options.maxMemoryMiB)},
            {QStringLiteral("sample"), options.sample ? number(*options.sample) : QJsonValue()},
            {QStringLiteral("seed"), number(options.seed)},
            {QStringLiteral("manifest"),
             options.manifest ? QJsonValue(QDir().absoluteFilePath(*options.manifest)) : QJsonValue()}};
}

QJsonObject environmentObject(const CorpusOptions &options, const QString &root, int workers) {
    return {{QStringLiteral("version"), QStringLiteral(VANTOR_VERSION)},
            {QStringLiteral("system"), QSysInfo::prettyProductName()},
            {QStringLiteral("kernel"), QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion()},
            {QStringLiteral("architecture"), QSysInfo::currentCpuArchitecture()},
            {QStringLiteral("compiler"), QStringLiteral(__VERSION__)},
            {QStringLiteral("qt"), QString::fromLatin1(qVersion())},
            {QStringLiteral("cores"), static_cast<int>(std::thread::hardware_concurrency())},
            {QStringLiteral("workers"), workers},
            {QStringLiteral("started"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
            {QStringLiteral("options"), optionsObject(options, root)}};
}

QString shown(const QJsonValue &value) {
    return value.isNull() || value.isUndefined() ? QStringLiteral("none") : value.toVariant().toString();
}

void checkSameOptions(const QString &folder, const QJsonObject &begun, const QJsonObject &now) {
    for (const QString &key : now.keys()) {
        if (begun.value(key) == now.value(key))
            continue;
        const QString name =
            key == QStringLiteral("dir") ? QStringLiteral("<dir>") : QStringLiteral("--") + key;
        throw CorpusError(
            QStringLiteral("The run in %1 was begun with %2 %3, now it has %4; resume it with the "
                           "same options or take another --out")
                .arg(folder, name, shown(begun.value(key)), shown(now.value(key))));
    }
}

} // namespace

CorpusOutput::CorpusOutput(const CorpusOptions &options, const QString &root, int workers)
    : m_folder(options.out), m_results(QDir(m_folder).filePath(QStringLiteral("results.jsonl"))) {
    const QJsonObject environment = environmentObject(options, root, workers);
    if (!m_results.exists())
        begin(environment);
    else if (options.resume)
        resume(environment);
    else
        throw CorpusError(
            QStringLiteral("%1 already holds results; go on with --resume or take another --out")
                .arg(m_folder));
}

void CorpusOutput::begin(const QJsonObject &environment) {
    if (!QDir().mkpath(m_folder))
        throw CorpusError(QStringLiteral("Could not create the folder ") + m_folder);
    // Before the results: where there are results, it is known how they came about.
    QSaveFile file(QDir(m_folder).filePath(QStringLiteral("env.json")));
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(environment).toJson()) < 0 ||
        !file.commit())
        throw unwritable(file.fileName(), file.errorString());
    open();
}

void CorpusOutput::resume(const QJsonObject &environment) {
    QFile file(QDir(m_folder).filePath(QStringLiteral("env.json")));
    const QString options = QStringLiteral("options");
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(file.fileName(), file.errorString());
    const QJsonObject begun = QJsonDocument::fromJson(file.readAll()).object();
    if (!begun.contains(options))
        throw unreadable(file.fileName(), QStringLiteral("it does not tell how the run was begun"));
    checkSameOptions(m_folder, begun.value(options).toObject(), environment.value(options).toObject());
    open();
    const auto take = [&](const CorpusResult &result) {
        m_finished.insert(result.path);
        ++m_counts[result.status];
    };
    const qint64 end = readResults(take);
    if (!m_results.resize(end))
        throw unwritable(m_results.fileName(), m_results.errorString());
}

void CorpusOutput::open() {
    if (!m_results.open(QIODevice::ReadWrite | QIODevice::Append))
        throw unwritable(m_results.fileName(), m_results.errorString());
    if (flock(m_results.handle(), LOCK_EX | LOCK_NB) != 0)
        throw CorpusError(QStringLiteral("Another run is writing to ") + m_folder);
}

qint64 CorpusOutput::readResults(const std::function<void(const CorpusResult &)> &take) {
    return readCorpusResults(m_results, take, [&](qint64 number) {
        throw unreadable(m_results.fileName(), QStringLiteral("line %1 is not a result").arg(number));
    });
}

void CorpusOutput::append(const CorpusResult &result) {
    const QByteArray line = result.toLine();
    for (qsizetype done = 0; done < line.size();) {
        const ssize_t count =
            write(m_results.handle(), line.constData() + done, static_cast<std::size_t>(line.size() - done));
        if (count < 0 && errno != EINTR)
            throw unwritable(m_results.fileName(), QString::fromLocal8Bit(std::strerror(errno)));
        done += std::max<ssize_t>(count, 0);
    }
    ++m_counts[result.status];
}

QString CorpusOutput::keepCrash(const CorpusResult &result, const QString &root) const {
    namespace fs = std::filesystem;
    const QString folder = QDir(m_folder).filePath(QStringLiteral("crashes"));
    const auto native = [](const QString &path) { return fs::path(NativePath::bytes(path).toStdString()); };
    std::error_code error;
    fs::create_directories(native(folder), error);
    if (!error) {
        fs::copy_file(native(root + result.path), native(folder) / native(crashCopyName(result)),
                      fs::copy_options::overwrite_existing, error);
    }
    return error ? QStringLiteral("Could not copy %1 to %2: %3")
                       .arg(result.path, folder, QString::fromLocal8Bit(error.message().c_str()))
                 : QString();
}

QString CorpusOutput::crashCopyName(const CorpusResult &result) {
    constexpr qsizetype digits = 16, maxName = 230; // a name has at most 255 bytes
    const QString hash =
        result.hash.isEmpty() ? QString::fromLatin1(CorpusSample::rank(0, result.path).toHex()) : result.hash;
    const QByteArray name = NativePath::bytes(result.path.section(QLatin1Char('/'), -1));
    return hash.left(digits) + QLatin1Char('-') + NativePath::text(name.last(std::min(name.size(), maxName)));
}

} // namespace vantor
