#pragma once

#include "LibraryOperations.h"

#include <QGroupBox>
#include <QStringList>
#include <QTimer>

class QLabel;
class QListWidget;
class QPushButton;
class TabHost;

// One half of the randomizer's library as the player sees it: every entry
// as a thumbnail with its name, how many there are, the one the last game
// start picked marked, and removing entries (after asking) or opening the
// folder. Thumbnails are made a few at a time, so a library of a thousand
// pictures never holds up the window.
class LibraryView : public QGroupBox {
    Q_OBJECT
public:
    LibraryView(TabHost& host, LibraryHalf half, QWidget* parent = nullptr);

    // Lists the half's entries again.
    void Refresh();
    // Makes every waiting thumbnail now (tests, and before a screenshot).
    void FinishThumbnails();

    void Remove_Click();
    void Open_Click();

private:
    void makeSomeThumbnails();

    TabHost& host_;
    LibraryHalf half_;
    QListWidget* list_;
    QLabel* count_;
    QPushButton* remove_;
    QPushButton* open_;
    QTimer thumbnails_;
    int nextThumbnail_ = 0;
    QString shownGame_;
};
