#include "SkinKit/Decoding/AniParser.h"
#include "SkinKit/Decoding/CursorParser.h"

#include <QLoggingCategory>

#include <cstdlib>

// -max_len=4096: several frames of a few pixels, every chunk kind and nesting fit.
extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const auto cursor = vantor::AniParser::parse(QByteArrayView(data, static_cast<qsizetype>(size)),
                                                 vantor::CursorParser::maxPixels);
    if (!cursor)
        return 0;
    if (cursor->frames.empty() || cursor->frames.size() > 256 || cursor->steps.empty() ||
        cursor->steps.size() > 1024)
        std::abort();
    for (const vantor::SkinCursor::Step &step : cursor->steps) {
        if (step.frame < 0 || static_cast<size_t>(step.frame) >= cursor->frames.size() ||
            step.duration.count() < 1)
            std::abort();
    }
    return 0;
}
