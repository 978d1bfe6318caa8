#pragma once

#include "SendspinPlayback/Player/SendspinPlayer.h"
#include "tests/Support/FakeSendspin/SendspinSimulation.h"

#include <QTemporaryDir>

#include <cmath>

namespace vantor {

/// A sound output in virtual time, with a clock and a scheduler of its own making.
struct ModelOutput {
    int callbackFrames = 480;
    double drift = 0; ///< parts per million that it plays too fast
    std::chrono::microseconds latency{40'000};
    std::chrono::microseconds jitter{0}; ///< that the reported latency is wrong by at most
};

/// A real session and a real player against a made server, heard through a model output.
class PlaybackRig {
  public:
    struct Heard {
        double when = 0; ///< microseconds of the local clock, as it really was
        float left = 0;
    };

    explicit PlaybackRig(int rate = 48'000, const ModelOutput &model = {}, bool hasTimeCode = false)
        : output(model), m_rate(rate), source(std::make_shared<SendspinSource>(rate)) {
        simulation.server.network.base = std::chrono::milliseconds(1);
        QObject::connect(&simulation.session, &SendspinSession::occurred, &player,
                         [this, hasTimeCode](const SendspinEvent &event) {
                             player.take(hasTimeCode ? withTimeCode(event) : event);
                         });
    }

    /// As difference(), at best where it is heard at most 120 microseconds too early or late.
    [[nodiscard]] double leastDifference(double late = 0) {
        double least = difference(late);
        for (double off = -120; off <= 120; off += 5)
            least = std::min(least, difference(late + off));
        return least;
    }

    void start() { simulation.session.start(simulation.configuration); }

    /// As when another output takes the place of the one before.
    void switchOutput(int rate) {
        m_rate = rate;
        source = std::make_shared<SendspinSource>(rate);
        player.setSource(source);
    }

    /// Lets the output play; what it plays is in `heard` of the last call.
    void listen(std::chrono::microseconds length) {
        heard.clear();
        std::vector<float> block(static_cast<std::size_t>(2 * output.callbackFrames));
        const double frame = 1e6 / (m_rate * (1 + output.drift * 1e-6));
        const double end = m_next + static_cast<double>(length.count());
        while (m_next < end) {
            simulation.advance(std::chrono::microseconds(
                std::max<std::int64_t>(0, std::llround(m_next) - elapsed().count())));
            simulation.events.clear();
            std::uniform_int_distribution<std::int64_t> wrong(-output.jitter.count(), output.jitter.count());
            const double truth =
                static_cast<double>(m_begin) + m_next + static_cast<double>(output.latency.count());
            source->render(block.data(), output.callbackFrames, std::llround(truth) + wrong(m_chance));
            for (int i = 0; i < output.callbackFrames; ++i)
                heard.push_back({truth + i * frame, block[static_cast<std::size_t>(2 * i)]});
            m_next += output.callbackFrames * frame;
        }
    }
    /// Everything stands still but the server and the network.
    void stall(std::chrono::microseconds length) { m_next += static_cast<double>(length.count()); }

    /// By how many microseconds a sound with a time code is heard too late, by what the session knows of the
    /// server's clock; none where that cannot be read.
    [[nodiscard]] std::optional<double> lateness(std::size_t index) const {
        const Heard &sound = heard[index];
        // At the end of each period it falls through the middle.
        if (std::abs(sound.left) > 0.35F || index == 0 || sound.left <= heard[index - 1].left)
            return {};
        const auto local = static_cast<std::int64_t>(sound.when) - player.state().staticDelayMs * 1000;
        const std::int64_t server = simulation.session.clock().filter.computeServerTime(local);
        const double wanted =
            static_cast<double>(floorMod(server, period)) + sound.when - std::floor(sound.when);
        const double difference = wanted - (static_cast<double>(sound.left) + 0.5) * period;
        return difference - period * std::round(difference / period);
    }
    /// How different what was heard is from what the server plays, if that is heard so many microseconds
    /// late.
    [[nodiscard]] double difference(double late) {
        double sum = 0;
        for (const Heard &sound : heard) {
            const auto when = static_cast<std::int64_t>(sound.when);
            const double content = simulation.server.stream()->contentAt(simulation.server.clockAt(when));
            const double wanted = madeSound(content + (sound.when - static_cast<double>(when) - late) * 1e-6);
            sum += (wanted - static_cast<double>(sound.left)) * (wanted - static_cast<double>(sound.left));
        }
        return std::sqrt(sum / static_cast<double>(heard.size()));
    }
    [[nodiscard]] bool isSilent() const {
        return std::all_of(heard.begin(), heard.end(), [](const Heard &sound) { return sound.left == 0; });
    }

    SendspinSimulation simulation;
    ModelOutput output;
    std::vector<Heard> heard;

  private:
    static constexpr std::int64_t period = 100'000; ///< of the time code, microseconds

    static std::int64_t floorMod(std::int64_t a, std::int64_t b) { return ((a % b) + b) % b; }
    [[nodiscard]] std::chrono::microseconds elapsed() const {
        return std::chrono::microseconds(simulation.time.now() - m_begin);
    }
    /// A chunk of one channel of 32 bits, in which every sample tells its time instead.
    [[nodiscard]] SendspinEvent withTimeCode(SendspinEvent event) const {
        auto *audio = std::get_if<SendspinEvent::Audio>(&event.content);
        if (!audio)
            return event;
        auto *samples = reinterpret_cast<std::int32_t *>(audio->chunk.data.data());
        const auto begin = static_cast<double>(floorMod(audio->chunk.timestamp, period));
        for (qsizetype i = 0; i < audio->chunk.data.size() / 4; ++i) {
            const double time = std::fmod(begin + static_cast<double>(i) * 1e6 / m_rate, period);
            samples[i] = static_cast<std::int32_t>(std::lround((time / period - 0.5) * 2147483647.0));
        }
        return event;
    }

    int m_rate;
    const std::int64_t m_begin = simulation.time.now();
    double m_next = 0; ///< when the output asks next, since the beginning
    std::mt19937 m_chance{7};
    QTemporaryDir m_folder;

  public:
    const QString settingsPath = m_folder.filePath(QStringLiteral("settings.ini"));
    std::shared_ptr<SendspinSource> source;
    SendspinPlayer player{simulation.session,
                          simulation.time.scheduler,
                          simulation.time,
                          source,
                          std::make_unique<QSettings>(settingsPath, QSettings::IniFormat),
                          simulation.configuration.bufferCapacity};
};

} // namespace vantor
