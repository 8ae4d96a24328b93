#include "texture/ScreensTab.h"

#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "image/SharedImages.h"
#include "texture/PreviewBox.h"

#include <QGroupBox>
#include <QScrollBar>

namespace {

using ScreensTabTest = FormFixture;

// The levels are tried on the preview, then applied to the picture, cancelled
// or read from the file again.
TEST_F(ScreensTabTest, LevelsTriedOnThePreviewThenApplied) {
    form->show();
    auto* adjFrame = control<QGroupBox>("adjFrame");
    auto* preview = control<PreviewBox>("scrPreview");
    preview->Clicked(); // no picture: no levels
    EXPECT_FALSE(adjFrame->isVisible());
    choose("scrBrowse", picture("grey.png", FilledImage(1024, 768, 0x0F0F0F)));
    preview->Clicked();
    EXPECT_TRUE(adjFrame->isVisible());
    auto* black = control<QScrollBar>("adjBlack");
    auto* white = control<QScrollBar>("adjWhite");
    white->setValue(20);
    black->setValue(200); // stops one below white
    EXPECT_EQ(black->value(), 19);
    black->setValue(10);
    SharedImages& images = form->Images();
    EXPECT_EQ(images.previewWorking->Row(0)[0], 128); // 15 between 10 and 20

    click("adjCancel");
    EXPECT_FALSE(adjFrame->isVisible());
    EXPECT_EQ(images.screenImage->Row(0)[0], 15);

    preview->Clicked();
    white->setValue(20);
    black->setValue(10);
    click("adjApply");
    EXPECT_EQ(images.screenImage->Row(0)[0], 128);
    EXPECT_EQ(images.previewHL->Row(0)[0], 128);

    preview->Clicked();
    click("adjRevert"); // read from the file again
    EXPECT_EQ(images.screenImage->Row(0)[0], 15);
}

} // namespace
