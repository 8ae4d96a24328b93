#include "online/OnlineDownloads.h"

#include "LoopbackServer.h"
#include "app/BusyHost.h"
#include "app/PathUtils.h"
#include "common/CaseName.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "online/DownloadUrl.h"
#include "online/OnlineSettings.h"
#include "online/modSockets.h"

#include <QDir>

namespace {

using Start = OnlineDownloads::StartResult;

// Five slots with a texture chosen, a scripted loopback server and a stand-in
// writer recording "<temporary file> <its bytes> <size> <path>/<file>".
class DownloadsTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        for (int n = 0; n < kDownloadSlots; ++n)
            StorePickedTexture(n, {"Tex (256x128)", 256, 128, "texture_library/GUI/Online",
                                   QStringLiteral("tex%1").arg(n)});
        downloads = std::make_unique<OnlineDownloads>(ui, busy);
        downloads->SetPort(server.port());
        downloads->SetTextureApplier([this](const QString& temp, int w, int h, const QString& path,
                                            const QString& file) {
            applied << temp.section(u'/', -1).toUtf8() + ' ' + readFile(temp) +
                           QStringLiteral(" %1x%2 %3/%4").arg(w).arg(h).arg(path, file).toUtf8();
            return applierResult;
        });
        const auto count = [this](auto signal, int& n) {
            QObject::connect(downloads.get(), signal, downloads.get(), [&n] { ++n; });
        };
        count(&OnlineDownloads::UrlRefused, refused);
        count(&OnlineDownloads::Finished, finished);
        count(&OnlineDownloads::DataArrived, dataEvents);
    }
    void TearDown() override {
        downloads.reset();
        TestEnvironment::TearDown();
    }
    Start start(int slot, const QString& path = "/p.png") {
        return downloads->StartDownload(slot, "Tex", "http://127.0.0.1" + path);
    }
    bool answer(int slot, int connection, const QByteArray& body, const QByteArray& type = "png") {
        return server.answer(connection, type, body,
                             [this, slot] { return downloads->Slot(slot).HeaderDone; });
    }
    bool noTempFiles() const { return QDir(WorkFolder()).entryList({"kelvaris.tmp*"}).isEmpty(); }

    FakeUi ui;
    HeadlessBusy busy;
    ScriptedServer server;
    std::unique_ptr<OnlineDownloads> downloads;
    QList<QByteArray> applied;
    bool applierResult = true;
    int refused = 0;
    int finished = 0;
    int dataEvents = 0;
};

// What the server sends, piece by piece; kH and kD wait until the client has
// read the header, or the data so far. Then it closes, resets or stalls.
const QByteArray kH = "<header read>";
const QByteArray kD = "<data read>";
const QByteArray kOk = "HTTP/1.1 200 OK\r\n";
const QByteArray kType = "Content-Type: image/png\r\n\r\n";
const QByteArray kPng = kOk + kType;
const QByteArray kChunked = kOk + "Transfer-Encoding: chunked\r\n";
const QByteArray kRedirect = "HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1/b.png\r\n";
enum class End { Close, Reset, Stall };
using enum End;

struct ResponseCase {
    const char* name;
    End end;
    const char* applied; // "<type> <bytes>" of the file applied; nullptr: refused
    QList<QByteArray> pieces;
};
void PrintTo(const ResponseCase& c, std::ostream* os) {
    *os << c.name;
}

// The header limit is the usual 64 KB, the body limit 4 KB.
const ResponseCase kResponses[] = {
    // Lines after the empty line that came in the same read are dropped, and
    // the tail after the last CR LF waits for a read that never comes.
    {"OneRead", Close, "png ", {kPng + "line1\r\nline2\r\ntail"}},
    {"SeparateReads", Close, "png a\r\nb", {kPng, kH, "a\r\nb"}},
    // A second end of header among them opens the file again under its new
    // type; the first file is not left behind.
    {"SecondHeaderInOneRead", Close, "gif ", {kPng + "Content-Type: image/gif\r\n\r\n"}},
    {"SplitCrLf",
     Close,
     "gif G",
     {kOk + "Content-Type: image/gif\r", kD, "\n\r", kD, "\n", kH, "G"}},
    {"LastTypeInAnyCase",
     Close,
     "jpeg J",
     {kOk + "Content-Type: text/html\r\ncontent-TYPE:  Image/JPEG \r\n\r\n", kH, "J"}},
    {"Chunked", Close, "png 1\r\nx\r\n0\r\n\r\n", {kChunked + kType, kH, "1\r\nx\r\n0\r\n\r\n"}},
    {"ResetInTheBody", Reset, "png abc", {kPng, kH, "abc", kD}},
    {"Redirect", Close, nullptr, {kRedirect + "Content-Type: text/html\r\n\r\nmoved"}},
    {"HeaderWithNoEnd",
     Close,
     nullptr,
     {kOk + QByteArray("X-Padding: abcdefgh\r\n").repeated(4000)}},
    {"BodyPastTheLimit", Close, nullptr, {kPng, kH, QByteArray(5000, 'b')}},
    {"StallUntilAborted", Stall, nullptr, {kPng, kH, "part", kD}},
};

class ResponseTest : public DownloadsTest, public ::testing::WithParamInterface<ResponseCase> {};

TEST_P(ResponseTest, AppliesOnlyAcceptedPicturesAndLeavesNoTemporaryFile) {
    const ResponseCase& c = GetParam();
    downloads->SetLimits(64 * 1024, 4096);
    ASSERT_EQ(start(0), Start::Started);
    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    const DownloadSlot& slot = downloads->Slot(0);
    int events = 0;
    for (const QByteArray& piece : c.pieces) {
        if (piece == kD)
            ASSERT_TRUE(WaitUntil([&] { return dataEvents > events; }));
        else if (piece == kH)
            ASSERT_TRUE(WaitUntil([&] { return slot.HeaderDone || !slot.Active; }));
        else
            ScriptedServer::send(connection, piece);
        events = dataEvents;
    }
    if (c.end == Stall) {
        EXPECT_FALSE(noTempFiles());
        downloads->AbortDownloads();
        WaitUntil([] { return false; }, 100); // time for a late apply that must not come
    } else {
        if (c.end == Reset)
            ScriptedServer::reset(connection);
        else
            connection->disconnectFromHost();
        ASSERT_TRUE(WaitUntil([&] { return !downloads->AnyActive(); }));
    }
    const QByteArray record =
        "kelvaris.tmp0." + QByteArray(c.applied) + " 256x128 texture_library/GUI/Online/tex0";
    EXPECT_EQ(applied, c.applied ? QList<QByteArray>{record} : QList<QByteArray>());
    EXPECT_EQ(server.connectionCount(), 1);
    EXPECT_EQ(refused, !c.applied && c.end != Stall ? 1 : 0);
    EXPECT_EQ(finished, c.applied ? 1 : 0);
    EXPECT_FALSE(downloads->AnyActive());
    EXPECT_TRUE(noTempFiles());
}

INSTANTIATE_TEST_SUITE_P(Responses, ResponseTest, ::testing::ValuesIn(kResponses),
                         CaseName<ResponseCase>);

// The request goes out once, as typed.
TEST_F(DownloadsTest, AppliesOnlyOnceTheLastSlotHasFinished) {
    ASSERT_EQ(start(1, "/a b/Pic.PNG?x=1&y=%20"), Start::Started);
    ASSERT_NE(server.waitForRequest(0), nullptr);
    EXPECT_EQ(server.request(), QByteArray("GET /a b/Pic.PNG?x=1&y=%20 HTTP/1.1\r\n"
                                           "Host: 127.0.0.1\r\nConnection: close\r\n\r\n"));
    ASSERT_EQ(start(3, "/q.gif"), Start::Started);
    ASSERT_TRUE(answer(1, 0, "one"));
    ASSERT_TRUE(WaitUntil([&] { return !downloads->Slot(1).Active; }));
    EXPECT_TRUE(applied.isEmpty()); // slot 3 is still downloading
    EXPECT_FALSE(noTempFiles());

    ASSERT_TRUE(answer(3, 1, "three", "gif"));
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }));
    EXPECT_EQ(applied, QList<QByteArray>(
                           {"kelvaris.tmp1.png one 256x128 texture_library/GUI/Online/tex1",
                            "kelvaris.tmp3.gif three 256x128 texture_library/GUI/Online/tex3"}));
    EXPECT_TRUE(noTempFiles());
    EXPECT_EQ(setting("LastOnlineUpdate"), QString());
}

// A texture the writer refuses, and a slot whose stored folder leaves the
// game's data folder (it never reaches the writer): both are reported.
TEST_F(DownloadsTest, FailedWritesAreReportedAndTheFilesDeleted) {
    applierResult = false;
    storeSetting("webPath1", "../../etc");
    ASSERT_EQ(start(0), Start::Started);
    ASSERT_TRUE(answer(0, 0, "data"));
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }));
    ASSERT_EQ(start(1), Start::Started);
    ASSERT_TRUE(answer(1, 1, "data"));
    ASSERT_TRUE(WaitUntil([&] { return finished == 2; }));
    EXPECT_EQ(applied.size(), 1);
    ASSERT_EQ(ui.messages.size(), 2);
    EXPECT_EQ(ui.messages[0].text, "Error writing image. Please check file permissions.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_TRUE(ui.messages[1].text.contains("online slot 1"));
    EXPECT_TRUE(noTempFiles());
}

// An address as typed, its host and path as split (host nullptr: refused),
// and whether that host is a name worth looking up.
TEST(DownloadUrl, KeepsHostAndPathAsTypedAndLooksUpOnlyPlausibleNames) {
    const struct {
        const char *url, *host, *path;
        bool lookedUp;
    } cases[] = {{"HtTp://host:8080/a/b.png?x=1#f", "host:8080", "/a/b.png?x=1#f", false},
                 {"http://::1/a", "::1", "/a", true},
                 {"http://a b/c", "a b", "/c", false},
                 {"http://host", nullptr, nullptr, false},
                 {"https://host/a.png", nullptr, nullptr, false},
                 {" http://host/a.png", nullptr, nullptr, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.url);
        const std::optional<DownloadTarget> target = SplitDownloadUrl(QString::fromUtf8(c.url));
        ASSERT_EQ(target.has_value(), c.host != nullptr);
        if (target) {
            EXPECT_EQ(target->Host, QString::fromUtf8(c.host));
            EXPECT_EQ(target->Path, QString::fromUtf8(c.path));
            EXPECT_EQ(modSockets::IsPlausibleHostName(target->Host), c.lookedUp);
        }
    }
}

} // namespace
