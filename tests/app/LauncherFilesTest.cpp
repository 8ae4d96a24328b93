#include "app/LauncherFiles.h"

#include "app/CommandQuoting.h"
#include "app/StartUp.h"

#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace {

struct YamlCase {
    std::string name;
    const char* text;
    const char* section;
    const char* key;
    const char* value;
};

const YamlCase kYaml[] = {
    {"top level ignores nested", "game:\n  Runner: no\nRunner: yes\n", "", "Runner", "yes"},
    {"in a section", "game:\n  exe: /a/b.exe\n  prefix: /p\nwine:\n  version: v\n", "game",
     "prefix", "/p"},
    {"deeper keys are not the section's", "wine:\n  overrides:\n    version: no\n  version: v2\n",
     "wine", "version", "v2"},
    {"comments, blank lines and CR LF",
     "# c\r\nwine:\r\n\r\n  # version: no\r\n  version: v3 # c\r\n", "wine", "version", "v3"},
    {"single quotes", "game:\n  prefix: '/it''s here'\n", "game", "prefix", "/it's here"},
    {"double quotes with escapes", "game:\n  prefix: \"/a \\\"b\\\" #c\"\n", "game", "prefix",
     "/a \"b\" #c"},
    {"block scalar and null", "game:\n  prefix: |\n    /a\n  exe: ~\n", "game", "prefix", ""},
    {"key that only starts the same", "game:\n  prefixes: /a\n  prefix:/b\n", "game", "prefix", ""},
};

TEST(Yaml, ReadsOneScalar) {
    for (const YamlCase& c : kYaml)
        EXPECT_EQ(YamlValue(QByteArray(c.text), QString::fromLatin1(c.section),
                            QString::fromLatin1(c.key)),
                  QString::fromUtf8(c.value))
            << c.name;
}

TEST(Vdf, ReadsEveryLibraryPathOfNewAndOldFiles) {
    EXPECT_EQ(
        VdfPathValues("\"libraryfolders\"\n{\n\t\"0\"\n\t{\n\t\t\"path\"\t\t\"/home/p/.steam\"\n"
                      "\t\t\"apps\" { \"228980\" \"1\" }\n\t}\n\t\"1\"\n\t{\n\t\t\"PATH\"\t"
                      "\"/mnt/My \\\"Games\\\"\\\\x\"\n\t}\n}\n"),
        QStringList({"/home/p/.steam", "/mnt/My \"Games\"\\x"}));
    EXPECT_EQ(VdfPathValues("\"LibraryFolders\" { \"ContentStatsID\" \"-1\" \"1\" \"/old/lib\" }"),
              QStringList({"/old/lib"}));
    // A string cut short ends the reading; what came before it stands.
    EXPECT_EQ(VdfPathValues("\"path\" \"/a\" \"path\" \"/b\n\" \"path\" \"/c\""),
              QStringList({"/a"}));
}

// Argument lists that lose something in a naive join: blanks, quotes,
// backslashes, empty arguments, shell and desktop-entry specials.
const QStringList kTrickyArguments = {"-x",          "",     "two words", "say \"hi\"",
                                      "back\\slash", "\\\"", "it's",      "$HOME",
                                      "%u 100%",     "a\tb", "*?",        "-project"};

TEST(CommandLineText, SplitGivesBackWhatJoinWasGiven) {
    for (const QStringList& arguments :
         {kTrickyArguments, QStringList{}, QStringList{""}, QStringList{"C:\\Games\\CoH"}})
        EXPECT_EQ(SplitJoinedCommandLine(JoinCommandLine(arguments)), arguments)
            << JoinCommandLine(arguments).toStdString();
    // Plain arguments are written as they were.
    EXPECT_EQ(JoinCommandLine({"-randomizer", "C:\\CoH", "two words"}),
              "-randomizer C:\\CoH \"two words\"");
}

TEST(ShellWords, ReachAShellExactly) {
    const QString sh = QStandardPaths::findExecutable("sh");
    if (sh.isEmpty())
        GTEST_SKIP() << "no sh on PATH";
    // The shell prints each word it was given on a line of its own.
    QProcess shell;
    shell.start(sh, {"-c", "for a in " + ShellQuoted(kTrickyArguments) +
                               "; do printf '[%s]\\n' \"$a\"; done"});
    ASSERT_TRUE(shell.waitForFinished());
    QStringList printed;
    for (const QString& line : QString::fromUtf8(shell.readAllStandardOutput()).split(u'\n'))
        if (!line.isEmpty())
            printed << line.mid(1, line.size() - 2);
    EXPECT_EQ(printed, kTrickyArguments);
    EXPECT_EQ(ShellQuoted({"-x", "1", "C:/a.exe"}), "-x 1 C:/a.exe");
}

TEST(DesktopExec, QuotesReservedCharactersAndEscapesTheString) {
    EXPECT_EQ(DesktopExecValue({"/usr/bin/kelvaris", "-randomizer", "-x"}),
              "/usr/bin/kelvaris -randomizer -x");
    EXPECT_EQ(DesktopExecValue({"/opt/my games/kelvaris", ""}), "\"/opt/my games/kelvaris\" \"\"");
    // '"', '`', '$' and '\' are escaped inside the quotes; the file's own
    // escaping then doubles every backslash.
    EXPECT_EQ(DesktopExecValue({"k", "say \"hi\"", "$HOME", "a\\b", "`x`"}),
              "k \"say \\\\\"hi\\\\\"\" \"\\\\$HOME\" \"a\\\\\\\\b\" \"\\\\`x\\\\`\"");
    EXPECT_EQ(DesktopExecValue({"k", "100%", "it's", "a\nb"}), "k 100%% \"it's\" \"a\\nb\"");
    EXPECT_EQ(DesktopExecValue({"k", "a\rb"}), std::nullopt);
    EXPECT_EQ(DesktopExecValue({"k", QString(QChar(0))}), std::nullopt);
}

} // namespace
