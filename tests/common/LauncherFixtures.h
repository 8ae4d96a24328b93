#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Game launchers' folders as they lie in a player's home: Wine prefixes, stand-in
// Wine builds and launcher files. Paths are relative to `root` unless absolute.
namespace LauncherFixtures {

// Writes `bytes` as root/relative, making folders; the file's path.
QString WriteAt(const QString& root, const QString& relative, const QByteArray& bytes);

// A Wine prefix (drive_c and dosdevices) at root/relative, holding
// `userReg` as its user.reg when that is not empty; the prefix's path.
QString MakePrefix(const QString& root, const QString& relative, const QByteArray& userReg = {});

// An executable shell script at root/relative that does nothing; its path.
QString MakeProgram(const QString& root, const QString& relative);

// A user.reg whose Software\Cryptic\Coh key holds `windowsFolder` as the
// "Installation Directory", plus the screen size when one is given.
QByteArray GameRegistry(const QString& windowsFolder, int screenX = 0, int screenY = 0);

// One thing of a launcher's layout. `text` is a file's bytes, a prefix's
// user.reg or a link's target; "ROOT" in it stands for the test's folder.
enum LaidKind { File, Folder, Prefix, Program, Fifo, Link };
struct Laid {
    LaidKind kind;
    QString path;
    QByteArray text = {};
};
using Layout = QList<Laid>;

// Lays every thing in order below `root`.
void Lay(const QString& root, const Layout& layout);

} // namespace LauncherFixtures
