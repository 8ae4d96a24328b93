#pragma once

#include "UiServices.h"

class QWidget;

// The desktop's own message boxes, file dialogs and program starts.
class RealUiServices : public UiServices {
public:
    void SetParentWindow(QWidget* parent) { parent_ = parent; }

    MsgAnswer Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) override;
    QString OpenFile(const FileDialogRequest& request) override;
    QString SaveFile(const FileDialogRequest& request) override;
    bool StartProgram(const ProgramStart& start) override;

private:
    QWidget* parent_ = nullptr;
};
