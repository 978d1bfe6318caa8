#include "SendspinKit/Session/SendspinError.h"
#include "SendspinKit/Wire/SendspinIncoming.h"

#include <cstdlib>

using namespace vantor;

// Whatever a server sends becomes a message in its ranges or says what is wrong with it; the first byte tells
// text from a binary frame. -max_len=65536.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    try {
        if (data[0] % 2 == 0) {
            const auto chunk = SendspinIncoming::decodeAudio(bytes);
            if (chunk && chunk->data.size() != bytes.size() - 9)
                std::abort();
            return 0;
        }
        const SendspinIncoming message = SendspinIncoming::decode(QString::fromUtf8(bytes));
        const auto *start = std::get_if<SendspinIncoming::StreamStart>(&message.content);
        if (start && (start->format.sampleRate < 1 || start->format.channels < 1))
            std::abort();
        const auto *command = std::get_if<SendspinIncoming::ServerCommand>(&message.content);
        if (command && (command->volume.value_or(0) < 0 || command->volume.value_or(0) > 100))
            std::abort();
    } catch (const SendspinError &error) {
        if (error.errorCase() != SendspinError::Case::malformed || error.detail().isEmpty())
            std::abort();
    }
    return 0;
}
