#include "OnlineSettings.h"

#include "app/Clock.h"
#include "app/NumberText.h"
#include "app/PathUtils.h"
#include "app/modRegistry.h"
#include "texture/Catalogue.h"

#include <QDate>
#include <limits>

namespace {

struct ValueBase {
    OnlineValue value;
    const char* base;
};

constexpr ValueBase kValueBases[] = {
    {OnlineValue::Name, "webName"},     {OnlineValue::Width, "webWidth"},
    {OnlineValue::Height, "webHeight"}, {OnlineValue::Path, "webPath"},
    {OnlineValue::File, "webFile"},     {OnlineValue::Link, "webLink"},
};

int sizeFromText(const QString& text) {
    const double number = LeadingNumber(text);
    if (!(number >= 0 && number <= std::numeric_limits<int>::max()))
        return 0;
    return int(RoundHalfEven(number));
}

} // namespace

QString OnlineValueName(OnlineValue Value, int Slot) {
    for (const ValueBase& entry : kValueBases)
        if (entry.value == Value)
            return QString::fromLatin1(entry.base) + QString::number(Slot);
    return {};
}

void StorePickedTexture(int Slot, const OnlineTextureChoice& Choice) {
    const struct {
        OnlineValue value;
        QString text;
    } stores[] = {
        {OnlineValue::Name, Choice.Name},
        {OnlineValue::Width, QString::number(Choice.Width)},
        {OnlineValue::Height, QString::number(Choice.Height)},
        {OnlineValue::Path, Choice.Path},
        {OnlineValue::File, Choice.File},
    };
    for (const auto& store : stores)
        modRegistry::SetValue(kSettingsKey, OnlineValueName(store.value, Slot), store.text);
}

void StoreClearedSelection(int Slot) {
    for (OnlineValue value : {OnlineValue::Name, OnlineValue::Width, OnlineValue::Height,
                              OnlineValue::Path, OnlineValue::File})
        modRegistry::SetValue(kSettingsKey, OnlineValueName(value, Slot), QString());
}

OnlineSlotTarget ReadSlotTarget(int Slot) {
    const auto read = [Slot](OnlineValue value) {
        return modRegistry::QueryValue(kSettingsKey, OnlineValueName(value, Slot));
    };
    return {read(OnlineValue::Path), read(OnlineValue::File),
            sizeFromText(read(OnlineValue::Width)), sizeFromText(read(OnlineValue::Height))};
}

bool IsContainedTarget(const OnlineSlotTarget& Target) {
    return IsSafeCatalogueEntry(Target.Path, Target.File);
}

bool DailyRefreshDue() {
    if (modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastOnlineUpdate")) ==
        ShortDateText(QDate::currentDate()))
        return false;
    for (int slot = 0; slot < kDownloadSlots; ++slot)
        if (!modRegistry::QueryValue(kSettingsKey, OnlineValueName(OnlineValue::Name, slot))
                 .trimmed()
                 .isEmpty() &&
            !modRegistry::QueryValue(kSettingsKey, OnlineValueName(OnlineValue::Link, slot))
                 .trimmed()
                 .isEmpty())
            return true;
    return false;
}
