#include "AudioCore/AudioCoreError.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(AudioCoreErrorTest, SentencesCarryTheSystemsReason) {
    const AudioCoreError error = AudioCoreError::engineStart(QStringLiteral("Connection refused"));
    EXPECT_EQ(error.description(), QStringLiteral("Could not start the audio engine: Connection refused"));
    EXPECT_STREQ(error.what(), "Could not start the audio engine: Connection refused");
    EXPECT_TRUE(error.isFatal());
    EXPECT_FALSE(AudioCoreError::openFailure().isFatal());
}
