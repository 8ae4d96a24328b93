#include "texture/modShellWait.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

TEST(ShellAndWait, EndsAsTheCommandDoes) {
    const char* const errorCalling =
        "Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.";
    const struct {
        QStringList command;
        long timeOut;
        bool finished;
        const char* message; // "untouched" when none is given
    } cases[] = {
        {{"/bin/true"}, 10000, true, "untouched"},
        {{"/bin/sh", "-c", "exit 3"}, 10000, true, "untouched"}, // the exit code is not examined
        {{"/bin/sleep", "10"}, 0, false, "The NVIDIA tool has timed out."}, // after the first pass
        {{"/no/such/program"}, 10000, false, errorCalling},
        {{}, 10000, false, errorCalling}};
    for (const auto& c : cases) {
        QString message = QStringLiteral("untouched");
        EXPECT_EQ(ShellAndWait(c.command, 0, message, c.timeOut), c.finished)
            << c.command.join(u' ').toStdString();
        EXPECT_EQ(message, QString::fromLatin1(c.message));
    }
}

TEST(ShellAndWait, WindowEventsRunWhileItWaits) {
    bool fired = false;
    QObject guard;
    QTimer::singleShot(50, &guard, [&fired] { fired = true; });
    QString message;
    EXPECT_TRUE(ShellAndWait({"/bin/sleep", "0.4"}, 0, message, 10000));
    EXPECT_TRUE(fired);
}

} // namespace
