#pragma once

#include <QMap>
#include <QString>
#include <Qt>

// Copies Source to Target in blocks of 16384 bytes. The copy is written under
// a temporary name beside the target and renamed into place when complete,
// so a failed copy (a full disk) never leaves a half-written game file: the
// old file stays. False when the source is not a regular file or cannot be
// read, or the target cannot be written whole.
bool CopySoundFile(const QString& Source, const QString& Target);

// The state of each Music tab check box, by objectName: unticked, ticked, or
// grayed (PartiallyChecked) once all of its files were written.
using MusicBoxStates = QMap<QString, Qt::CheckState>;

// Copies Source under every game file of each ticked box, making the folders
// as the target table says, and grays each box whose files were all written.
// A box whose copy failed stays ticked; there is no message. Nothing at all is
// written, and false returned, when GameFolder is not an existing folder.
bool WriteMusicTargets(const QString& Source, const QString& GameFolder, MusicBoxStates& boxes);
