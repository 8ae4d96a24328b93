#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// Everything Kelvaris asks of the desktop: message boxes, file dialogs and
// starting other programs. The window provides the real ones (QMessageBox,
// QFileDialog, QProcess); tests install a scripted stand-in that records what
// was asked and answers as told. Declared here, free of widgets, so that core
// operations such as the texture writer can report a failure as they meet it.

enum class MsgIcon { None, Exclamation, Critical, Question };
enum class MsgButtons { Ok, YesNo };
enum class MsgAnswer { Ok, Yes, No };

struct FileDialogRequest {
    QString startFolder;  // "" for the dialog's own choice
    QString proposedName; // file name shown at first
    QString filter;       // "Description|*.a;*.b", several pairs joined by "|"
};

struct ProgramStart {
    QString program;
    QStringList arguments;
    QString workingFolder; // "" for the current folder
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

class UiServices {
public:
    virtual ~UiServices() = default;

    // A message box titled "Kelvaris".
    virtual MsgAnswer Message(const QString& Text, MsgIcon Icon,
                              MsgButtons Buttons = MsgButtons::Ok) = 0;

    // The chosen file's full path, or "" when the player cancelled.
    virtual QString OpenFile(const FileDialogRequest& request) = 0;
    virtual QString SaveFile(const FileDialogRequest& request) = 0;

    // Starts a program without waiting for it; false when it could not start.
    virtual bool StartProgram(const ProgramStart& start) = 0;
};

// Starts the program without waiting for it, as StartProgram does for both
// the window and the command line; false when it could not start.
bool StartDetached(const ProgramStart& start);

// "Description|*.a;*.b|Other|*.c" as Qt's "Description (*.a *.b);;Other (*.c)".
QString QtFileFilter(const QString& filter);
