#include "skintool/CorpusResult.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

QJsonValue textOrNull(const QString &text) {
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

std::optional<CorpusStatus> statusFrom(const QString &text) {
    const auto found = std::ranges::find(allCorpusStatuses, text, [](CorpusStatus s) { return rawValue(s); });
    return found == allCorpusStatuses.end() ? std::nullopt : std::optional(*found);
}

QStringList texts(const QJsonValue &value) {
    QStringList list;
    for (const QJsonValue &text : value.toArray())
        list.append(text.toString());
    return list;
}

} // namespace

QString rawValue(CorpusStatus status) {
    switch (status) {
    case CorpusStatus::ok:
        return QStringLiteral("ok");
    case CorpusStatus::partial:
        return QStringLiteral("partial");
    case CorpusStatus::failed:
        return QStringLiteral("failed");
    case CorpusStatus::crashed:
        return QStringLiteral("crashed");
    case CorpusStatus::timeout:
        return QStringLiteral("timeout");
    case CorpusStatus::outOfMemory:
        break;
    }
    return QStringLiteral("out of memory");
}

QJsonObject CorpusResult::toObject() const {
    return {
        {QStringLiteral("path"), path},
        {QStringLiteral("hash"), textOrNull(hash)},
        {QStringLiteral("size"), static_cast<qint64>(size)},
        {QStringLiteral("status"), rawValue(status)},
        {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)},
        {QStringLiteral("fallbacks"), QJsonArray::fromStringList(fallbacks)},
        {QStringLiteral("refused"), textOrNull(refused)},
        {QStringLiteral("time_ms"), std::round(milliseconds * 10) / 10},
        {QStringLiteral("peak_kib"), static_cast<qint64>(peakKiB)},
        {QStringLiteral("signal"), textOrNull(signal)},
    };
}

QByteArray CorpusResult::toLine() const {
    return QJsonDocument(toObject()).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<CorpusResult> CorpusResult::fromLine(const QByteArray &line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    CorpusResult result;
    result.path = object.value(QStringLiteral("path")).toString();
    const auto status = statusFrom(object.value(QStringLiteral("status")).toString());
    if (result.path.isEmpty() || !status)
        return std::nullopt;
    result.status = *status;
    result.hash = object.value(QStringLiteral("hash")).toString();
    result.size = object.value(QStringLiteral("size")).toInteger();
    result.warnings = texts(object.value(QStringLiteral("warnings")));
    result.fallbacks = texts(object.value(QStringLiteral("fallbacks")));
    result.refused = object.value(QStringLiteral("refused")).toString();
    result.milliseconds = object.value(QStringLiteral("time_ms")).toDouble();
    result.peakKiB = object.value(QStringLiteral("peak_kib")).toInteger();
    result.signal = object.value(QStringLiteral("signal")).toString();
    return result;
}

qint64 readCorpusResults(QFile &file, const std::function<void(const CorpusResult &)> &take,
                         const std::function<void(qint64)> &malformed) {
    qint64 end = 0;
    bool isReadable = file.seek(0);
    for (qint64 number = 1; isReadable && !file.atEnd(); ++number) {
        const QByteArray line = file.readLine();
        if (!line.endsWith('\n'))
            break;
        end += line.size();
        if (const auto result = CorpusResult::fromLine(line))
            take(*result);
        else
            malformed(number);
    }
    isReadable = isReadable && file.error() == QFileDevice::NoError;
    if (!isReadable)
        throw CorpusError(QStringLiteral("Could not read %1: %2").arg(file.fileName(), file.errorString()));
    return end;
}

} // namespace vantor
