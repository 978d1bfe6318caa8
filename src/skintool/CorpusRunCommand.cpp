#include "skintool/CorpusCommand.h"
#include "skintool/CorpusOptions.h"
#include "skintool/CorpusOutput.h"
#include "skintool/CorpusProgress.h"
#include "skintool/CorpusRunner.h"
#include "skintool/CorpusSkins.h"
#include "skintool/CorpusWorker.h"
#include "skintool/SkinReport.h"

#include <QFileInfo>

#include <cstdio>

namespace vantor::CorpusCommand {

namespace {

void print(FILE *stream, const QString &line) {
    std::fprintf(stream, "%s\n", line.toUtf8().constData());
}

/// One run from the listing to the last line.
class Run {
  public:
    explicit Run(const CorpusOptions &options)
        : m_options(options), m_root(CorpusSkins::root(options.folder)),
          m_skins(CorpusSkins::select(options, m_root)),
          m_output(options, m_root, CorpusRunner::workersAtOnce()), m_unfinished(unfinished()),
          m_done(std::ssize(m_skins) - std::ssize(m_unfinished)), m_progress(std::ssize(m_skins), m_done) {}

    [[nodiscard]] int run();

  private:
    [[nodiscard]] std::vector<CorpusSkin> unfinished() const;
    void take(const CorpusResult &result);
    [[nodiscard]] int finish();
    [[nodiscard]] int stop() const;

    const CorpusOptions &m_options;
    const QString m_root;
    const std::vector<CorpusSkin> m_skins;
    CorpusOutput m_output;
    const std::vector<CorpusSkin> m_unfinished;
    std::int64_t m_done;
    CorpusProgress m_progress;
};

std::vector<CorpusSkin> Run::unfinished() const {
    std::vector<CorpusSkin> skins;
    std::ranges::copy_if(m_skins, std::back_inserter(skins), [&](const CorpusSkin &skin) {
        return !m_output.finishedPaths().contains(skin.path);
    });
    return skins;
}

int Run::run() {
    CorpusRunner runner(
        m_options, m_root, [this](const CorpusResult &result) { take(result); },
        [this] { m_progress.update(m_output.counts(), m_done); });
    const bool isComplete = runner.run(m_unfinished);
    m_progress.end();
    return isComplete ? finish() : stop();
}

void Run::take(const CorpusResult &result) {
    m_output.append(result);
    ++m_done;
    if (!isLost(result.status))
        return;
    m_progress.say(QStringLiteral("%1: %2").arg(rawValue(result.status), SkinReport::printable(result.path)));
    if (const QString complaint = m_output.keepCrash(result, m_root); !complaint.isEmpty())
        m_progress.say(complaint);
}

int Run::finish() {
    std::vector<CorpusSkin> skins;
    std::int64_t strangers = 0;
    m_output.readResults([&](const CorpusResult &result) {
        skins.push_back({result.path, result.size, result.hash});
        strangers += result.refused == QLatin1String(CorpusWorker::differsFromManifest) ? 1 : 0;
    });
    if (m_options.manifest && !QFileInfo::exists(*m_options.manifest))
        CorpusSkins::writeManifest(*m_options.manifest, std::move(skins));
    const auto &counts = m_output.counts();
    print(stdout, QStringLiteral("%1 skins: %2").arg(m_done).arg(corpusCounts(counts)));
    if (strangers > 0)
        print(stderr, QStringLiteral("%1 skins differ from the manifest").arg(strangers));
    const bool isAnyLost = std::ranges::any_of(counts, [](const auto &row) { return isLost(row.first); });
    return isAnyLost || strangers > 0 ? 1 : 0;
}

int Run::stop() const {
    print(stderr, QStringLiteral("Interrupted after %1 of %2 skins; go on with --resume")
                      .arg(m_done)
                      .arg(m_skins.size()));
    return 1;
}

} // namespace

int run(const QStringList &arguments) {
    const CorpusOptions options = CorpusOptions::parse(arguments);
    return Run(options).run();
}

} // namespace vantor::CorpusCommand
