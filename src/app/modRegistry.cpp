#include "modRegistry.h"

#include "FileRecord.h"
#include "PathUtils.h"
#include "RegText.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QThread>
#include <algorithm>
#include <optional>

namespace modRegistry {
namespace {

const QString kRoot = QStringLiteral("HKEY_CURRENT_USER\\");
const QString kGameKeys = QStringLiteral("Software\\Cryptic\\");
constexpr qsizetype kLongestReadableValue = 1023;
// A store is a few kilobytes; a file far larger is not read.
constexpr qint64 kLargestStore = 64LL * 1024 * 1024;
// A Wine hive is a few megabytes at most.
constexpr qint64 kLargestHive = 256LL * 1024 * 1024;
// How long a change waits for another Kelvaris (the window and a randomizer
// run, say) to finish its own.
constexpr int kLockWaitMs = 10000;
constexpr int kLockRetryMs = 5;

// The store as it stands on disk. `readable` is false when a file exists that
// this process may not read; nothing is then written over it.
struct Store {
    RegDocument doc;
    bool readable = true;
};

QString configHome() {
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.config");
    return base;
}

// A store that does not parse is moved aside under a new name, so that the
// player (or we) can still look at it, and the tool goes on with defaults.
void keepAside(const QString& path) {
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    QString aside = path + QStringLiteral(".unreadable-") + stamp;
    for (int n = 1; QFileInfo::exists(aside); ++n)
        aside = path + QStringLiteral(".unreadable-") + stamp + u'-' + QString::number(n);
    QFile::rename(path, aside);
}

Store loadStore() {
    Store store;
    const QString path = StoreFilePath();
    if (!QFileInfo::exists(path))
        return store;
    const std::optional<QByteArray> bytes = ReadRegularFile(path, kLargestStore);
    if (!bytes) {
        store.readable = false;
        return store;
    }
    if (auto doc = ParseRegedit4(*bytes)) {
        store.doc = std::move(*doc);
    } else {
        keepAside(path);
        if (QFileInfo::exists(path)) // could not be moved: leave it alone
            store.readable = false;
    }
    return store;
}

bool saveStore(const RegDocument& doc) {
    return WriteFileAtomically(StoreFilePath(), WriteRegedit4(doc));
}

// Holds the lock file beside the store while a change reads, edits and
// rewrites it, so that two Kelvaris processes never lose each other's values.
// A lock left by a process that no longer runs is taken over.
class StoreLock {
public:
    StoreLock() : lock_(StoreFilePath() + QStringLiteral(".lock")) {
        QDir().mkpath(QFileInfo(StoreFilePath()).absolutePath());
        // Retried often rather than with QLockFile's long back-off: a change
        // takes milliseconds.
        const QDeadlineTimer deadline(kLockWaitMs);
        while (!(locked_ = lock_.tryLock(0)) && !deadline.hasExpired())
            QThread::msleep(kLockRetryMs);
    }
    bool Locked() const { return locked_; }

private:
    QLockFile lock_;
    bool locked_ = false;
};

std::optional<QString> wineValue(const QString& KeyName, const QString& ValueName) {
    const QString prefix = WinePrefix();
    const std::optional<QByteArray> hive =
        ReadRegularFile(prefix + QStringLiteral("/user.reg"), kLargestHive);
    if (!hive)
        return std::nullopt;
    const RegDocument doc = ParseWineHive(*hive);
    const RegKey* key = doc.findKey(KeyName);
    if (!key)
        return std::nullopt;
    const RegValue* value = key->findValue(ValueName);
    if (!value)
        return std::nullopt;
    const QString mapped = WindowsPathToLinux(value->data, prefix);
    return mapped.isEmpty() ? value->data : mapped;
}

} // namespace

QString StoreFilePath() {
    return configHome() + QStringLiteral("/kelvaris/registry.reg");
}

QString WinePrefix() {
    const QString prefix = qEnvironmentVariable("WINEPREFIX");
    if (!prefix.isEmpty())
        return prefix;
    return QDir::homePath() + QStringLiteral("/.wine");
}

QString WindowsPathToLinux(const QString& windowsPath, const QString& prefix) {
    if (windowsPath.size() < 2 || !windowsPath[0].isLetter() || windowsPath[1] != u':')
        return {};
    const QString drive = windowsPath.left(2).toLower();
    QString root = QFileInfo(prefix + QStringLiteral("/dosdevices/") + drive).canonicalFilePath();
    if (root.isEmpty() && drive == u"c:")
        root = prefix + QStringLiteral("/drive_c");
    if (root.isEmpty())
        return {};
    QString rest = windowsPath.mid(2);
    rest.replace(u'\\', u'/');
    while (rest.endsWith(u'/'))
        rest.chop(1);
    // Wine finds names without regard to letter case; so do we.
    return ResolveExistingCase(root +
                               (rest.startsWith(u'/') || rest.isEmpty() ? rest : u'/' + rest));
}

long CreateKey(const QString& KeyName) {
    if (!IsStorableText(KeyName))
        return 0;
    const StoreLock lock;
    if (!lock.Locked())
        return 0;
    Store store = loadStore();
    if (!store.readable)
        return 0;
    const QString path = kRoot + KeyName;
    if (store.doc.findKey(path))
        return 2;
    store.doc.addKey(path);
    return saveStore(store.doc) ? 1 : 0;
}

QString QueryValue(const QString& KeyName, const QString& ValueName) {
    const Store store = loadStore();
    std::optional<QString> result;
    if (const RegKey* key = store.doc.findKey(kRoot + KeyName))
        if (const RegValue* value = key->findValue(ValueName))
            result = value->data;
    if (!result && KeyName.startsWith(kGameKeys, Qt::CaseInsensitive))
        result = wineValue(KeyName, ValueName);
    if (!result || result->size() > kLongestReadableValue)
        return {};
    return *result;
}

QList<QPair<QString, QString>> ListValues(const QString& KeyName) {
    QList<QPair<QString, QString>> values;
    const Store store = loadStore();
    if (const RegKey* key = store.doc.findKey(kRoot + KeyName))
        for (const RegValue& value : key->values)
            if (value.raw.isEmpty())
                values.append({value.name, value.data});
    return values;
}

bool SetValue(const QString& KeyName, const QString& ValueName, const QString& Value) {
    return SetValues(KeyName, {{ValueName, Value}});
}

bool SetValues(const QString& KeyName, const QList<QPair<QString, QString>>& Values) {
    // What the file could not give back as it was given is never stored.
    QList<QPair<QString, QString>> storable;
    for (const auto& [name, value] : Values)
        if (IsStorableText(KeyName) && IsStorableText(name) && IsStorableText(value))
            storable.append({name, value});
    if (storable.isEmpty())
        return false;
    const StoreLock lock;
    if (!lock.Locked())
        return false;
    Store store = loadStore();
    if (!store.readable)
        return false;
    RegKey* key = store.doc.findKey(kRoot + KeyName);
    qsizetype changed = 0;
    for (const auto& [name, value] : storable) {
        // Only spaces count as blank, as the store has always trimmed them alone.
        if (std::all_of(value.cbegin(), value.cend(), [](QChar c) { return c == u' '; })) {
            changed += key && key->removeValue(name) ? 1 : 0;
            continue;
        }
        if (!key)
            key = &store.doc.addKey(kRoot + KeyName);
        key->setValue(name, value);
        ++changed;
    }
    return changed > 0 && saveStore(store.doc) && changed == Values.size();
}

} // namespace modRegistry
