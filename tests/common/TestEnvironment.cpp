#include "TestEnvironment.h"

#include "app/FileRecord.h"
#include "app/modRegistry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>

namespace {
const char* const kVars[] = {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "WINEPREFIX", "HOME",
                             "XDG_DATA_HOME"};
}

void TestEnvironment::SetUp() {
    ASSERT_TRUE(dir_.isValid());
    for (int i = 0; i < 5; ++i)
        savedVars_[i] = qgetenv(kVars[i]);
    qputenv("XDG_CONFIG_HOME", configHome().toUtf8());
    qputenv("XDG_CACHE_HOME", cacheHome().toUtf8());
    qputenv("WINEPREFIX", winePrefix().toUtf8());
    qputenv("HOME", (root() + QStringLiteral("/home")).toUtf8());
    qputenv("XDG_DATA_HOME", (root() + QStringLiteral("/data-home")).toUtf8());
}

void TestEnvironment::TearDown() {
    FailWritesAfter(-1); // a test that made the disk "full" leaves it usable
    for (int i = 0; i < 5; ++i) {
        if (savedVars_[i].isNull())
            qunsetenv(kVars[i]);
        else
            qputenv(kVars[i], savedVars_[i]);
    }
}

QString TestEnvironment::writeFile(const QString& relative, const QByteArray& bytes) const {
    const QString path = root() + u'/' + relative;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return path;
}

QByteArray TestEnvironment::readFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

bool TestEnvironment::makeFifo(const QString& path) {
    return ::mkfifo(QFile::encodeName(path).constData(), 0600) == 0;
}

QString TestEnvironment::makeGame() const {
    const QString game = root() + QStringLiteral("/game");
    QDir().mkpath(game);
    return game;
}

QString TestEnvironment::setting(const QString& name) {
    return modRegistry::QueryValue(kSettingsKey, name);
}

void TestEnvironment::storeSetting(const QString& name, const QString& value) {
    modRegistry::SetValue(kSettingsKey, name, value);
}
