#include "common/CaseName.h"
#include "texture/modShellWait.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

struct ShellCase {
    const char* name;
    QStringList command;
    long timeOut;
    bool finished;
    const char* message; // "untouched" when none is given
    qint64 within;       // milliseconds it may take at most
};

class ShellAndWaitRuns : public ::testing::TestWithParam<ShellCase> {};

TEST_P(ShellAndWaitRuns, EndAsTheCommandDoes) {
    const ShellCase& c = GetParam();
    QString message = QStringLiteral("untouched");
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(ShellAndWait(c.command, 0, message, c.timeOut), c.finished);
    EXPECT_EQ(message, QString::fromLatin1(c.message));
    EXPECT_LT(clock.elapsed(), c.within);
}

const char* const kErrorCalling =
    "Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.";

INSTANTIATE_TEST_SUITE_P(
    Commands, ShellAndWaitRuns,
    ::testing::Values(
        ShellCase{"ends at once", {"/bin/true"}, 10000, true, "untouched", 5000},
        // The exit code is not examined.
        ShellCase{"fails", {"/bin/sh", "-c", "exit 3"}, 10000, true, "untouched", 5000},
        // A time-out of zero ends after the first pass.
        ShellCase{
            "times out", {"/bin/sleep", "1"}, 0, false, "The NVIDIA tool has timed out.", 900},
        ShellCase{"cannot start", {"/no/such/program"}, 10000, false, kErrorCalling, 5000},
        ShellCase{"no command", {}, 10000, false, kErrorCalling, 5000}),
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
