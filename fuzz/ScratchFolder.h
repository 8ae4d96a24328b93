#pragma once

#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <cstdlib>
#include <utility>

// One temporary folder for the whole fuzzing process, made on first use and
// removed at exit. Before anything else runs, the per-user folders Kelvaris
// reads and writes (the settings store, the work folder, the Wine prefix,
// home) are pointed inside it, so a target never touches the real ones.
inline const QString& ScratchFolder() {
    static QTemporaryDir dir;
    static const QString root = [] {
        if (!dir.isValid())
            std::abort();
        const QString path = dir.path();
        const std::pair<const char*, const char*> folders[] = {{"XDG_CONFIG_HOME", "config"},
                                                               {"XDG_CACHE_HOME", "cache"},
                                                               {"XDG_DATA_HOME", "data-home"},
                                                               {"WINEPREFIX", "wine"},
                                                               {"HOME", "home"}};
        for (const auto& [variable, name] : folders) {
            const QString folder = path + u'/' + QString::fromLatin1(name);
            QDir().mkpath(folder);
            qputenv(variable, folder.toUtf8());
        }
        return path;
    }();
    return root;
}

// Writes the input to a file of the scratch folder and returns its path.
inline QString WriteScratchFile(const QString& name, const char* data, size_t size) {
    const QString path = ScratchFolder() + u'/' + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(data, qint64(size)) != qint64(size))
        std::abort();
    return path;
}
