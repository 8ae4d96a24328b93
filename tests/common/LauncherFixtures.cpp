#include "LauncherFixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace LauncherFixtures {

namespace {
QString under(const QString& root, const QString& relative) {
    return relative.startsWith(u'/') ? relative : root + u'/' + relative;
}
} // namespace

QString WriteAt(const QString& root, const QString& relative, const QByteArray& bytes) {
    const QString path = under(root, relative);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return path;
}

QString MakePrefix(const QString& root, const QString& relative, const QByteArray& userReg) {
    const QString prefix = under(root, relative);
    QDir().mkpath(prefix + QStringLiteral("/drive_c"));
    QDir().mkpath(prefix + QStringLiteral("/dosdevices"));
    if (!userReg.isEmpty())
        WriteAt(prefix, QStringLiteral("user.reg"), userReg);
    return prefix;
}

QString MakeProgram(const QString& root, const QString& relative) {
    const QString path = WriteAt(root, relative, "#!/bin/sh\nexit 0\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

QByteArray GameRegistry(const QString& windowsFolder, int screenX, int screenY) {
    QByteArray text = "WINE REGISTRY Version 2\n;; All keys relative to \\\\User\\\\S-1-5-21\n\n"
                      "[Software\\\\Cryptic\\\\Coh] 1700000000\n#time=1d9a\n";
    QString escaped = windowsFolder;
    escaped.replace(u'\\', QStringLiteral("\\\\"));
    text += "\"Installation Directory\"=\"" + escaped.toUtf8() + "\"\n";
    if (screenX > 0)
        text += "\"screenX\"=dword:" + QByteArray::number(screenX, 16).rightJustified(8, '0') +
                "\n\"screenY\"=dword:" + QByteArray::number(screenY, 16).rightJustified(8, '0') +
                "\n";
    return text;
}

void Lay(const QString& root, const Layout& layout) {
    for (const Laid& item : layout) {
        const QByteArray text = QByteArray(item.text).replace("ROOT", root.toUtf8());
        const QString path = under(root, item.path);
        switch (item.kind) {
        case File:
            WriteAt(root, item.path, text);
            break;
        case Folder:
            QDir().mkpath(path);
            break;
        case Prefix:
            MakePrefix(root, item.path, text);
            break;
        case Program:
            MakeProgram(root, item.path);
            break;
        case Fifo:
            QDir().mkpath(QFileInfo(path).absolutePath());
            ::mkfifo(QFile::encodeName(path).constData(), 0600);
            break;
        case Link:
            QDir().mkpath(QFileInfo(path).absolutePath());
            QFile::link(under(root, QString::fromUtf8(text)), path);
            break;
        }
    }
}

} // namespace LauncherFixtures
