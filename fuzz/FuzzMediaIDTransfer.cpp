#include "MusicBackendKit/MediaIDTransfer.h"

#include <cstdlib>

using namespace vantor;

// What can be read is written and read again without a change. -max_len=4096.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const std::optional<MediaIDTransfer> transfer = MediaIDTransfer::fromJson(bytes);
    if (transfer && MediaIDTransfer::fromJson(transfer->toJson()) != transfer)
        std::abort();
    return 0;
}
