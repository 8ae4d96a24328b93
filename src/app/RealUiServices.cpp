#include "RealUiServices.h"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>

namespace {

QString dialogPath(const FileDialogRequest& request) {
    if (request.startFolder.isEmpty())
        return request.proposedName;
    return QDir(request.startFolder).filePath(request.proposedName);
}

} // namespace

MsgAnswer RealUiServices::Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) {
    QMessageBox box(parent_);
    box.setWindowTitle(QStringLiteral("Kelvaris"));
    box.setText(QString(Text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    switch (Icon) {
    case MsgIcon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    case MsgIcon::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case MsgIcon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case MsgIcon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    }
    if (Buttons == MsgButtons::YesNo) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        return box.exec() == QMessageBox::Yes ? MsgAnswer::Yes : MsgAnswer::No;
    }
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
    return MsgAnswer::Ok;
}

QString RealUiServices::OpenFile(const FileDialogRequest& request) {
    return QFileDialog::getOpenFileName(parent_, QStringLiteral("Kelvaris"), dialogPath(request),
                                        QtFileFilter(request.filter));
}

QString RealUiServices::SaveFile(const FileDialogRequest& request) {
    return QFileDialog::getSaveFileName(parent_, QStringLiteral("Kelvaris"), dialogPath(request),
                                        QtFileFilter(request.filter));
}

bool RealUiServices::StartProgram(const ProgramStart& start) {
    return StartDetached(start);
}
