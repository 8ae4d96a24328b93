#pragma once

#include "ConsoleUi.h"

#include <QString>
#include <QStringList>

struct TextureContext;

// Exit statuses of the command line.
enum CliExit { kCliSuccess = 0, kCliFailure = 1, kCliUsage = 2 };

// One command as typed: its words without the options, and the options.
struct CliRequest {
    QStringList words; // the command, its subcommand and operands
    QString game;      // --game, else the stored game folder
    bool compress = false;
    bool yes = false; // --yes answers the questions the window asks
    bool json = false;
    bool all = false; // --all
    QString frame;    // --frame
    QString mask;     // --mask
    bool levels = false;
    short black = 0, white = 255;

    ConsoleUi* ui = nullptr;
    ConsoleBusy* busy = nullptr;

    // Word i, "" past the end.
    QString word(qsizetype i) const { return words.value(i); }
    TextureContext textureContext() const;
};

// Writes a line on standard output.
void PrintLine(const QString& line);
// Writes a short usage error on standard error; returns kCliUsage.
int UsageError(const QString& problem);
// Writes a failure on standard error; returns kCliFailure.
int Failure(const QString& problem);

// The commands, each in the file of its subsystem.
int RunScreenCommand(const CliRequest& request);
int RunLibraryCommand(const CliRequest& request);
int RunTextureCommand(const CliRequest& request);
int RunCatalogueCommand(const CliRequest& request);
int RunMusicCommand(const CliRequest& request);
int RunOnlineCommand(const CliRequest& request);
int RunSettingsCommand(const CliRequest& request);
int RunStatusCommand(const CliRequest& request);
int RunGamesCommand(const CliRequest& request);
int RunRestoreCommand(const CliRequest& request);
