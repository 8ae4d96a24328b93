#pragma once

#include <QWidget>

class QLabel;
class UiServices;

// The "Credits" tab: the tool's name and version, the author's mail link and
// the acknowledgements of the components Kelvaris stands on.
class CreditsTab : public QWidget {
    Q_OBJECT
public:
    CreditsTab(UiServices& ui, QWidget* parent = nullptr);

    // Filled at start-up in the interactive mode only.
    void ShowVersionAndAcknowledgements();

    void crdMail_Click();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    UiServices& ui_;
    QLabel* crdVersion_;
    QLabel* crdMail_;
    QLabel* crdText_;
};
