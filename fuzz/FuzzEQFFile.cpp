#include "AudioCore/Equalizer/EQFFile.h"

#include <cstdlib>

// -max_len=2048: the preamble and seven entries.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace vantor;
    std::vector<EQPreset> presets;
    try {
        presets = EQFFile::parse(QByteArrayView(data, static_cast<qsizetype>(size)));
    } catch (const EQFFile::ParseError &) {
        return 0;
    }
    // What was read can be written, and from then on nothing changes any more.
    const QByteArray written = EQFFile::serialize(presets);
    if (written.size() != static_cast<qsizetype>(size) ||
        EQFFile::serialize(EQFFile::parse(written)) != written)
        std::abort();
    return 0;
}
