#include "common/CaseName.h"
#include "texture/modShellWait.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

struct ShellCase {
    const char* name;
    QStringList command;
    long timeOut;
    bool finished;
    const char* message; // "untouched" when none is given
};

class ShellAndWaitRuns : public ::testing::TestWithParam<ShellCase> {};

TEST_P(ShellAndWaitRuns, EndAsTheCommandDoes) {
    const ShellCase& c = GetParam();
    QString message = QStringLiteral("untouched");
    EXPECT_EQ(ShellAndWait(c.command, 0, message, c.timeOut), c.finished);
    EXPECT_EQ(message, QString::fromLatin1(c.message));
}

const char* const kErrorCalling =
    "Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.";

INSTANTIATE_TEST_SUITE_P(
    Commands, ShellAndWaitRuns,
    ::testing::Values(
        ShellCase{"ends at once", {"/bin/true"}, 10000, true, "untouched"},
        // The exit code is not examined.
        ShellCase{"fails", {"/bin/sh", "-c", "exit 3"}, 10000, true, "untouched"},
        // A time-out of zero ends after the first pass.
        ShellCase{"times out", {"/bin/sleep", "10"}, 0, false, "The NVIDIA tool has timed out."},
        ShellCase{"cannot start", {"/no/such/program"}, 10000, false, kErrorCalling},
        ShellCase{"no command", {}, 10000, false, kErrorCalling}),
    CaseName<ShellCase>);

TEST(ShellAndWait, WindowEventsRunWhileItWaits) {
    bool fired = false;
    QObject guard;
    QTimer::singleShot(50, &guard, [&fired] { fired = true; });
    QString message;
    EXPECT_TRUE(ShellAndWait({"/bin/sleep", "0.4"}, 0, message, 10000));
    EXPECT_TRUE(fired);
}

} // namespace
