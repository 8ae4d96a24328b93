#pragma once

#include <QList>
#include <QPair>
#include <QString>

// Kelvaris's settings: text values under keys such as "Software\CohKelvaris",
// kept in a per-user REGEDIT4 file ($XDG_CONFIG_HOME/kelvaris/registry.reg).
// Every call reads the file afresh and every change replaces it atomically, so
// nothing is cached and a crash or a full disk never leaves a half-written
// store. Changes run under a lock file beside the store, so two Kelvaris
// processes never lose each other's values. Reading keeps what it does not
// understand (other value types, lines it cannot read) and writes it back
// unchanged; only a file that is no REGEDIT4 text at all is moved aside as
// "registry.reg.unreadable-<date>".
//
// The game's own keys under "Software\Cryptic\" are looked up in the store
// first and, when absent there, read from the Wine prefix's user.reg
// ($WINEPREFIX, else ~/.wine), never written.
namespace modRegistry {

// The store file this process uses now (follows $XDG_CONFIG_HOME).
QString StoreFilePath();

// The Wine prefix whose user.reg holds the game's keys.
QString WinePrefix();

// Creates the key when missing. 1 when it was created, 2 when it existed,
// 0 when the store could not be written.
long CreateKey(const QString& KeyName);

// The value's text, or "" when the key or value is missing, when the value is
// longer than 1023 characters, or when the store cannot be read.
QString QueryValue(const QString& KeyName, const QString& ValueName);

// Stores Value untrimmed; a Value that is blank once trimmed of spaces deletes
// the value instead (a missing key is then not created). True when the store
// was changed as asked; false, with nothing written, when a name or the
// Value holds a line break, NUL or other control character (the file could
// not give it back), or when the store could not be written.
bool SetValue(const QString& KeyName, const QString& ValueName, const QString& Value);

// SetValue for several values of one key, written to the store at once (one
// write where several would each wait on the disk). True when every value
// was stored as asked; the others are stored all the same.
bool SetValues(const QString& KeyName, const QList<QPair<QString, QString>>& Values);

// Every string value of the key as name and text, in the store's order
// (values of other types are left out).
QList<QPair<QString, QString>> ListValues(const QString& KeyName);

// A Windows path of the prefix ("C:\Games\CoH") as the Linux path Wine maps it
// to, following the prefix's dosdevices links; "" when it is not such a path.
QString WindowsPathToLinux(const QString& windowsPath, const QString& prefix);

} // namespace modRegistry

// The key every Kelvaris setting lives under.
inline const QString kSettingsKey = QStringLiteral("Software\\CohKelvaris");
