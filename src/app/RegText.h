#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>

// The text form of registry keys and values: the REGEDIT4 files that hold
// Kelvaris's own settings, and the "WINE REGISTRY" files in which Wine keeps
// a prefix's keys (user.reg).

struct RegValue {
    QString name; // empty for a key's default value ("@")
    // A string value's text. A value of another type reads as its decimal
    // text when it is a dword and as "" otherwise.
    QString data;
    // For a value of another type than string ("dword:00000780",
    // "hex(2):43,00"), the text after "=" exactly as the file holds it,
    // continuation lines included; empty for a string value.
    QByteArray raw;
};

struct RegKey {
    explicit RegKey(QString keyPath, QByteArray heading = {})
        : path(std::move(keyPath)), rawHeading(std::move(heading)) {}

    QString path; // as written between the brackets, without escapes
    // A heading that could not be read is kept as it stands; such a key is
    // never found by path, but its lines are written back unchanged.
    QByteArray rawHeading;
    QList<RegValue> values;
    // The key's lines that are neither values nor blank (comments, lines
    // that could not be read), kept as they stand and written after the
    // values.
    QList<QByteArray> otherLines;

    const RegValue* findValue(const QString& name) const;
    RegValue* findValue(const QString& name);
    // Stores a string value, replacing a value of any type of that name.
    void setValue(const QString& name, const QString& data);
    // Stores a value of any type, replacing one of that name.
    void putValue(RegValue value);
    bool removeValue(const QString& name);

private:
    QHash<QString, qsizetype> byName_; // case-folded name -> index in values
};

struct RegDocument {
    // Lines between the header and the first key that are not blank, kept
    // as they stand.
    QList<QByteArray> leadingLines;
    QList<RegKey> keys;

    // Key and value names compare without regard to letter case, as the
    // registry does. Finding takes constant time, so reading a file stays
    // linear in its size.
    const RegKey* findKey(const QString& path) const;
    RegKey* findKey(const QString& path);
    RegKey& addKey(const QString& path);
    RegKey& addUnreadableKey(const QByteArray& heading);

private:
    QHash<QString, qsizetype> byPath_; // case-folded path -> index in keys
};

// Parse of a REGEDIT4 text. Nothing is when the text is not one at all (its
// first line that is not blank is not "REGEDIT4"); otherwise every line is
// kept: string values are read, values of other types are kept verbatim,
// and a line that cannot be read is kept as it stands without costing the
// others.
std::optional<RegDocument> ParseRegedit4(const QByteArray& text);

// Lenient parse of a Wine hive: string and dword values are kept (dwords as
// decimal text), every other type and every malformed line is passed over, and
// a truncated file yields what stood before the cut.
RegDocument ParseWineHive(const QByteArray& text);

// REGEDIT4 text with "\\" and "\"" escaped inside strings, CR LF line ends;
// values of other types and unread lines as they were read.
QByteArray WriteRegedit4(const RegDocument& doc);

// One string value line of a REGEDIT4 file, or nothing when the line is not
// one. "\\" and "\"" are undone when `unescape` is set; otherwise the text
// between the outer quotes is taken as it stands.
std::optional<RegValue> ParseRegValueLine(const QString& line, bool unescape);

// Whether a text can be stored and read back unchanged: it holds no line
// break, NUL or other control character.
bool IsStorableText(const QString& text);
