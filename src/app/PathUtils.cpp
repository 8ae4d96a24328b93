#include "PathUtils.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

QString ReturnPath(const QString& Path) {
    const qsizetype last = Path.lastIndexOf(u'/');
    if (last <= 0) // no "/" at all, or only the root's
        return {};
    return Path.left(last);
}

namespace {

QString joined(const QString& folder, const QString& name) {
    if (folder.isEmpty() || folder.endsWith(u'/'))
        return folder + name;
    return folder + u'/' + name;
}

} // namespace

QString ResolveExistingCase(const QString& Path) {
    if (Path.isEmpty() || QFileInfo::exists(Path))
        return Path;
    const bool absolute = Path.startsWith(u'/');
    const QStringList parts = Path.split(u'/', Qt::SkipEmptyParts);
    QString done = absolute ? QStringLiteral("/") : QString();
    bool matching = true;
    for (const QString& part : parts) {
        QString next = joined(done, part);
        if (matching && !QFileInfo::exists(next)) {
            matching = false;
            const QDir dir(done.isEmpty() ? QStringLiteral(".") : done);
            const QStringList entries = dir.entryList(QDir::AllEntries | QDir::Hidden |
                                                      QDir::System | QDir::NoDotAndDotDot);
            for (const QString& entry : entries) {
                if (entry.compare(part, Qt::CaseInsensitive) == 0) {
                    next = joined(done, entry);
                    matching = true;
                    break;
                }
            }
        }
        done = next;
    }
    if (Path.endsWith(u'/') && !done.endsWith(u'/'))
        done += u'/';
    return done;
}

void MakePath(const QString& Path) {
    QString path = Path;
    if (path.endsWith(u'/') && path.size() > 1)
        path.chop(1);
    if (path.isEmpty() || QFileInfo(path).isDir())
        return;
    QDir().mkpath(ResolveExistingCase(path));
}

bool IsContainedRelative(const QString& relative) {
    if (relative.isEmpty() || relative.startsWith(u'/') || relative.startsWith(u'\\'))
        return false;
    if (relative.size() >= 2 && relative[1] == u':') // a Windows drive
        return false;
    // No part between separators, "/" or a backslash, may be "." or "..".
    qsizetype start = 0;
    for (qsizetype i = 0; i <= relative.size(); ++i) {
        if (i < relative.size() && relative[i] != u'/' && relative[i] != u'\\')
            continue;
        const QStringView part = QStringView(relative).sliced(start, i - start);
        if (part == u"." || part == u"..")
            return false;
        start = i + 1;
    }
    return true;
}

bool LiesBelow(const QString& Path, const QString& Root, const QString& Below) {
    if (Root.isEmpty() || Path.isEmpty())
        return false;
    const QString root = QDir::cleanPath(QDir(Root).absolutePath());
    const QString target = QDir::cleanPath(QDir(Path).absolutePath());
    if (!target.startsWith(root + u'/'))
        return false;
    const QStringList rest = target.mid(root.size() + 1).split(u'/');
    const QStringList wanted = Below.split(u'/', Qt::SkipEmptyParts);
    if (rest.size() < wanted.size())
        return false;
    for (qsizetype i = 0; i < wanted.size(); ++i)
        if (rest[i].compare(wanted[i], Qt::CaseInsensitive) != 0)
            return false;
    return true;
}

QString ProgramFolder() {
    return QCoreApplication::applicationDirPath();
}

QString WorkFolder() {
    QString base = qEnvironmentVariable("XDG_CACHE_HOME");
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.cache");
    const QString folder = base + QStringLiteral("/kelvaris");
    QDir().mkpath(folder);
    return folder;
}

QString FileNamePart(const QString& Path) {
    return Path.mid(Path.lastIndexOf(u'/') + 1);
}
