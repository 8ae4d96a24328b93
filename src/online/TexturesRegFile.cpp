#include "TexturesRegFile.h"

#include "OnlineSettings.h"
#include "app/FileRecord.h"
#include "app/PathUtils.h"
#include "app/RegText.h"
#include "app/UiServices.h"
#include "app/modRegistry.h"
#include "texture/Catalogue.h"

#include <QFileInfo>
#include <array>
#include <optional>

namespace {

const QString kKeyHeading = QStringLiteral("HKEY_CURRENT_USER\\Software\\CohKelvaris");

// The order of each slot's lines in the file.
constexpr OnlineValue kExportOrder[] = {OnlineValue::Name,  OnlineValue::Path,   OnlineValue::File,
                                        OnlineValue::Width, OnlineValue::Height, OnlineValue::Link};

// A file of the exported form is a few kilobytes; anything far larger is not one.
constexpr qint64 kMaxImportBytes = 256 * 1024;
// The settings store reads a longer value back as "", so none is imported.
constexpr qsizetype kMaxValueLength = 1023;

struct SlotValue {
    OnlineValue value;
    int slot;
};

std::optional<SlotValue> onlineValueNamed(const QString& name) {
    for (OnlineValue value : kExportOrder)
        for (int slot = 0; slot < kDownloadSlots; ++slot)
            if (name.compare(OnlineValueName(value, slot), Qt::CaseInsensitive) == 0)
                return SlotValue{value, slot};
    return std::nullopt;
}

// A value line as the export writes it. A value holding a quote is not
// escaped there, so it runs from the first "=" between quotes to the line's
// last quote.
std::optional<RegValue> parseExportedLine(const QString& line) {
    if (std::optional<RegValue> value = ParseRegValueLine(line, false))
        return value;
    const QString separator = QStringLiteral("\"=\"");
    const qsizetype middle = line.indexOf(separator, 1);
    if (!line.startsWith(u'"') || !line.endsWith(u'"') || middle < 0 ||
        middle + separator.size() > line.size() - 1)
        return std::nullopt;
    const qsizetype dataStart = middle + separator.size();
    return RegValue{line.mid(1, middle - 1), line.mid(dataStart, line.size() - 1 - dataStart), {}};
}

QStringList fileLines(const QByteArray& bytes) {
    QString text = QString::fromUtf8(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    QStringList lines = text.split(u'\n');
    for (QString& line : lines)
        if (line.endsWith(u'\r'))
            line.chop(1);
    return lines;
}

// Why the slot's values cannot be stored, or "" when they can.
QString slotRefusal(int slot, const QList<std::pair<OnlineValue, QString>>& values) {
    for (const auto& [value, data] : values) {
        if (data.size() > kMaxValueLength)
            return QStringLiteral("Online slot %1 was not imported: its value %2 is too long.")
                .arg(slot)
                .arg(OnlineValueName(value, slot));
        if (!IsStorableText(data))
            return QStringLiteral("Online slot %1 was not imported: its value %2 holds a line "
                                  "break or another control character.")
                .arg(slot)
                .arg(OnlineValueName(value, slot));
        const bool outside = (value == OnlineValue::Path && !IsTextureFolder(data)) ||
                             (value == OnlineValue::File && !IsContainedRelative(data));
        if (!data.isEmpty() && outside)
            return QStringLiteral("Online slot %1 was not imported: its texture would lie outside "
                                  "the game's data/texture_library folder.")
                .arg(slot);
    }
    return {};
}

} // namespace

QByteArray TexturesRegText(const QStringList& Links) {
    const QString crLf = QStringLiteral("\r\n");
    QString text = QStringLiteral("REGEDIT4") + crLf + u'[' + kKeyHeading + u']' + crLf;
    for (int slot = 0; slot < kDownloadSlots; ++slot) {
        for (OnlineValue value : kExportOrder) {
            const QString name = OnlineValueName(value, slot);
            const QString data = value == OnlineValue::Link
                                     ? Links.value(slot)
                                     : modRegistry::QueryValue(kSettingsKey, name);
            text += u'"' + name + QStringLiteral("\"=\"") + data + u'"' + crLf;
        }
    }
    return text.toUtf8();
}

bool ExportOnlineTextures(const QString& FileName, const QStringList& Links) {
    return WriteFileAtomically(FileName, TexturesRegText(Links));
}

void AskAndExportOnlineTextures(UiServices& ui, const QStringList& Links) {
    const QString fileName = ui.SaveFile({QString(), kTexturesRegFileName, kTexturesRegFilter});
    if (!fileName.isEmpty())
        ExportOnlineTextures(fileName, Links);
}

TexturesImport ImportOnlineTextures(const QString& FileName) {
    TexturesImport result;
    const QFileInfo info(FileName);
    if (info.exists() && !info.isFile()) {
        result.problems << QStringLiteral("The file is not a regular file. Nothing was imported.");
        return result;
    }
    if (info.size() > kMaxImportBytes) {
        result.problems << QStringLiteral("The file is far too large to hold online textures.");
        return result;
    }
    const std::optional<QByteArray> read = ReadRegularFile(FileName, kMaxImportBytes);
    if (!read) {
        result.problems << QStringLiteral("The file could not be read.");
        return result;
    }
    const QByteArray& bytes = *read;
    const QStringList lines = fileLines(bytes);
    qsizetype first = 0;
    while (first < lines.size() && lines[first].trimmed().isEmpty())
        ++first;
    if (bytes.contains('\0') || QString::fromUtf8(bytes).contains(QChar::ReplacementCharacter) ||
        first == lines.size() || lines[first].trimmed() != u"REGEDIT4") {
        result.problems << QStringLiteral("The file is not a registry file: its first line is not "
                                          "REGEDIT4. Nothing was imported.");
        return result;
    }

    std::array<QList<std::pair<OnlineValue, QString>>, kDownloadSlots> slotValues;
    int unreadable = 0;
    int foreign = 0;
    int unstored = 0;
    bool inKey = false;
    for (qsizetype i = first + 1; i < lines.size(); ++i) {
        const QString& line = lines[i];
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(u';'))
            continue;
        if (trimmed.startsWith(u'[')) {
            inKey =
                trimmed.endsWith(u']') &&
                trimmed.mid(1, trimmed.size() - 2).compare(kKeyHeading, Qt::CaseInsensitive) == 0;
            continue;
        }
        const std::optional<RegValue> value = parseExportedLine(line);
        if (!value) {
            ++unreadable;
            continue;
        }
        const std::optional<SlotValue> which = onlineValueNamed(value->name);
        if (!inKey || !which) {
            ++foreign;
            continue;
        }
        slotValues[size_t(which->slot)].append({which->value, value->data});
    }

    for (int slot = 0; slot < kDownloadSlots; ++slot) {
        const auto& values = slotValues[size_t(slot)];
        const QString refusal = slotRefusal(slot, values);
        if (!refusal.isEmpty()) {
            result.problems << refusal;
            continue;
        }
        for (const auto& [value, data] : values) {
            if (!modRegistry::SetValue(kSettingsKey, OnlineValueName(value, slot), data) &&
                !data.trimmed().isEmpty()) {
                ++unstored;
                continue;
            }
            ++result.merged;
        }
    }
    if (unstored > 0)
        result.problems << QStringLiteral("%1 value(s) could not be written to the settings "
                                          "(is the disk full?); the import failed for them.")
                               .arg(unstored);
    if (unreadable > 0)
        result.problems << QStringLiteral("%1 line(s) of the file are not registry values and "
                                          "were skipped.")
                               .arg(unreadable);
    if (foreign > 0)
        result.problems << QStringLiteral("%1 value(s) that are not online texture settings were "
                                          "skipped.")
                               .arg(foreign);
    return result;
}

QString TexturesImport::Message() const {
    QStringList lines;
    lines << (merged > 0 ? QStringLiteral("%1 online texture setting(s) were imported.").arg(merged)
                         : QStringLiteral("No online texture settings were imported."));
    lines << problems;
    return lines.join(u'\n');
}

void AskAndImportOnlineTextures(UiServices& ui) {
    const QString fileName = ui.OpenFile({QString(), kTexturesRegFileName, kTexturesRegFilter});
    if (fileName.isEmpty())
        return;
    const TexturesImport result = ImportOnlineTextures(fileName);
    ui.Message(result.Message(), result.problems.isEmpty() ? MsgIcon::None : MsgIcon::Exclamation);
}
