#include "randomizer/RandomizerDesktopEntry.h"

#include "common/TestEnvironment.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>

namespace {

using RandomizerDesktopEntryTest = TestEnvironment;

QString execLine(const QByteArray& entry) {
    for (const QByteArray& line : entry.split('\n'))
        if (line.startsWith("Exec="))
            return QString::fromUtf8(line.mid(5));
    return {};
}

TEST_F(RandomizerDesktopEntryTest, WritesAnEntryThatValidatesAndCarriesEveryArgument) {
    const QString path = WriteRandomizerDesktopEntry(
        {"-skipupdate", "", "say \"hi\"", "$HOME", "C:\\x", "100%"}, "/opt/my games/kelvaris");
    EXPECT_EQ(path, root() + "/data-home/applications/kelvaris-randomizer.desktop");
    const QByteArray entry = readFile(path);
    EXPECT_EQ(execLine(entry),
              QStringLiteral("\"/opt/my games/kelvaris\" -randomizer -skipupdate \"\" "
                             "\"say \\\\\"hi\\\\\"\" \"\\\\$HOME\" \"C:\\\\\\\\x\" 100%%"));
    EXPECT_TRUE(entry.contains("\nIcon=io.github.kelvaris.Kelvaris\n"));

    // Without XDG_DATA_HOME the entry goes below the home; an argument with a
    // carriage return cannot be written, and the entry there stays as it was.
    qunsetenv("XDG_DATA_HOME");
    const QString home = WriteRandomizerDesktopEntry({"-x"});
    EXPECT_EQ(home, QDir::homePath() + "/.local/share/applications/kelvaris-randomizer.desktop");
    EXPECT_EQ(execLine(readFile(home)), "kelvaris -randomizer -x");
    EXPECT_EQ(WriteRandomizerDesktopEntry({"a\rb"}), QString());
    EXPECT_EQ(execLine(readFile(home)), "kelvaris -randomizer -x");

    const QString validator = QStandardPaths::findExecutable("desktop-file-validate");
    if (validator.isEmpty())
        GTEST_SKIP() << "desktop-file-validate is not installed (package desktop-file-utils)";
    QProcess validate;
    validate.start(validator, {path});
    ASSERT_TRUE(validate.waitForFinished());
    EXPECT_EQ(validate.exitCode(), 0) << validate.readAllStandardOutput().toStdString();
}

} // namespace
