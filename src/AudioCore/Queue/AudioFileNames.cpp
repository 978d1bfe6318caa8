#include "AudioCore/Queue/AudioFileNames.h"

#include <QSet>

namespace vantor::AudioFileNames {

const QStringList &extensions() {
    static const QStringList value = [] {
        QStringList list;
        for (const char *extension : {"flac", "mp3", "m4a", "aac", "ogg", "oga", "opus", "wav", "aif", "aiff",
                                      "aifc", "wma", "ape", "wv",  "mpc", "tta", "mka",  "mp2", "mp4", "m4b",
                                      "ac3",  "dts", "spx", "au",  "caf", "w64", "alac", "dsf", "dff"})
            list.append(QLatin1String(extension));
        return list;
    }();
    return value;
}

bool isAudioFile(QStringView name) {
    static const QSet<QString> known(extensions().begin(), extensions().end());
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot >= 0 && known.contains(name.sliced(dot + 1).toString().toLower());
}

} // namespace vantor::AudioFileNames
