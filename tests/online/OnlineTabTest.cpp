#include "online/OnlineTab.h"

#include "LoopbackServer.h"
#include "app/BusyHost.h"
#include "app/ControlTag.h"
#include "app/Form1.h"
#include "app/PathUtils.h"
#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineSettings.h"
#include "online/TexturesRegFile.h"
#include "texture/CatalogueLoader.h"

#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTcpSocket>

namespace {

// Two categories; the second holds a texture whose size differs from its
// neighbour's, and a third is empty.
const QByteArray kCatalogue = "3\r\n"
                              "\"Signs\",1\r\n"
                              "\"Sign\",128,64,\"texture_library/GUI/Signs\",\"sign\"\r\n"
                              "\"Skies\",2\r\n"
                              "\"Clouds\",512,256,\"texture_library/Sky\",\"clouds\"\r\n"
                              "\"Dawn\",1024,512,\"texture_library/Sky\",\"dawn\"\r\n"
                              "\"Nothing\",0\r\n";

const QColor kRed(255, 0, 0);

QColor textColour(const QWidget* control) {
    return control->palette().color(control->foregroundRole());
}

class OnlineTabTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        writeFile(QStringLiteral("config/kelvaris/kelvaris.csv"), kCatalogue);
        downloads = std::make_unique<OnlineDownloads>(ui, busy);
        downloads->SetPort(server.port());
        downloads->SetTextureApplier(
            [this](const QString& temp, int, int, const QString&, const QString& file) {
                applied << readFile(temp) + ' ' + file.toUtf8();
                return true;
            });
        catalogue = std::make_unique<CatalogueLoader>(ui);
        tab = std::make_unique<OnlineTab>(ui, *downloads, *catalogue);
    }
    void TearDown() override {
        tab.reset();
        downloads.reset();
        TestEnvironment::TearDown();
    }

    template <typename T> T* control(const QString& name) const {
        T* found = tab->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        return found;
    }
    template <typename T> T* control(const char* name, int n) const {
        return control<T>(QString::fromLatin1(name) + u'_' + QString::number(n));
    }
    QPushButton* button(const char* name) const {
        return control<QPushButton>(QString::fromLatin1(name));
    }
    QString downloadCaption() const { return button("webDownload")->text(); }
    bool chooserShown() const {
        return !control<QGroupBox>(QStringLiteral("webTexFrame"))->isHidden() &&
               control<QGroupBox>(QStringLiteral("webFileFrame"))->isHidden();
    }
    static QString value(const QString& name) {
        return modRegistry::QueryValue(kSettingsKey, name);
    }
    // The slot's texture chosen and its address typed, as the player does.
    void bindSlot(int n, const QString& address) {
        control<QLineEdit>("webFile", n)->setText(QStringLiteral("Sign (128x64)"));
        control<QLineEdit>("webURL", n)->setText(address);
        StorePickedTexture(n,
                           {QStringLiteral("Sign (128x64)"), 128, 64,
                            QStringLiteral("texture_library/GUI/Signs"), QStringLiteral("sign")});
    }
    static QString loopback(const char* path) {
        return QStringLiteral("http://127.0.0.1") + QString::fromLatin1(path);
    }

    FakeUi ui;
    HeadlessBusy busy;
    ScriptedServer server;
    std::unique_ptr<OnlineDownloads> downloads;
    std::unique_ptr<CatalogueLoader> catalogue;
    std::unique_ptr<OnlineTab> tab;
    QList<QByteArray> applied;
};

TEST_F(OnlineTabTest, TheSlotListIsShownWithItsCaptions) {
    EXPECT_EQ(control<QGroupBox>(QStringLiteral("webFileFrame"))->title(),
              QStringLiteral("Online Textures"));
    EXPECT_EQ(control<QGroupBox>(QStringLiteral("webTexFrame"))->title(),
              QStringLiteral("Destination"));
    EXPECT_FALSE(chooserShown());
    EXPECT_FALSE(control<QGroupBox>(QStringLiteral("webFileFrame"))->isHidden());
    for (int n = 0; n < kDownloadSlots; ++n) {
        EXPECT_EQ(control<QLabel>("webLabel", n)->text(), QStringLiteral("Image URL:"));
        EXPECT_TRUE(control<QLineEdit>("webFile", n)->isReadOnly());
        EXPECT_FALSE(control<QLineEdit>("webURL", n)->isReadOnly());
        EXPECT_EQ(control<QPushButton>("webPick", n)->text(), QStringLiteral("Pick..."));
    }
    const std::pair<const char*, const char*> captions[] = {
        {"webPickTexture", "Pick This Texture"},
        {"webClear", "Clear Selection"},
        {"webCancel", "Keep Current"},
        {"webRegFile", "Export Online Textures to a file"},
        {"webDownload", "Download and Apply now"},
    };
    for (const auto& [name, caption] : captions)
        EXPECT_EQ(button(name)->text(), QString::fromLatin1(caption)) << name;
    EXPECT_NE(tab->findChild<QLabel*>(), nullptr);
    bool explained = false;
    for (const QLabel* label : tab->findChildren<QLabel*>())
        explained = explained || (label->text().startsWith(QStringLiteral("All the textures in "
                                                                          "this tab will be")) &&
                                  label->wordWrap());
    EXPECT_TRUE(explained);
}

TEST_F(OnlineTabTest, PickListsTheFirstCategoryAndPickThisTextureStoresTheChoice) {
    control<QLineEdit>("webURL", 3)->setText(QStringLiteral("http://keep/me.png"));
    control<QPushButton>("webPick", 3)->click();
    EXPECT_TRUE(chooserShown());
    EXPECT_EQ(Tag(button("webPickTexture")), QStringLiteral("3"));
    auto* categories = control<QComboBox>(QStringLiteral("webCategory"));
    auto* textures = control<QComboBox>(QStringLiteral("webTexture"));
    ASSERT_EQ(categories->count(), 3);
    EXPECT_EQ(categories->currentIndex(), 0);
    EXPECT_EQ(textures->currentText(), QStringLiteral("Sign (128x64)"));

    // Another category rebuilds the texture list; its second texture is taken.
    categories->setCurrentIndex(1);
    ASSERT_EQ(textures->count(), 2);
    EXPECT_EQ(categories->currentIndex(), 1);
    textures->setCurrentIndex(1);
    button("webPickTexture")->click();

    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(control<QLineEdit>("webFile", 3)->text(), QStringLiteral("Dawn (1024x512)"));
    const QString stored = QString::fromUtf8(readFile(storeFile()));
    const QRegularExpression order(
        QStringLiteral("webName3\"=\"Dawn \\(1024x512\\).*webWidth3\"=\"1024.*webHeight3\"=\"512.*"
                       "webPath3\"=\"texture_library/Sky.*webFile3\"=\"dawn"),
        QRegularExpression::DotMatchesEverythingOption);
    EXPECT_TRUE(order.match(stored).hasMatch()) << stored.toStdString();
    EXPECT_EQ(control<QLineEdit>("webURL", 3)->text(), QStringLiteral("http://keep/me.png"));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(OnlineTabTest, PickThisTextureWithNoTextureOnlyClosesTheChooser) {
    bindSlot(1, QStringLiteral("http://a/b.png"));
    control<QPushButton>("webPick", 1)->click();
    control<QComboBox>(QStringLiteral("webCategory"))->setCurrentIndex(2); // empty category
    EXPECT_EQ(control<QComboBox>(QStringLiteral("webTexture"))->count(), 0);
    button("webPickTexture")->click();
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(control<QLineEdit>("webFile", 1)->text(), QStringLiteral("Sign (128x64)"));
    EXPECT_EQ(value(QStringLiteral("webName1")), QStringLiteral("Sign (128x64)"));
    EXPECT_EQ(value(QStringLiteral("webPath1")), QStringLiteral("texture_library/GUI/Signs"));
}

TEST_F(OnlineTabTest, ClearSelectionEmptiesTheSlotButKeepsItsAddress) {
    bindSlot(2, QStringLiteral("http://a/b.png"));
    control<QPushButton>("webPick", 2)->click();
    button("webClear")->click();
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(control<QLineEdit>("webFile", 2)->text(), QString());
    EXPECT_EQ(control<QLineEdit>("webURL", 2)->text(), QStringLiteral("http://a/b.png"));
    for (OnlineValue v : {OnlineValue::Name, OnlineValue::Width, OnlineValue::Height,
                          OnlineValue::Path, OnlineValue::File})
        EXPECT_EQ(value(OnlineValueName(v, 2)), QString());
}

TEST_F(OnlineTabTest, KeepCurrentStoresNothing) {
    bindSlot(0, QStringLiteral("http://a/b.png"));
    const QByteArray before = readFile(storeFile());
    control<QPushButton>("webPick", 0)->click();
    control<QComboBox>(QStringLiteral("webCategory"))->setCurrentIndex(1);
    button("webCancel")->click();
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(readFile(storeFile()), before);
    EXPECT_EQ(control<QLineEdit>("webFile", 0)->text(), QStringLiteral("Sign (128x64)"));
}

TEST_F(OnlineTabTest, SlotsMissingATextureOrAnAddressAreSkippedWithoutAMark) {
    button("webDownload")->click(); // all five empty
    EXPECT_EQ(downloadCaption(), QStringLiteral("Download and Apply now"));

    control<QLineEdit>("webURL", 0)->setText(loopback("/a.png"));      // no texture
    control<QLineEdit>("webFile", 4)->setText(QStringLiteral("Sign")); // no address
    button("webDownload")->click();
    EXPECT_EQ(downloadCaption(), QStringLiteral("Download and Apply now"));
    EXPECT_FALSE(downloads->AnyActive());
    for (int n : {0, 4}) {
        EXPECT_NE(textColour(control<QLineEdit>("webURL", n)), kRed);
        EXPECT_NE(textColour(control<QLabel>("webLabel", n)), kRed);
    }
    WaitUntil([] { return false; }, 50);
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(OnlineTabTest, ARefusedAddressTurnsRedUntilTyping) {
    auto* url = control<QLineEdit>("webURL", 2);
    auto* label = control<QLabel>("webLabel", 2);
    const QColor normalUrl = textColour(url);
    const QColor normalLabel = textColour(label);
    bindSlot(2, QStringLiteral("https://example.invalid/picture.png"));
    button("webDownload")->click();
    EXPECT_EQ(textColour(url), kRed);
    EXPECT_EQ(textColour(label), kRed);
    EXPECT_NE(textColour(control<QLineEdit>("webURL", 1)), kRed);
    EXPECT_EQ(downloadCaption(), QStringLiteral("Download and Apply now"));

    url->setText(QStringLiteral("http://example.invalid/picture.png"));
    EXPECT_EQ(textColour(url), normalUrl);
    EXPECT_EQ(textColour(label), normalLabel);
}

TEST_F(OnlineTabTest, ADownloadRunsUnderAbortAndIsAppliedWhenItEnds) {
    bindSlot(1, loopback("/sign.png"));
    button("webDownload")->click();
    EXPECT_EQ(downloadCaption(), QStringLiteral("Abort Downloads"));
    for (const char* name : {"webFile", "webPick", "webURL"})
        EXPECT_FALSE(control<QWidget>(name, 1)->isEnabled()) << name;
    EXPECT_TRUE(control<QWidget>("webPick", 0)->isEnabled());

    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    EXPECT_TRUE(server.request().startsWith("GET /sign.png HTTP/1.1\r\n"));
    ScriptedServer::send(connection, "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n");
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(1).HeaderDone; }));
    ScriptedServer::send(connection, "picture");
    ScriptedServer::close(connection);
    ASSERT_TRUE(WaitUntil([&] { return !applied.isEmpty(); }));

    EXPECT_EQ(applied, QList<QByteArray>{"picture sign"});
    EXPECT_EQ(downloadCaption(), QStringLiteral("Download and Apply now"));
    for (const char* name : {"webFile", "webPick", "webURL"})
        EXPECT_TRUE(control<QWidget>(name, 1)->isEnabled()) << name;
}

TEST_F(OnlineTabTest, AbortEndsEverySlotAndDeletesTheTemporaryFiles) {
    bindSlot(0, loopback("/a.png"));
    bindSlot(3, loopback("/b.png"));
    button("webDownload")->click();
    ASSERT_EQ(downloadCaption(), QStringLiteral("Abort Downloads"));
    QTcpSocket* first = server.waitForRequest(0);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(server.waitForRequest(1), nullptr);
    const int slot = server.request(0).contains("/a.png") ? 0 : 3;
    ScriptedServer::send(first, "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n");
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(slot).HeaderDone; }));
    ScriptedServer::send(first, "part of a pict");
    const QString temp = WorkFolder() + u'/' + downloads->Slot(slot).TempFile;
    ASSERT_TRUE(QFile::exists(temp));

    button("webDownload")->click();
    EXPECT_EQ(downloadCaption(), QStringLiteral("Download and Apply now"));
    EXPECT_FALSE(downloads->AnyActive());
    EXPECT_FALSE(QFile::exists(temp));
    EXPECT_TRUE(control<QWidget>("webURL", 0)->isEnabled());
    EXPECT_TRUE(control<QWidget>("webURL", 3)->isEnabled());
    WaitUntil([] { return false; }, 50);
    EXPECT_TRUE(applied.isEmpty());
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(OnlineTabTest, ExportWritesTheAddressesAsTyped) {
    bindSlot(4, QStringLiteral("http://saved/x.png"));
    modRegistry::SetValue(kSettingsKey, QStringLiteral("webLink4"),
                          QStringLiteral("http://saved/x.png"));
    control<QLineEdit>("webURL", 4)->setText(QStringLiteral("http://typed/not-saved.png"));
    const QString path = root() + u'/' + kTexturesRegFileName;
    ui.saveAnswers.push_back(path);
    button("webRegFile")->click();

    ASSERT_EQ(ui.saveRequests.size(), 1);
    EXPECT_EQ(ui.saveRequests[0].proposedName, QStringLiteral("Kelvaris Textures.reg"));
    const QList<QByteArray> lines = readFile(path).split('\n');
    EXPECT_EQ(lines.size(), 33); // 32 lines, each ending in CR LF
    EXPECT_EQ(lines[31], "\"webLink4\"=\"http://typed/not-saved.png\"\r");
    EXPECT_EQ(lines[26], "\"webName4\"=\"Sign (128x64)\"\r");
}

// The tab as part of the window: filled at start-up, saved at close.
class OnlineTabInWindowTest : public TestEnvironment {
protected:
    template <typename T> T* control(const char* name, int n) const {
        return form->findChild<T*>(QString::fromLatin1(name) + u'_' + QString::number(n));
    }
    static QString value(const QString& name) {
        return modRegistry::QueryValue(kSettingsKey, name);
    }
    static void store(const QString& name, const QString& text) {
        modRegistry::SetValue(kSettingsKey, name, text);
    }

    FakeUi ui;
    std::unique_ptr<Form1> form;
};

TEST_F(OnlineTabInWindowTest, AnImportRefreshesTheRowsAndSurvivesTheClose) {
    for (int n = 0; n < kDownloadSlots; ++n) {
        StorePickedTexture(n,
                           {QStringLiteral("New %1 (64x64)").arg(n), 64, 64,
                            QStringLiteral("texture_library/GUI"), QStringLiteral("n%1").arg(n)});
        store(OnlineValueName(OnlineValue::Link, n), QStringLiteral("http://new/%1.png").arg(n));
    }
    const QString file = root() + QStringLiteral("/given.reg");
    QStringList links;
    for (int n = 0; n < kDownloadSlots; ++n)
        links << value(OnlineValueName(OnlineValue::Link, n));
    links[2].clear(); // the file gives slot 2 an empty address
    ASSERT_TRUE(ExportOnlineTextures(file, links));
    for (int n = 0; n < kDownloadSlots; ++n) {
        StoreClearedSelection(n);
        store(OnlineValueName(OnlineValue::Link, n), QStringLiteral("http://old/%1.png").arg(n));
    }

    form = std::make_unique<Form1>(ui, QStringList{});
    form->Form_Load();
    auto* tabs = form->findChild<QTabWidget*>(QStringLiteral("SSTab1"));
    ASSERT_NE(tabs, nullptr);
    EXPECT_EQ(tabs->tabText(4), QStringLiteral("Online"));
    EXPECT_NE(qobject_cast<OnlineTab*>(tabs->widget(4)), nullptr);
    EXPECT_EQ(control<QLineEdit>("webURL", 1)->text(), QStringLiteral("http://old/1.png"));
    control<QLineEdit>("webURL", 0)->setText(QStringLiteral("http://typed/0.png"));

    ui.openAnswers.push_back(file);
    form->findChild<QPushButton*>(QStringLiteral("webImport"))->click();
    ASSERT_EQ(ui.messages.size(), 1);
    for (int n = 0; n < kDownloadSlots; ++n)
        EXPECT_EQ(control<QLineEdit>("webFile", n)->text(),
                  QStringLiteral("New %1 (64x64)").arg(n));
    EXPECT_EQ(control<QLineEdit>("webURL", 0)->text(), QStringLiteral("http://new/0.png"));
    EXPECT_EQ(control<QLineEdit>("webURL", 2)->text(), QString());

    form->Unload();
    ASSERT_TRUE(form->IsUnloaded());
    EXPECT_EQ(value(QStringLiteral("webLink0")), QStringLiteral("http://new/0.png"));
    EXPECT_EQ(value(QStringLiteral("webLink4")), QStringLiteral("http://new/4.png"));
    EXPECT_EQ(value(QStringLiteral("webName3")), QStringLiteral("New 3 (64x64)"));
}

TEST_F(OnlineTabInWindowTest, ACancelledImportKeepsTheTypedAddresses) {
    store(QStringLiteral("webLink1"), QStringLiteral("http://old/1.png"));
    form = std::make_unique<Form1>(ui, QStringList{});
    form->Form_Load();
    control<QLineEdit>("webURL", 1)->setText(QStringLiteral("http://typed/1.png"));
    form->findChild<QPushButton*>(QStringLiteral("webImport"))->click(); // cancelled
    EXPECT_EQ(control<QLineEdit>("webURL", 1)->text(), QStringLiteral("http://typed/1.png"));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(OnlineTabInWindowTest, EnteringTheTexturesTabClosesTheChooser) {
    form = std::make_unique<Form1>(ui, QStringList{});
    form->Form_Load();
    auto* tabs = form->findChild<QTabWidget*>(QStringLiteral("SSTab1"));
    tabs->setCurrentIndex(4);
    control<QPushButton>("webPick", 0)->click();
    auto* chooser = form->findChild<QGroupBox*>(QStringLiteral("webTexFrame"));
    auto* slotList = form->findChild<QGroupBox*>(QStringLiteral("webFileFrame"));
    ASSERT_FALSE(chooser->isHidden());
    tabs->setCurrentIndex(3);
    EXPECT_TRUE(chooser->isHidden());
    EXPECT_FALSE(slotList->isHidden());
}

} // namespace
