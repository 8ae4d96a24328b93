#pragma once

#include <QString>

// Path routines shared by every part of Kelvaris that reads or writes files.

// The folder part of a file path, without the trailing "/". A bare file name
// gives "", and so does a file directly in "/" (the root is never taken for a
// game folder): "/home/p/CoH/cityofheroes.exe" gives "/home/p/CoH".
QString ReturnPath(const QString& Path);

// Creates every missing folder of Path (one trailing "/" is ignored). Existing
// folders whose names differ only in letter case are reused rather than made
// again, because the game, under Wine, reads names without regard to case.
// Errors are not reported: a caller that needs the folder finds out when it
// writes there.
void MakePath(const QString& Path);

// Path with each leading component that does not exist as written replaced
// by an existing entry of the same name in another letter case, if there is
// one. Components past the first that matches nothing are kept as written.
QString ResolveExistingCase(const QString& Path);

// True when `relative` names something inside the folder it is joined to: not
// empty, not absolute, and no "." or ".." component. Both separators count.
bool IsContainedRelative(const QString& relative);

// True when Path lies inside Root + "/" + Below (or is that folder), both
// made absolute and cleaned of "." and "..". Root must match as written;
// Below's components match without regard to letter case, as the game,
// under Wine, reads them: "/g/Data/Texture_Library/GUI" lies below "/g" and
// "data/texture_library".
bool LiesBelow(const QString& Path, const QString& Root, const QString& Below);

// The folder of the running program, where what ships with it is looked for.
QString ProgramFolder();

// Kelvaris's per-user work folder for temporary files
// ($XDG_CACHE_HOME/kelvaris, else ~/.cache/kelvaris); created when missing.
QString WorkFolder();

// The file name part of a path ("" for a path ending in "/").
QString FileNamePart(const QString& Path);
