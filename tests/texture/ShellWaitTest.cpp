#include "texture/modShellWait.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

const QString kErrorCalling =
    QStringLiteral("Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.");

TEST(ShellAndWait, ACommandThatEndsAtOnceTakesOnePass) {
    QString message = QStringLiteral("untouched");
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(ShellAndWait({QStringLiteral("/bin/true")}, 0, message, 10000));
    EXPECT_GE(clock.elapsed(), 100);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(message, QStringLiteral("untouched"));
}

TEST(ShellAndWait, TheExitCodeIsNotExamined) {
    QString message;
    EXPECT_TRUE(
        ShellAndWait({QStringLiteral("/bin/sh"), QStringLiteral("-c"), QStringLiteral("exit 3")}, 0,
                     message, 10000));
    EXPECT_TRUE(message.isEmpty());
}

TEST(ShellAndWait, ATimeOutOfZeroEndsAfterTheFirstPass) {
    QString message;
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(ShellAndWait({QStringLiteral("/bin/sleep"), QStringLiteral("1")}, 0, message, 0));
    EXPECT_EQ(message, QStringLiteral("The NVIDIA tool has timed out."));
    EXPECT_LT(clock.elapsed(), 900);
}

TEST(ShellAndWait, AProgramThatCannotStart) {
    QString message;
    EXPECT_FALSE(ShellAndWait({QStringLiteral("/no/such/program")}, 0, message, 10000));
    EXPECT_EQ(message, kErrorCalling);
    message.clear();
    EXPECT_FALSE(ShellAndWait({}, 0, message, 10000));
    EXPECT_EQ(message, kErrorCalling);
}

TEST(ShellAndWait, WindowEventsRunWhileItWaits) {
    bool fired = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&fired] { fired = true; });
    timer.start(50);
    QString message;
    EXPECT_TRUE(
        ShellAndWait({QStringLiteral("/bin/sleep"), QStringLiteral("0.4")}, 0, message, 10000));
    EXPECT_TRUE(fired);
}

} // namespace
