#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

// The text form of registry keys and string values: the REGEDIT4 files that
// hold Kelvaris's own settings, and the "WINE REGISTRY" files in which Wine
// keeps a prefix's keys (user.reg).

struct RegValue {
    QString name; // empty for a key's default value ("@")
    QString data;
};

struct RegKey {
    QString path; // as written between the brackets, without escapes
    QList<RegValue> values;

    const RegValue* findValue(const QString& name) const;
    RegValue* findValue(const QString& name);
    void setValue(const QString& name, const QString& data);
    bool removeValue(const QString& name);
};

struct RegDocument {
    QList<RegKey> keys;

    // Key and value names compare without regard to letter case, as the
    // registry does.
    const RegKey* findKey(const QString& path) const;
    RegKey* findKey(const QString& path);
    RegKey& addKey(const QString& path);
};

enum class RegDialect {
    Regedit4, // "REGEDIT4", one "[HKEY_...\Key]" a key, escaped strings
    Wine,     // "WINE REGISTRY Version 2", keys relative to the hive, dword values
};

// Strict parse of a REGEDIT4 text: anything that is not a heading, a blank
// line, a comment or a string value makes the whole text unreadable.
std::optional<RegDocument> ParseRegedit4(const QByteArray& text);

// Lenient parse of a Wine hive: string and dword values are kept (dwords as
// decimal text), every other type and every malformed line is passed over, and
// a truncated file yields what stood before the cut.
RegDocument ParseWineHive(const QByteArray& text);

// REGEDIT4 text with "\\" and "\"" escaped inside strings, CR LF line ends.
QByteArray WriteRegedit4(const RegDocument& doc);

// One value line of a REGEDIT4 file, or nothing when the line is not one.
// Escapes are undone when `unescape` is set; otherwise the text between the
// outer quotes is taken as it stands.
std::optional<RegValue> ParseRegValueLine(const QString& line, bool unescape);
