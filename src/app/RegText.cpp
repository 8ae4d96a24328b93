#include "RegText.h"

#include <QStringList>

namespace {

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Reads a quoted string starting at `pos` (which holds the opening quote).
// Returns the text and leaves `pos` after the closing quote.
std::optional<QString> readQuoted(const QString& line, qsizetype& pos, bool unescape) {
    if (pos >= line.size() || line[pos] != u'"')
        return std::nullopt;
    QString out;
    ++pos;
    while (pos < line.size()) {
        const QChar c = line[pos];
        if (c == u'"') {
            ++pos;
            return out;
        }
        if (c == u'\\' && unescape && pos + 1 < line.size()) {
            const QChar n = line[pos + 1];
            pos += 2;
            switch (n.unicode()) {
            case 'n':
                out += u'\n';
                break;
            case 'r':
                out += u'\r';
                break;
            case 't':
                out += u'\t';
                break;
            case '0':
                out += QChar(0);
                break;
            case 'x': { // Wine writes other characters as \xNNNN
                qsizetype end = pos;
                while (end < line.size() && end - pos < 4 && isxdigit(line[end].toLatin1()))
                    ++end;
                bool ok = false;
                const uint code = QStringView(line).mid(pos, end - pos).toUInt(&ok, 16);
                if (ok && code > 0)
                    out += QChar(char16_t(code));
                pos = end;
                break;
            }
            default:
                out += n;
            }
            continue;
        }
        out += c;
        ++pos;
    }
    return std::nullopt; // no closing quote
}

QString escapeForRegedit(const QString& s) {
    QString out;
    out.reserve(s.size() + 8);
    for (const QChar c : s) {
        if (c == u'\\' || c == u'"')
            out += u'\\';
        out += c;
    }
    return out;
}

} // namespace

const RegValue* RegKey::findValue(const QString& name) const {
    for (const RegValue& v : values)
        if (sameName(v.name, name))
            return &v;
    return nullptr;
}

RegValue* RegKey::findValue(const QString& name) {
    for (RegValue& v : values)
        if (sameName(v.name, name))
            return &v;
    return nullptr;
}

void RegKey::setValue(const QString& name, const QString& data) {
    if (RegValue* v = findValue(name))
        v->data = data;
    else
        values.append(RegValue{name, data});
}

bool RegKey::removeValue(const QString& name) {
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (sameName(values[i].name, name)) {
            values.removeAt(i);
            return true;
        }
    }
    return false;
}

const RegKey* RegDocument::findKey(const QString& path) const {
    for (const RegKey& k : keys)
        if (sameName(k.path, path))
            return &k;
    return nullptr;
}

RegKey* RegDocument::findKey(const QString& path) {
    for (RegKey& k : keys)
        if (sameName(k.path, path))
            return &k;
    return nullptr;
}

RegKey& RegDocument::addKey(const QString& path) {
    if (RegKey* k = findKey(path))
        return *k;
    keys.append(RegKey{path, {}});
    return keys.last();
}

std::optional<RegValue> ParseRegValueLine(const QString& line, bool unescape) {
    qsizetype pos = 0;
    RegValue value;
    if (line.startsWith(u'@')) {
        pos = 1;
    } else {
        auto name = readQuoted(line, pos, unescape);
        if (!name)
            return std::nullopt;
        value.name = *name;
    }
    if (pos >= line.size() || line[pos] != u'=')
        return std::nullopt;
    ++pos;
    auto data = readQuoted(line, pos, unescape);
    if (!data || !QStringView(line).mid(pos).trimmed().isEmpty())
        return std::nullopt;
    value.data = *data;
    return value;
}

std::optional<RegDocument> ParseRegedit4(const QByteArray& text) {
    if (text.contains('\0'))
        return std::nullopt;
    const QString all = QString::fromUtf8(text);
    if (all.contains(QChar::ReplacementCharacter))
        return std::nullopt;
    const QStringList lines = all.split(u'\n');
    RegDocument doc;
    RegKey* current = nullptr;
    bool sawHeader = false;
    for (QString line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        const QString trimmed = line.trimmed();
        if (!sawHeader) {
            if (trimmed.isEmpty())
                continue;
            if (trimmed != u"REGEDIT4")
                return std::nullopt;
            sawHeader = true;
            continue;
        }
        if (trimmed.isEmpty() || trimmed.startsWith(u';'))
            continue;
        if (trimmed.startsWith(u'[')) {
            if (!trimmed.endsWith(u']'))
                return std::nullopt;
            current = &doc.addKey(trimmed.mid(1, trimmed.size() - 2));
            continue;
        }
        if (!current)
            return std::nullopt;
        auto value = ParseRegValueLine(line, true);
        if (!value)
            return std::nullopt;
        current->setValue(value->name, value->data);
    }
    if (!sawHeader && !all.trimmed().isEmpty())
        return std::nullopt;
    return doc;
}

RegDocument ParseWineHive(const QByteArray& text) {
    RegDocument doc;
    RegKey* current = nullptr;
    const QString all = QString::fromUtf8(text);
    const QStringList lines = all.split(u'\n');
    for (QString line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.startsWith(u'[')) {
            // [Software\\Cryptic\\Coh] 1700000000
            qsizetype pos = 1;
            QString path;
            bool closed = false;
            while (pos < line.size()) {
                const QChar c = line[pos];
                if (c == u'\\' && pos + 1 < line.size()) {
                    path += line[pos + 1];
                    pos += 2;
                    continue;
                }
                if (c == u']') {
                    closed = true;
                    break;
                }
                path += c;
                ++pos;
            }
            current = closed ? &doc.addKey(path) : nullptr;
            continue;
        }
        if (!current || line.isEmpty() || line.startsWith(u'#') || line.startsWith(u';'))
            continue;
        // Names are always quoted; the data may be a string or a dword.
        qsizetype pos = 0;
        QString name;
        if (line.startsWith(u'@')) {
            pos = 1;
        } else {
            auto quoted = readQuoted(line, pos, true);
            if (!quoted)
                continue;
            name = *quoted;
        }
        if (pos >= line.size() || line[pos] != u'=')
            continue;
        ++pos;
        if (pos < line.size() && line[pos] == u'"') {
            if (auto data = readQuoted(line, pos, true))
                current->setValue(name, *data);
        } else if (QStringView(line).mid(pos).startsWith(u"dword:")) {
            bool ok = false;
            const uint number = QStringView(line).mid(pos + 6).trimmed().toUInt(&ok, 16);
            if (ok)
                current->setValue(name, QString::number(number));
        }
    }
    return doc;
}

QByteArray WriteRegedit4(const RegDocument& doc) {
    QString out = QStringLiteral("REGEDIT4\r\n");
    for (const RegKey& key : doc.keys) {
        out += u"\r\n[" % key.path % u"]\r\n";
        for (const RegValue& v : key.values) {
            if (v.name.isEmpty())
                out += u'@';
            else
                out += u'"' % escapeForRegedit(v.name) % u'"';
            out += u"=\"" % escapeForRegedit(v.data) % u"\"\r\n";
        }
    }
    return out.toUtf8();
}
