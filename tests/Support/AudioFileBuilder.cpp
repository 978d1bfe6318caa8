#include "tests/Support/AudioFileBuilder.h"

#include <QTemporaryFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <stdexcept>
#include <vector>

namespace vantor {

// Not QProcess, whose way to start a program the thread sanitizer does not survive.
pid_t spawn(const std::vector<std::string> &words) {
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int error = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + words[0]);
    return process;
}

static void runEncoder(std::vector<std::string> words, const QString &path) {
    if (path.endsWith(QLatin1String("mka")) || path.endsWith(QLatin1String("flac")))
        words.insert(words.end(), {"-c:a", "flac", "-sample_fmt", "s16"});
    if (path.endsWith(QLatin1String("aiff"))) // it would not keep an artist or album otherwise
        words.insert(words.end(), {"-write_id3v2", "1"});
    words.push_back("file:" + path.toStdString());
    int status = 0;
    if (waitpid(spawn(words), &status, 0) < 0 || status != 0)
        throw std::runtime_error("ffmpeg could not write " + path.toStdString());
}

void encodeAudioFile(const QString &path, std::span<const StereoFrame> sound, int sampleRate,
                     const std::vector<std::string> &options) {
    QTemporaryFile samples;
    const qint64 size = static_cast<qint64>(sound.size_bytes());
    if (!samples.open() || samples.write(reinterpret_cast<const char *>(sound.data()), size) != size ||
        !samples.flush())
        throw std::runtime_error("could not write the samples");
    std::vector<std::string> words{"ffmpeg",
                                   "-nostdin",
                                   "-y",
                                   "-f",
                                   "f32le",
                                   "-ac",
                                   "2",
                                   "-ar",
                                   std::to_string(sampleRate),
                                   "-i",
                                   samples.fileName().toStdString(),
                                   "-b:a",
                                   "320k"};
    words.insert(words.end(), options.begin(), options.end());
    runEncoder(std::move(words), path);
}

void writeAudioFile(const QString &path, const AudioFileContent &content) {
    const QString wave = QStringLiteral("%1*sin(2*PI*%2*n/%3)")
                             .arg(content.amplitude, 0, 'g', 17)
                             .arg(content.frequency, 0, 'g', 17)
                             .arg(content.sampleRate);
    const QString source = QStringLiteral("aevalsrc=%1:s=%2:d=%3")
                               .arg(QStringList(content.channels, wave).join(QLatin1Char('|')))
                               .arg(content.sampleRate)
                               .arg(content.seconds);
    std::vector<std::string> words{"ffmpeg", "-nostdin", "-y", "-f", "lavfi", "-i", source.toStdString()};
    for (auto tag = content.tags.begin(); tag != content.tags.end(); ++tag) {
        const std::string text = tag.key().toStdString() + '=' + tag.value().toStdString();
        words.insert(words.end(), {"-metadata", text});
    }
    words.insert(words.end(), {"-b:a", "128k"});
    runEncoder(std::move(words), path);
}

} // namespace vantor
