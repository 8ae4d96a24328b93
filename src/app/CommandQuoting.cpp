#include "CommandQuoting.h"

#include <algorithm>

namespace {

bool isShellSafe(QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           QStringView(u"-_./:=+,@%").contains(c);
}

// The characters a desktop entry's Exec argument may hold only when quoted.
bool isExecReserved(QChar c) {
    return QStringView(u" \t\n\"'\\><~|&;$*?#()`").contains(c);
}

} // namespace

QString ShellQuoted(const QStringList& arguments) {
    QStringList words;
    for (const QString& argument : arguments) {
        if (!argument.isEmpty() && std::all_of(argument.cbegin(), argument.cend(), isShellSafe)) {
            words << argument;
            continue;
        }
        QString quoted = argument;
        quoted.replace(u'\'', QStringLiteral("'\\''"));
        words << u'\'' + quoted + u'\'';
    }
    return words.join(u' ');
}

std::optional<QString> DesktopExecValue(const QStringList& words) {
    QStringList quotedWords;
    for (const QString& word : words) {
        QString quoted;
        bool mustQuote = word.isEmpty();
        for (const QChar c : word) {
            if (c.category() == QChar::Other_Control && c != u'\n' && c != u'\t')
                return std::nullopt;
            mustQuote = mustQuote || isExecReserved(c);
            if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
                quoted += u'\\';
            quoted += c;
        }
        if (!mustQuote)
            quoted = word; // nothing reserved: no escapes were added either
        else
            quoted = u'"' + quoted + u'"';
        quotedWords << quoted.replace(u'%', QStringLiteral("%%"));
    }
    // The key's value is a string of the file: its own escapes come last.
    QString value;
    for (const QChar c : quotedWords.join(u' ')) {
        if (c == u'\\')
            value += QStringLiteral("\\\\");
        else if (c == u'\n')
            value += QStringLiteral("\\n");
        else if (c == u'\t')
            value += QStringLiteral("\\t");
        else
            value += c;
    }
    return value;
}
