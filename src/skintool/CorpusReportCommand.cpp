#include "skintool/CorpusCommand.h"
#include "skintool/CorpusMarkdown.h"
#include "skintool/CorpusOptions.h"
#include "skintool/CorpusSummary.h"

#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <cstdio>

namespace vantor::CorpusCommand {

namespace {

CorpusError unreadable(const QString &file, const QString &reason) {
    return CorpusError(QStringLiteral("Could not read %1: %2").arg(file, reason));
}

CorpusSummary summarize(const CorpusReportOptions &options) {
    QFile file(options.results);
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(options.results, file.errorString());
    CorpusSummarizer summarizer;
    readCorpusResults(
        file, [&](const CorpusResult &result) { summarizer.add(result); },
        [&](qint64) { summarizer.addMalformed(); });
    return summarizer.summary(options.sample, options.seed);
}

QJsonObject readEnvironment(const QString &name) {
    constexpr qint64 maxBytes = 1 << 20;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(name, file.errorString());
    const QJsonDocument document = QJsonDocument::fromJson(file.read(maxBytes));
    if (!document.isObject())
        throw unreadable(name, QStringLiteral("it is not a JSON object"));
    return document.object();
}

void write(const QString &name, const QByteArray &bytes) {
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw CorpusError(QStringLiteral("Could not write %1: %2").arg(name, file.errorString()));
}

} // namespace

int report(const QStringList &arguments) {
    const CorpusReportOptions options = CorpusReportOptions::parse(arguments);
    CorpusSummary summary = summarize(options);
    if (options.env)
        summary.environment = readEnvironment(*options.env);
    if (summary.total == 0)
        throw CorpusError(QStringLiteral("%1 holds no results").arg(options.results));
    write(options.markdown, CorpusMarkdown::report(summary, options.crashes).toUtf8());
    write(options.json, QJsonDocument(summary.toJson()).toJson());
    if (summary.malformed == 0)
        return 0;
    std::fprintf(stderr, "%lld lines of %s are not results\n", static_cast<long long>(summary.malformed),
                 options.results.toUtf8().constData());
    return 1;
}

} // namespace vantor::CorpusCommand
