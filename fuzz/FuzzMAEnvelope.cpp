#include "MusicAssistantKit/Wire/MAEnvelope.h"

#include <cstdlib>

using namespace vantor;

// Whatever a server sends is told apart without harm, and a result that is read as a record either becomes
// one or says where it is wrong. -max_len=65536.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const MAEnvelope envelope = MAEnvelope::decode(QString::fromUtf8(bytes));
    const auto *result = std::get_if<MAEnvelope::Result>(&envelope.content);
    if (!result)
        return 0;
    if (result->messageID.isNull())
        std::abort();
    const MAReader reader(result->result);
    try {
        if (MAServerInfo::decode(reader) != MAServerInfo::decode(reader))
            std::abort();
    } catch (const MADecodingError &error) {
        if (error.detail().isEmpty())
            std::abort();
    }
    try {
        (void)MAAuthResult::decode(reader);
    } catch (const MADecodingError &) {
        // Most results are nothing of the kind.
    }
    return 0;
}
