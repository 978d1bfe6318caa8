#include "skintool/CorpusRunner.h"

#include "skintool/CorpusWorker.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <thread>

namespace vantor {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto tickInterval = 200ms;
/// Of a worker's result: a skin's longest text file, all of it escaped, several times.
constexpr qsizetype maxResultBytes = 256 << 20;

volatile std::sig_atomic_t isInterrupted = 0;

void interrupt(int) {
    isInterrupted = 1;
}

/// The first signal asks for an end; the second has its usual effect.
class InterruptionGuard {
  public:
    InterruptionGuard() {
        isInterrupted = 0;
        struct sigaction action{};
        action.sa_handler = interrupt;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(SIGINT, &action, &m_interrupt);
        sigaction(SIGTERM, &action, &m_terminate);
    }
    ~InterruptionGuard() {
        sigaction(SIGINT, &m_interrupt, nullptr);
        sigaction(SIGTERM, &m_terminate, nullptr);
    }
    InterruptionGuard(const InterruptionGuard &) = delete;
    InterruptionGuard &operator=(const InterruptionGuard &) = delete;

  private:
    struct sigaction m_interrupt;
    struct sigaction m_terminate;
};

/// In the forked process: alone with its result's pipe, and gone when the runner is.
void settle(int pipe, pid_t runner) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != runner)
        _exit(EXIT_FAILURE);
    signal(SIGINT, SIG_IGN); // the terminal sends it to both
    signal(SIGTERM, SIG_DFL);
    dup2(pipe, STDOUT_FILENO);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDERR_FILENO);
    close_range(STDERR_FILENO + 1, ~0U, 0);
}

CorpusError cannotStart() {
    return CorpusError(QStringLiteral("Could not start a worker: ") +
                       QString::fromLocal8Bit(std::strerror(errno)));
}

/// A fork takes one thread along: a lock that another one holds would never be released.
void checkSingleThread() {
    const auto threads = std::ranges::distance(std::filesystem::directory_iterator("/proc/self/task"));
    if (threads != 1)
        throw CorpusError(
            QStringLiteral("Could not start a worker: the program has %1 threads").arg(threads));
}

void describeLoss(CorpusResult &result, int status) {
    if (WIFEXITED(status) && WEXITSTATUS(status) == CorpusWorker::outOfMemoryExit) {
        result.status = CorpusStatus::outOfMemory;
        return;
    }
    result.status = CorpusStatus::crashed;
    if (WIFSIGNALED(status)) {
        const char *name = sigabbrev_np(WTERMSIG(status));
        result.signal =
            QStringLiteral("SIG") + (name ? QString::fromLatin1(name) : QString::number(WTERMSIG(status)));
    } else {
        result.refused = QStringLiteral("The worker ended with status %1").arg(WEXITSTATUS(status));
    }
}

} // namespace

struct CorpusRunner::Worker {
    pid_t process = 0;
    int pipe = -1;
    CorpusSkin skin;
    Clock::time_point start;
    QByteArray output = {};
    bool isOverdue = false;
    bool isDone = false;
};

int CorpusRunner::workersAtOnce() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()) - 1);
}

CorpusRunner::CorpusRunner(const CorpusOptions &options, QString root, Take take, Tick tick)
    : m_options(options), m_root(std::move(root)), m_take(std::move(take)), m_tick(std::move(tick)) {}

CorpusRunner::~CorpusRunner() {
    for (const Worker &worker : m_workers) {
        kill(worker.process, SIGKILL);
        close(worker.pipe);
        waitpid(worker.process, nullptr, 0);
    }
}

bool CorpusRunner::run(const std::vector<CorpusSkin> &skins) {
    const InterruptionGuard guard;
    CorpusWorker::warmUp();
    checkSingleThread();
    auto next = skins.begin();
    while ((next != skins.end() && !isInterrupted) || !m_workers.empty()) {
        while (next != skins.end() && !isInterrupted && std::ssize(m_workers) < workersAtOnce())
            start(*next++);
        wait();
        killOverdue();
        for (std::size_t i = 0; i < m_workers.size();) {
            if (!m_workers[i].isDone) {
                ++i;
                continue;
            }
            const CorpusResult result = finish(m_workers[i]);
            m_workers.erase(m_workers.begin() + static_cast<std::ptrdiff_t>(i));
            m_take(result);
        }
        m_tick();
    }
    return next == skins.end();
}

void CorpusRunner::start(const CorpusSkin &skin) {
    std::array<int, 2> pipe;
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        throw cannotStart();
    const pid_t runner = getpid();
    const auto now = Clock::now();
    const pid_t process = fork();
    if (process == 0) {
        settle(pipe[1], runner);
        CorpusWorker::run(m_root, skin, m_options.maxMemoryMiB);
    }
    close(pipe[1]);
    if (process < 0) {
        const CorpusError error = cannotStart();
        close(pipe[0]);
        throw error;
    }
    fcntl(pipe[0], F_SETFL, O_NONBLOCK);
    m_workers.push_back({process, pipe[0], skin, now});
}

void CorpusRunner::wait() {
    std::vector<pollfd> pipes;
    auto timeout = std::chrono::duration_cast<std::chrono::milliseconds>(tickInterval);
    for (const Worker &worker : m_workers) {
        pipes.push_back({worker.pipe, POLLIN, 0});
        const auto left = worker.start + std::chrono::seconds(m_options.timeoutSeconds) - Clock::now();
        timeout = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(left), 0ms, timeout);
    }
    if (poll(pipes.data(), pipes.size(), static_cast<int>(timeout.count())) <= 0)
        return; // nothing yet, or a signal
    for (std::size_t i = 0; i < pipes.size(); ++i) {
        if (pipes[i].revents != 0)
            readFrom(m_workers[i]);
    }
}

void CorpusRunner::readFrom(Worker &worker) {
    std::array<char, 65'536> chunk;
    for (;;) {
        const ssize_t count = read(worker.pipe, chunk.data(), chunk.size());
        if (count > 0 && worker.output.size() < maxResultBytes) {
            worker.output.append(chunk.data(), count);
        } else if (count > 0) {
            kill(worker.process, SIGKILL);
            return;
        } else {
            worker.isDone = count == 0; // its process has ended
            return;
        }
    }
}

void CorpusRunner::killOverdue() {
    for (Worker &worker : m_workers) {
        if (worker.isDone || worker.isOverdue ||
            Clock::now() - worker.start < std::chrono::seconds(m_options.timeoutSeconds))
            continue;
        worker.isOverdue = true;
        kill(worker.process, SIGKILL);
    }
}

CorpusResult CorpusRunner::finish(Worker &worker) const {
    close(worker.pipe);
    int status = 0;
    rusage usage{};
    while (wait4(worker.process, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    const qsizetype hashEnd = worker.output.indexOf('\n');
    const auto loaded = worker.output.endsWith('\n')
                            ? CorpusResult::fromLine(worker.output.sliced(hashEnd + 1))
                            : std::nullopt;
    CorpusResult result = loaded.value_or(CorpusResult{.path = worker.skin.path, .size = worker.skin.size});
    if (!loaded) {
        result.hash = QString::fromLatin1(worker.output.first(std::max<qsizetype>(hashEnd, 0)));
        if (worker.isOverdue)
            result.status = CorpusStatus::timeout;
        else
            describeLoss(result, status);
    }
    result.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - worker.start).count();
    result.peakKiB = usage.ru_maxrss;
    return result;
}

} // namespace vantor
