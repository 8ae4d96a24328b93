#include "CommandLine.h"

#include "CliRequest.h"
#include "app/GameInstallations.h"
#include "app/NumberText.h"
#include "app/StartUp.h"
#include "app/VersionString.h"
#include "app/modRegistry.h"
#include "texture/TextureWriter.h"

#include <QFileInfo>
#include <cstdio>
#include <functional>

namespace {

struct Command {
    const char* name;
    int (*run)(const CliRequest&);
};

const Command kCommands[] = {
    {"screen", RunScreenCommand},     {"library", RunLibraryCommand},
    {"texture", RunTextureCommand},   {"catalogue", RunCatalogueCommand},
    {"music", RunMusicCommand},       {"online", RunOnlineCommand},
    {"settings", RunSettingsCommand}, {"status", RunStatusCommand},
    {"games", RunGamesCommand},       {"restore", RunRestoreCommand},
};

const Command* commandNamed(const QString& name) {
    for (const Command& command : kCommands)
        if (name == QLatin1String(command.name))
            return &command;
    return nullptr;
}

// Options that take a value, and how many.
int valuesOf(const QString& option) {
    if (option == u"--game" || option == u"--frame" || option == u"--mask")
        return 1;
    if (option == u"--levels")
        return 2;
    return 0;
}

bool isFlag(const QString& option) {
    static const QStringList flags = {"--compress", "--no-compress", "--yes", "--json", "--all"};
    return flags.contains(option);
}

// Splits options from words; "" when all is well, else the problem.
QString parse(const QStringList& arguments, CliRequest& request, bool& compressSet) {
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (!argument.startsWith(QStringLiteral("--")) || argument.size() == 2) {
            request.words << argument;
            continue;
        }
        const int count = valuesOf(argument);
        if (count == 0 && !isFlag(argument))
            return QStringLiteral("unknown option %1").arg(argument);
        if (i + count >= arguments.size())
            return QStringLiteral("%1 needs a value").arg(argument);
        const QString value = arguments.value(i + 1);
        if (argument == u"--game")
            request.game = value;
        else if (argument == u"--frame")
            request.frame = value;
        else if (argument == u"--mask")
            request.mask = value;
        else if (argument == u"--levels") {
            bool blackOk = false, whiteOk = false;
            request.black = arguments[i + 1].toShort(&blackOk);
            request.white = arguments[i + 2].toShort(&whiteOk);
            if (!blackOk || !whiteOk || request.black < 0 || request.white > 255)
                return QStringLiteral("--levels needs two numbers from 0 to 255");
            request.levels = true;
        } else if (argument == u"--compress" || argument == u"--no-compress") {
            request.compress = argument == u"--compress";
            compressSet = true;
        } else if (argument == u"--yes")
            request.yes = true;
        else if (argument == u"--json")
            request.json = true;
        else if (argument == u"--all")
            request.all = true;
        i += count;
    }
    return {};
}

} // namespace

TextureContext CliRequest::textureContext() const {
    return MakeTextureContext(game, compress);
}

void PrintLine(const QString& line) {
    std::fputs(line.toLocal8Bit().constData(), stdout);
    std::fputc('\n', stdout);
}

int UsageError(const QString& problem) {
    std::fprintf(stderr, "kelvaris: %s\n%s", problem.toLocal8Bit().constData(),
                 CommandLineUsage().toLocal8Bit().constData());
    return kCliUsage;
}

int Failure(const QString& problem) {
    std::fprintf(stderr, "%s\n", problem.toLocal8Bit().constData());
    return kCliFailure;
}

QString CommandLineUsage() {
    return QStringLiteral(
        "Usage:\n"
        "  kelvaris                     open the window\n"
        "  kelvaris -randomizer [ARGS]  install random backgrounds, start the chat client\n"
        "  kelvaris --help | --version\n"
        "  kelvaris screen login|character PICTURE [--frame FRAME] [--levels BLACK WHITE]\n"
        "  kelvaris library add login|character PICTURE|FOLDER... [--frame FRAME]\n"
        "  kelvaris library list [login|character]\n"
        "  kelvaris texture list [CATEGORY]\n"
        "  kelvaris texture set CATEGORY TEXTURE PICTURE [--mask MASK]\n"
        "  kelvaris texture set CATEGORY --all PICTURE [--mask MASK]\n"
        "  kelvaris texture restore CATEGORY TEXTURE|--all [--yes]\n"
        "  kelvaris music SOUNDFILE TARGET...\n"
        "      TARGET: boombox:all, boombox:CAPTION (boombox:Altitude), hero-login,\n"
        "      villain-login, dance-floor, blue-side, red-side\n"
        "  kelvaris online list | set SLOT URL CATEGORY TEXTURE | clear SLOT\n"
        "  kelvaris online export FILE | import FILE | download\n"
        "  kelvaris catalogue build\n"
        "  kelvaris settings list | get NAME | set NAME VALUE\n"
        "  kelvaris status [--json]\n"
        "  kelvaris games [--json]      the installations found on this machine\n"
        "  kelvaris restore PATH...|--all --yes  undo Kelvaris's changes to the game\n"
        "Options: --game FOLDER|NUMBER (a folder, or a number from \"kelvaris games\";\n"
        "else the stored game folder), --compress, --no-compress\n"
        "(else the stored setting), --yes (answers the questions the window asks).\n"
        "CATEGORY and TEXTURE are names or numbers as the list commands show them;\n"
        "SLOT is 1 to 5. Exit status: 0 success, 1 failure, 2 usage error.\n");
}

bool IsCommandLine(const QStringList& arguments) {
    // Qt's own options ("-style fusion", "-platform offscreen") still reach
    // the window; any other first word is a command, or a usage error.
    return !arguments.isEmpty() && (arguments.first().startsWith(QStringLiteral("--")) ||
                                    !arguments.first().startsWith(u'-'));
}

int RunCommandLine(const QStringList& arguments) {
    CliRequest request;
    bool compressSet = false;
    const QString problem = parse(arguments, request, compressSet);
    if (arguments.contains(QStringLiteral("--help"))) {
        std::fputs(CommandLineUsage().toLocal8Bit().constData(), stdout);
        return kCliSuccess;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        PrintLine(QStringLiteral("kelvaris ") + VersionString());
        return kCliSuccess;
    }
    if (!problem.isEmpty())
        return UsageError(problem);
    const Command* command = commandNamed(request.word(0));
    if (!command)
        return UsageError(request.words.isEmpty()
                              ? QStringLiteral("no command given")
                              : QStringLiteral("unknown command %1").arg(request.word(0)));
    // --game takes a folder, or the number "kelvaris games" lists it under.
    bool numbered = false;
    const int number = request.game.toInt(&numbered);
    if (request.game.isEmpty()) {
        request.game = StartGameFolder();
    } else if (numbered && !QFileInfo::exists(request.game)) {
        const QList<GameInstallation> games = FindGameInstallations();
        if (number < 1 || number > games.size())
            return UsageError(QStringLiteral("--game %1: \"kelvaris games\" lists %2 "
                                             "installation(s)")
                                  .arg(number)
                                  .arg(games.size()));
        request.game = games[number - 1].gameFolder;
    } else {
        request.game = QFileInfo(request.game).absoluteFilePath();
    }
    if (!compressSet)
        request.compress = LeadingNumber(modRegistry::QueryValue(
                               kSettingsKey, QStringLiteral("TextureCompression"))) != 0;
    ConsoleUi ui(request.yes);
    ConsoleBusy busy;
    request.ui = &ui;
    request.busy = &busy;
    return command->run(request);
}
