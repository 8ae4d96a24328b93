#pragma once

#include <QString>

// The settings of the five online slots: value names, the texture chosen for
// a slot and where its texture file is written.

constexpr int kDownloadSlots = 5;

// The values kept for each slot; each name is the base name followed by the
// slot digit ("webPath3").
enum class OnlineValue { Name, Width, Height, Path, File, Link };

// "webName", "webWidth", "webHeight", "webPath", "webFile" or "webLink", then
// the slot digit.
QString OnlineValueName(OnlineValue Value, int Slot);

// The destination texture of a slot as the texture chooser lists it.
struct OnlineTextureChoice {
    QString Name;  // the listed text: name, " (", width, "x", height, ")"
    int Width = 0; // texture size in pixels
    int Height = 0;
    QString Path; // folder under the game's "data" folder, "/" separated
    QString File; // file name without ".texture"
};

// "Pick This Texture": stores webName, webWidth, webHeight, webPath and
// webFile of the slot, in that order.
void StorePickedTexture(int Slot, const OnlineTextureChoice& Choice);

// "Clear Selection": stores empty texts in the same five values, in the same
// order; the slot's link is left alone.
void StoreClearedSelection(int Slot);

// What a finished download of the slot is written as, read from the settings.
// Width and height are the leading numbers of their texts, 0 when not numeric
// or out of range.
struct OnlineSlotTarget {
    QString Path;
    QString File;
    int Width = 0;
    int Height = 0;
};
OnlineSlotTarget ReadSlotTarget(int Slot);

// True when the target's folder lies below the game's data/texture_library
// and its file name is a plain name (no "..", no absolute path, neither
// empty, no control character).
bool IsContainedTarget(const OnlineSlotTarget& Target);

// Whether the randomizer start has online textures to refresh: not yet done
// today, and some slot has both a texture and an address. When it has none,
// the start ends as soon as the chat client is on its way.
bool DailyRefreshDue();
