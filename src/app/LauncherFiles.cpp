#include "LauncherFiles.h"

#include "FileRecord.h"

#include <QDir>
#include <QFileInfo>

namespace {

// Launcher files are a few kilobytes; anything far larger is not one.
constexpr qint64 kLargestLauncherFile = 1024 * 1024;

qsizetype indentationOf(const QString& line) {
    qsizetype n = 0;
    while (n < line.size() && (line[n] == u' ' || line[n] == u'\t'))
        ++n;
    return n;
}

bool isBlankOrComment(const QString& line) {
    const QString trimmed = line.trimmed();
    return trimmed.isEmpty() || trimmed.startsWith(u'#') || trimmed == u"---";
}

// "key: value" (or "key:") at the start of `text`: the value text, or
// nothing when the line holds another key.
std::optional<QString> afterKey(QStringView text, const QString& key) {
    if (!text.startsWith(key) || text.size() <= key.size() || text[key.size()] != u':')
        return std::nullopt;
    const QStringView rest = text.mid(key.size() + 1);
    if (!rest.isEmpty() && rest[0] != u' ' && rest[0] != u'\t')
        return std::nullopt; // "key:x" is a plain scalar, not a mapping entry
    return rest.trimmed().toString();
}

// The scalar a YAML value text stands for, for the one-line forms launchers
// write: plain, 'single-quoted' or "double-quoted".
QString scalarOf(const QString& value) {
    if (value.startsWith(u'"')) {
        QString out;
        for (qsizetype i = 1; i < value.size(); ++i) {
            const QChar c = value[i];
            if (c == u'"')
                return out;
            if (c == u'\\' && i + 1 < value.size()) {
                const QChar next = value[++i];
                out += next == u'n' ? u'\n' : next == u't' ? u'\t' : next;
                continue;
            }
            out += c;
        }
        return {}; // no closing quote
    }
    if (value.startsWith(u'\'')) {
        QString out;
        for (qsizetype i = 1; i < value.size(); ++i) {
            if (value[i] != u'\'') {
                out += value[i];
                continue;
            }
            if (i + 1 < value.size() && value[i + 1] == u'\'') {
                out += u'\'';
                ++i;
                continue;
            }
            return out;
        }
        return {};
    }
    QString plain = value;
    const qsizetype comment = plain.indexOf(QStringLiteral(" #"));
    if (comment >= 0)
        plain.truncate(comment);
    plain = plain.trimmed();
    // Block scalars, flow collections and anchors are not one-line values.
    if (plain.startsWith(u'|') || plain.startsWith(u'>') || plain.startsWith(u'[') ||
        plain.startsWith(u'{') || plain.startsWith(u'&') || plain.startsWith(u'*'))
        return {};
    if (plain == u"~" || plain == u"null")
        return {};
    return plain;
}

} // namespace

std::optional<QByteArray> ReadLauncherFile(const QString& path) {
    return ReadRegularFile(path, kLargestLauncherFile);
}

QString YamlValue(const QByteArray& text, const QString& section, const QString& key) {
    const QStringList lines = QString::fromUtf8(text).split(u'\n');
    bool inSection = section.isEmpty();
    qsizetype childIndent = -1;
    for (QString line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (isBlankOrComment(line))
            continue;
        const qsizetype indent = indentationOf(line);
        const QStringView body = QStringView(line).mid(indent);
        if (section.isEmpty()) {
            if (indent == 0)
                if (const auto value = afterKey(body, key))
                    return scalarOf(*value);
            continue;
        }
        if (indent == 0) {
            if (inSection)
                return {}; // the section ended without the key
            const auto value = afterKey(body, section);
            inSection = value && (value->isEmpty() || value->startsWith(u'#'));
            continue;
        }
        if (!inSection)
            continue;
        if (childIndent < 0)
            childIndent = indent;
        if (indent != childIndent)
            continue; // deeper: a value of a nested mapping
        if (const auto value = afterKey(body, key))
            return scalarOf(*value);
    }
    return {};
}

QStringList VdfPathValues(const QByteArray& text) {
    // The file is a tree of quoted keys and values and braces; reading its
    // quoted strings in order is enough to pair each key with its value.
    const QString all = QString::fromUtf8(text);
    QStringList tokens;
    for (qsizetype i = 0; i < all.size(); ++i) {
        if (all[i] != u'"')
            continue;
        QString token;
        bool closed = false;
        for (++i; i < all.size(); ++i) {
            const QChar c = all[i];
            if (c == u'\\' && i + 1 < all.size()) {
                token += all[++i];
                continue;
            }
            if (c == u'"') {
                closed = true;
                break;
            }
            if (c == u'\n')
                break; // a string never spans lines: the file is broken here
            token += c;
        }
        if (!closed)
            break;
        tokens << token;
    }
    QStringList paths;
    for (qsizetype i = 0; i + 1 < tokens.size(); ++i) {
        const QString& name = tokens[i];
        bool numbered = false;
        name.toUInt(&numbered);
        // Older files list each library as "1" "/path" directly.
        if (name.compare(u"path", Qt::CaseInsensitive) == 0 ||
            (numbered && tokens[i + 1].startsWith(u'/'))) {
            paths << tokens[i + 1];
            ++i;
        }
    }
    return paths;
}

QString ExpandHome(const QString& path) {
    if (path == u"~" || path == u"$HOME")
        return QDir::homePath();
    if (path.startsWith(QStringLiteral("~/")))
        return QDir::homePath() + path.mid(1);
    if (path.startsWith(QStringLiteral("$HOME/")))
        return QDir::homePath() + path.mid(5);
    return path;
}

QString ExecutableOrEmpty(const QString& path) {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.isFile() || !info.isExecutable())
        return {};
    return info.absoluteFilePath();
}
