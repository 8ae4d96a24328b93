#include "modRegistry.h"

#include "PathUtils.h"
#include "RegText.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>
#include <optional>

namespace modRegistry {
namespace {

const QString kRoot = QStringLiteral("HKEY_CURRENT_USER\\");
const QString kGameKeys = QStringLiteral("Software\\Cryptic\\");
constexpr qsizetype kLongestReadableValue = 1023;

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
    QFile file(path);
    if (!file.exists())
        return store;
    if (!file.open(QIODevice::ReadOnly)) {
        store.readable = false;
        return store;
    }
    const QByteArray bytes = file.readAll();
    file.close();
    if (auto doc = ParseRegedit4(bytes)) {
        store.doc = std::move(*doc);
    } else {
        keepAside(path);
        if (QFileInfo::exists(path)) // could not be moved: leave it alone
            store.readable = false;
    }
    return store;
}

bool saveStore(const RegDocument& doc) {
    const QString path = StoreFilePath();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(WriteRegedit4(doc));
    return file.commit();
}

std::optional<QString> wineValue(const QString& KeyName, const QString& ValueName) {
    const QString prefix = WinePrefix();
    QFile hive(prefix + QStringLiteral("/user.reg"));
    if (!hive.open(QIODevice::ReadOnly))
        return std::nullopt;
    // A hive is a few megabytes at most; refuse anything absurd.
    if (hive.size() > 256 * 1024 * 1024)
        return std::nullopt;
    const RegDocument doc = ParseWineHive(hive.readAll());
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

bool SetValue(const QString& KeyName, const QString& ValueName, const QString& Value) {
    // Only spaces count as blank, as the store has always trimmed them alone.
    const bool blank = std::all_of(Value.cbegin(), Value.cend(), [](QChar c) { return c == u' '; });
    Store store = loadStore();
    if (!store.readable)
        return false;
    RegKey* key = store.doc.findKey(kRoot + KeyName);
    if (blank) {
        if (!key || !key->removeValue(ValueName))
            return false;
        return saveStore(store.doc);
    }
    if (!key)
        key = &store.doc.addKey(kRoot + KeyName);
    key->setValue(ValueName, Value);
    return saveStore(store.doc);
}

} // namespace modRegistry
