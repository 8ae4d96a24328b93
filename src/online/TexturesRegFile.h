#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class UiServices;

// The five online slots as a registry file another player can apply:
// "Kelvaris Textures.reg" in REGEDIT4 form. Values are written as they are,
// without escapes, so a value holding a quote or backslash is written as one
// character. Linux has no registry editor to apply such a file, so Kelvaris
// reads it back itself.

inline const QString kTexturesRegFileName = QStringLiteral("Kelvaris Textures.reg");
inline const QString kTexturesRegFilter = QStringLiteral("Windows Registry files (reg)|*.reg");

// The 32 lines, each ending in CR LF: "REGEDIT4", the key heading, then for
// each slot webName, webPath, webFile, webWidth, webHeight (from the settings)
// and webLink (Links[n], the slot's address box as typed, saved or not).
QByteArray TexturesRegText(const QStringList& Links);

// Writes TexturesRegText to FileName, replacing any file; false when it could
// not be written.
bool ExportOnlineTextures(const QString& FileName, const QStringList& Links);

// "Export Online Textures to a file": asks where to save with the save
// dialog, then writes the file. Nothing happens when the dialog is cancelled.
void AskAndExportOnlineTextures(UiServices& ui, const QStringList& Links);

struct TexturesImport {
    int merged = 0;       // settings values stored
    QStringList problems; // one sentence per thing that was refused or skipped
    QString Message() const;
};

// Reads a file of the exported form and stores its webName, webPath, webFile,
// webWidth, webHeight and webLink values of slots 0 to 4 under
// "Software\CohKelvaris". Anything else is skipped; a slot whose texture
// would lie outside the game's data folder ("..", an absolute path), or with a
// value too long to store, is refused whole; a file that is not such a file
// stores nothing.
TexturesImport ImportOnlineTextures(const QString& FileName);

// Asks for the file with the open dialog, imports it and tells the player
// what was stored and what was refused.
void AskAndImportOnlineTextures(UiServices& ui);
