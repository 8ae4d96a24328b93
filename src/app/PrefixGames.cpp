#include "PrefixGames.h"

#include "FileRecord.h"
#include "LauncherPrefixes.h"
#include "RegText.h"
#include "modRegistry.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <cctype>
#include <deque>
#include <string_view>

namespace {

constexpr int kDeepestFolder = 4;
constexpr int kMostEntries = 20000;
// A prefix's user.reg is a few megabytes.
constexpr qint64 kLargestHive = 64LL * 1024 * 1024;

const QString kGameKeys = QStringLiteral("Software\\Cryptic\\");

// Most prefixes hold other games: their hives, megabytes each, are parsed
// only when the game's key name occurs in them, in any letter case.
bool mentionsGameKeys(const QByteArray& hive) {
    static constexpr std::string_view kName = "cryptic";
    return std::search(hive.cbegin(), hive.cend(), kName.cbegin(), kName.cend(),
                       [](char a, char b) {
                           return std::tolower(static_cast<unsigned char>(a)) == b;
                       }) != hive.cend();
}

std::optional<QSize> screenOf(const RegKey& key) {
    const RegValue* x = key.findValue(QStringLiteral("screenX"));
    const RegValue* y = key.findValue(QStringLiteral("screenY"));
    if (!x || !y)
        return std::nullopt;
    bool xOk = false;
    bool yOk = false;
    const int width = x->data.toInt(&xOk);
    const int height = y->data.toInt(&yOk);
    if (!xOk || !yOk || width <= 0 || height <= 0)
        return std::nullopt;
    return QSize(width, height);
}

QList<const RegKey*> gameKeys(const RegDocument& hive) {
    QList<const RegKey*> keys;
    for (const RegKey& key : hive.keys)
        if (key.path.startsWith(kGameKeys, Qt::CaseInsensitive))
            keys << &key;
    return keys;
}

QList<PrefixGame> foldersFromRegistry(const QList<const RegKey*>& keys, const QString& prefix) {
    QList<PrefixGame> games;
    for (const RegKey* key : keys) {
        const RegValue* folder = key->findValue(QStringLiteral("Installation Directory"));
        if (!folder)
            continue;
        QString path = modRegistry::WindowsPathToLinux(folder->data, prefix);
        if (path.isEmpty() && folder->data.startsWith(u'/'))
            path = folder->data;
        if (!path.isEmpty() && QFileInfo(path).isDir())
            games.append({QDir::cleanPath(path), screenOf(*key)});
    }
    return games;
}

// Breadth first, so the shallowest copies come first; names in a folder in
// alphabetical order, so the result never depends on the disk's order.
QStringList searchDriveC(const QString& prefix) {
    const QString inside = RealFolder(prefix) + u'/';
    QStringList found;
    QSet<QString> visited;
    std::deque<std::pair<QString, int>> folders{{prefix + QStringLiteral("/drive_c"), 0}};
    int entries = 0;
    while (!folders.empty() && entries < kMostEntries) {
        const auto [folder, depth] = folders.front();
        folders.pop_front();
        QList<QFileInfo> children;
        QDirIterator it(folder,
                        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
        while (it.hasNext() && entries < kMostEntries) {
            it.next();
            ++entries;
            children << it.fileInfo();
        }
        std::sort(children.begin(), children.end(), [](const QFileInfo& a, const QFileInfo& b) {
            return a.fileName().compare(b.fileName(), Qt::CaseInsensitive) < 0;
        });
        bool hit = false;
        for (const QFileInfo& child : children) {
            if (!hit && IsGameProgramName(child.fileName()) && child.isFile()) {
                found << QDir::cleanPath(folder);
                hit = true;
            }
            if (!child.isDir() || depth + 1 > kDeepestFolder)
                continue;
            if (depth == 0 && child.fileName().compare(u"windows", Qt::CaseInsensitive) == 0)
                continue; // Wine's own files: never the game, and many
            const QString real = child.canonicalFilePath();
            if (child.isSymLink() && !real.startsWith(inside))
                continue; // leads out of the prefix (a home folder, the disk)
            if (real.isEmpty() || visited.contains(real))
                continue; // a broken link, or a folder already reached
            visited.insert(real);
            folders.emplace_back(child.filePath(), depth + 1);
        }
    }
    return found;
}

} // namespace

bool IsGameProgramName(const QString& fileName) {
    for (const char* name : {"cityofheroes.exe", "cityofvillains.exe", "paragonchat.exe"})
        if (fileName.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

QList<PrefixGame> GamesInPrefix(const QString& prefix, const QString& programHint) {
    if (!IsWinePrefix(prefix))
        return {};
    RegDocument hive;
    const auto text = ReadRegularFile(prefix + QStringLiteral("/user.reg"), kLargestHive);
    if (text && mentionsGameKeys(*text))
        hive = ParseWineHive(*text);
    const QList<const RegKey*> keys = gameKeys(hive);
    QList<PrefixGame> games = foldersFromRegistry(keys, prefix);
    if (!games.isEmpty())
        return games;

    // Found another way: the screen size is the first the game's keys hold.
    std::optional<QSize> screen;
    for (const RegKey* key : keys)
        if ((screen = screenOf(*key)))
            break;
    if (!programHint.isEmpty() && IsGameProgramName(QFileInfo(programHint).fileName()) &&
        QFileInfo(programHint).isFile())
        return {{QDir::cleanPath(QFileInfo(programHint).absolutePath()), screen}};
    for (const QString& folder : searchDriveC(prefix))
        games.append({folder, screen});
    return games;
}
