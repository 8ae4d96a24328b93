#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;
class TabHost;

// The "Installed" tab: every game file Kelvaris can replace that is there
// now (the screens, catalogue textures, music), each with a thumbnail or its
// size, when it was written and whether Kelvaris kept the file it replaced;
// and a way back for one, several or all, asked first.
class InstalledTab : public QWidget {
    Q_OBJECT
public:
    explicit InstalledTab(TabHost& host, QWidget* parent = nullptr);

    // Lists the files again (done whenever the tab shows).
    void Refresh();
    void insRestore_Click();
    void insRestoreAll_Click();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void restore(const QStringList& paths);

    TabHost& host_;
    QTreeWidget* insFiles_;
    QLabel* insSummary_;
    QPushButton* insRestore_;
    QPushButton* insRestoreAll_;
};
