#include "LibraryBrowser/LibraryFailure.h"

#include "MusicBackendKit/MusicBackendError.h"
#include "MusicBackendKit/RemoteQueue.h"

namespace vantor {

LibraryFailure LibraryFailure::of(const std::exception_ptr &error) {
    LibraryFailure failure;
    try {
        std::rethrow_exception(error);
    } catch (const MusicBackendError &known) {
        failure = {known.description(), known.errorCase() == MusicBackendError::Case::notConfigured};
    } catch (const QueueEditError &known) {
        failure.sentence = known.description();
    } catch (const std::exception &other) { // of the source's own; what() is its sentence
        failure.sentence = QString::fromUtf8(other.what());
    } catch (...) {
    }
    if (failure.sentence.isEmpty())
        failure.sentence = QStringLiteral("The music source failed.");
    return failure;
}

} // namespace vantor
