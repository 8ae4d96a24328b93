#pragma once

// The two game screens the Screens tab replaces: where each texture goes
// below the game folder, its file and internal name, and the folder it
// names inside the game's texture library.
struct ScreenTarget {
    const char* folder;
    const char* file;
    const char* texPath;
};

inline constexpr ScreenTarget kLoginScreen = {
    "/data/texture_library/GUI/CREATION/HybridUI/LoginScreen/", "COH_LogInScreen_Background",
    "texture_library/GUI/CREATION/HybridUI/LoginScreen/"};
inline constexpr ScreenTarget kCharacterScreen = {
    "/data/texture_library/GUI/CREATION/HybridUI/CharacterCreationUI/", "background",
    "texture_library/GUI/CREATION/HybridUI/CharacterCreationUI/"};

// Screens are written as 1024 x 1024 textures that announce 1024 x 768: the
// picture fills the top rows and its bottom row continues below.
constexpr long kScreenWidth = 1024;
constexpr long kScreenHeight = 768;
constexpr long kScreenTextureSize = 1024;
