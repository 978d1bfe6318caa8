#pragma once

#include "skintool/CorpusOptions.h"
#include "skintool/CorpusSkins.h"

#include <sys/types.h>

#include <functional>
#include <vector>

namespace vantor {

/// Loads skins in forked workers, several at a time, each within a limit of time and one of memory. The
/// process must have one thread. What cannot be started throws CorpusError; workers end with the runner,
/// however it ends.
class CorpusRunner {
  public:
    using Take = std::function<void(const CorpusResult &)>;
    using Tick = std::function<void()>;

    /// Cores but one, at least one.
    [[nodiscard]] static int workersAtOnce();

    /// `take` gets the results as they come in; `tick` is called a few times a second.
    CorpusRunner(const CorpusOptions &options, QString root, Take take, Tick tick);
    ~CorpusRunner();

    /// False when SIGINT or SIGTERM had it stop; the skins that were being loaded then are done all the same.
    /// A second signal ends the process.
    [[nodiscard]] bool run(const std::vector<CorpusSkin> &skins);

  private:
    struct Worker;

    void start(const CorpusSkin &skin);
    void wait();
    void readFrom(Worker &worker);
    void killOverdue();
    [[nodiscard]] CorpusResult finish(Worker &worker) const;

    const CorpusOptions &m_options;
    const QString m_root;
    const Take m_take;
    const Tick m_tick;
    std::vector<Worker> m_workers;
};

} // namespace vantor
