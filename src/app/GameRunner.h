#pragma once

#include <QString>
#include <QStringList>

// How a Windows program is started in the prefix of one installation of the
// game: directly with a Wine build, or through Bottles' own command line for
// a bottle that is reached that way.
struct GameRunner {
    enum class Kind {
        // `program` is a Wine executable (a full path) or "wine" for the one
        // on PATH; the prefix goes in WINEPREFIX.
        Wine,
        // `program` plus `programArguments` reach bottles-cli ("bottles-cli",
        // or "flatpak" with "run --command=bottles-cli ..."); `bottle` names
        // the bottle, and Bottles picks the prefix and the Wine build itself.
        Bottles,
    };
    Kind kind = Kind::Wine;
    QString program = QStringLiteral("wine");
    QStringList programArguments;
    QString bottle;

    bool operator==(const GameRunner&) const = default;
};

// The Wine on PATH.
inline GameRunner SystemWine() {
    return {};
}
