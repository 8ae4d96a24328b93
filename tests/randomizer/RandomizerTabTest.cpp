#include "randomizer/RandomizerTab.h"

#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "randomizer/LibraryView.h"

#include <QListWidget>

namespace {

using RandomizerTabTest = FormFixture;

TEST_F(RandomizerTabTest, TheLibraryIsShownAsPicturesAndEntriesCanBeRemoved) {
    choose("rndBrowse", picture("pics/one.png", FilledImage(64, 48, qRgb(200, 40, 40))));
    click("rndSaveHL");
    choose("rndBrowse", picture("pics/two.png", FilledImage(64, 48, qRgb(10, 200, 10))));
    click("rndSaveHL");
    storeSetting(QStringLiteral("RandomHL"), QStringLiteral("two.png.dds"));
    auto* view = form->findChildren<LibraryView*>().first();
    view->Refresh();
    view->FinishThumbnails();
    auto* list = control<QListWidget>("rndLibraryHL");
    ASSERT_EQ(list->count(), 2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(list->item(i)->icon().isNull()) << i;
        // The last game start's pick is marked.
        EXPECT_EQ(list->item(i)->font().bold(), list->item(i)->text() == u"two.png.dds");
    }

    // Removing asks first; "No" keeps the entry.
    list->item(0)->setSelected(true);
    const QString kept = list->item(1)->text();
    const auto library = [this] {
        return QDir(game + "/Kelvaris/RandomHL").entryList(QDir::Files);
    };
    click("rndRemoveHL");
    EXPECT_EQ(library().size(), 2);
    ui.answers.push_back(MsgAnswer::Yes);
    click("rndRemoveHL");
    EXPECT_EQ(library(), QStringList{kept});
    EXPECT_EQ(list->count(), 1);
}

} // namespace
