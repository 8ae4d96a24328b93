#include "DownloadsFixture.h"
#include "app/Clock.h"
#include "app/PathUtils.h"
#include "app/modRegistry.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <vector>

namespace {

using Start = OnlineDownloads::StartResult;

// How far the client must have got before the server sends the next piece,
// so that pieces arrive as separate reads.
enum class Wait { None, Data, Header };
struct Piece {
    QByteArray bytes;
    Wait wait;
};
struct ResponseCase {
    const char* name;
    std::vector<Piece> pieces;
    bool reset;           // the server resets the connection instead of closing it
    bool red;             // the slot's address is marked refused
    const char* tempName; // the temporary file applied, or nullptr
    QByteArray content;   // what that file held when it was applied
};
void PrintTo(const ResponseCase& c, std::ostream* os) {
    *os << c.name;
}

const QByteArray kPngHeader = "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n";

QByteArray garbage(qsizetype size) {
    QByteArray bytes(size, '\0');
    QRandomGenerator random(7);
    for (char& c : bytes)
        c = char(random.bounded(256));
    return bytes;
}

QByteArray manyHeaderLines(qsizetype totalBytes) {
    QByteArray lines = "HTTP/1.1 200 OK\r\n";
    while (lines.size() < totalBytes)
        lines += "X-Padding: abcdefgh\r\n";
    return lines;
}

std::vector<ResponseCase> responseCases() {
    return {
        // Lines after the empty line that came in the same read are dropped,
        // and the tail after the last CR LF waits for a read that never comes.
        {"OneRead",
         {{kPngHeader + "line1\r\nline2\r\ntail", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.png",
         ""},
        {"SeparateReads",
         {{kPngHeader, Wait::Header}, {"a\r\nb", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.png",
         "a\r\nb"},
        {"SplitCrLf",
         {{"HTTP/1.1 200 OK\r\nContent-Type: image/gif\r", Wait::Data},
          {"\n\r", Wait::Data},
          {"\n", Wait::Header},
          {"GIF89a", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.gif",
         "GIF89a"},
        {"NotFoundServedAsPng",
         {{"HTTP/1.1 404 Not Found\r\nContent-Type: image/png\r\n\r\n", Wait::Header},
          {"<html>gone</html>", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.png",
         "<html>gone</html>"},
        {"HeaderNameInAnyCase",
         {{"HTTP/1.1 200 OK\r\ncontent-TYPE:   Image/JPEG  \r\n\r\n", Wait::Header},
          {"\xff\xd8", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.jpeg",
         "\xff\xd8"},
        {"LastContentTypeCounts",
         {{"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Type: image/png\r\n\r\n",
           Wait::Header},
          {"x", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.png",
         "x"},
        {"ChunkedFramingReachesTheFile",
         {{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Type: image/png\r\n\r\n",
           Wait::Header},
          {"5\r\nhello\r\n0\r\n\r\n", Wait::None}},
         false,
         false,
         "kelvaris.tmp0.png",
         "5\r\nhello\r\n0\r\n\r\n"},
        {"RedirectIsRefused",
         {{"HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1/b.png\r\nContent-Type: "
           "text/html\r\n\r\nmoved",
           Wait::None}},
         false,
         true,
         nullptr,
         ""},
        {"CharsetParameterIsRefused",
         {{"HTTP/1.1 200 OK\r\nContent-Type: image/png; charset=binary\r\n\r\n", Wait::None}},
         false,
         true,
         nullptr,
         ""},
        {"NoContentTypeIsRefused",
         {{"HTTP/1.1 200 OK\r\n\r\n", Wait::None}},
         false,
         true,
         nullptr,
         ""},
        {"MegabyteHeaderLine",
         {{"HTTP/1.1 200 OK\r\nX-Long: " + QByteArray(1 << 20, 'x') + "\r\n", Wait::None}},
         false,
         true,
         nullptr,
         ""},
        {"HeaderWithNoEnd", {{manyHeaderLines(70 * 1024), Wait::None}}, false, true, nullptr, ""},
        {"BinaryGarbage", {{garbage(300 * 1024), Wait::None}}, false, true, nullptr, ""},
        {"ResetDuringTheBody",
         {{kPngHeader, Wait::Header}, {"abc", Wait::Data}},
         true,
         false,
         "kelvaris.tmp0.png",
         "abc"},
    };
}

class ResponseTest : public DownloadsFixture, public ::testing::WithParamInterface<ResponseCase> {};

TEST_P(ResponseTest, SavesOnlyAcceptedPictures) {
    const ResponseCase& c = GetParam();
    ASSERT_EQ(start(0), Start::Started);
    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    const DownloadSlot& slot = downloads->Slot(0);
    for (const Piece& piece : c.pieces) {
        const int before = dataEvents;
        ScriptedServer::send(connection, piece.bytes);
        if (piece.wait == Wait::Data) {
            ASSERT_TRUE(WaitUntil([&] { return dataEvents > before; }));
        } else if (piece.wait == Wait::Header) {
            ASSERT_TRUE(WaitUntil([&] { return slot.HeaderDone || !slot.Active; }));
        }
    }
    if (c.reset)
        ScriptedServer::reset(connection);
    else
        ScriptedServer::close(connection);
    ASSERT_TRUE(WaitUntil([&] { return !downloads->AnyActive(); }));

    EXPECT_EQ(red.contains(0), c.red);
    if (c.tempName) {
        ASSERT_EQ(applied.size(), 1);
        EXPECT_EQ(applied[0].fileName, QString::fromLatin1(c.tempName));
        EXPECT_EQ(applied[0].bytes, c.content);
        EXPECT_EQ(finished, 1);
    } else {
        EXPECT_TRUE(applied.isEmpty());
    }
    EXPECT_TRUE(slot.TempFile.isEmpty());
    EXPECT_TRUE(QDir(WorkFolder()).entryList({QStringLiteral("kelvaris.tmp*")}).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Responses, ResponseTest, ::testing::ValuesIn(responseCases()),
                         [](const auto& info) { return std::string(info.param.name); });

struct UrlCase {
    const char* name;
    const char* file;
    const char* url;
    Start result;
};
void PrintTo(const UrlCase& c, std::ostream* os) {
    *os << c.name;
}

class StartTest : public DownloadsFixture, public ::testing::WithParamInterface<UrlCase> {};

// Which addresses start is DownloadUrlTest's matter; here: the marks, the
// controls' state and a started slot that has nothing to connect to.
TEST_P(StartTest, StartsOnlyWithATextureAndAPlainHttpAddress) {
    const UrlCase& c = GetParam();
    QList<bool> activeChanges;
    QObject::connect(downloads.get(), &OnlineDownloads::SlotActiveChanged, downloads.get(),
                     [&](int, bool active) { activeChanges << active; });
    const QString address =
        QString::fromLatin1(c.url).replace(QStringLiteral("PORT"), QString::number(server.port()));
    EXPECT_EQ(downloads->StartDownload(2, QString::fromLatin1(c.file), address), c.result);
    EXPECT_EQ(red.contains(2), c.result == Start::Refused);
    WaitUntil([] { return false; }, 200); // time for a connection that must not come
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_EQ(downloads->Slot(2).Active, c.result == Start::Started);
    EXPECT_EQ(downloads->Slot(2).Socket, nullptr);
    downloads->EndDownload(2); // the only way out for a slot with no socket
    EXPECT_FALSE(downloads->AnyActive());
    EXPECT_EQ(activeChanges,
              c.result == Start::Started ? QList<bool>({true, false}) : QList<bool>());
}

INSTANTIATE_TEST_SUITE_P(
    Urls, StartTest,
    ::testing::Values(UrlCase{"NoTexture", "", "http://127.0.0.1/a.png", Start::Skipped},
                      UrlCase{"NoAddress", "Tex", "", Start::Skipped},
                      UrlCase{"Secure", "Tex", "https://127.0.0.1/a.png", Start::Refused},
                      UrlCase{"NoPath", "Tex", "http://127.0.0.1", Start::Refused},
                      // The port stays part of the host, which then never resolves.
                      UrlCase{"PortInHost", "Tex", "http://127.0.0.1:PORT/a.png", Start::Started},
                      UrlCase{"UnresolvableName", "Tex", "http://no such host/a", Start::Started}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(DownloadsFixture, SendsTheRequestOnceAsTyped) {
    ASSERT_EQ(start(1, QStringLiteral("/a b/Pic.PNG?x=1&y=%20")), Start::Started);
    ASSERT_NE(server.waitForRequest(), nullptr);
    EXPECT_EQ(server.request(), QByteArray("GET /a b/Pic.PNG?x=1&y=%20 HTTP/1.1\r\n"
                                           "Host: 127.0.0.1\r\n"
                                           "Connection: close\r\n\r\n"));
}

TEST_F(DownloadsFixture, AppliesOnlyOnceTheLastSlotHasFinished) {
    ASSERT_EQ(start(1), Start::Started);
    QTcpSocket* first = server.waitForRequest(0);
    ASSERT_EQ(start(3, QStringLiteral("/q.gif")), Start::Started);
    QTcpSocket* second = server.waitForRequest(1);
    ASSERT_TRUE(first && second);
    const bool firstIsSlot1 = server.request(0).startsWith("GET /p.png");
    QTcpSocket* slot1 = firstIsSlot1 ? first : second;
    QTcpSocket* slot3 = firstIsSlot1 ? second : first;

    ScriptedServer::send(slot1, kPngHeader);
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(1).HeaderDone; }));
    ScriptedServer::send(slot1, "one");
    ScriptedServer::close(slot1);
    ASSERT_TRUE(WaitUntil([&] { return !downloads->Slot(1).Active; }));
    EXPECT_TRUE(applied.isEmpty()); // slot 3 is still downloading
    EXPECT_TRUE(QFile::exists(tempPath(QStringLiteral("kelvaris.tmp1.png"))));

    ScriptedServer::send(slot3, "HTTP/1.1 200 OK\r\nContent-Type: image/gif\r\n\r\n");
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(3).HeaderDone; }));
    ScriptedServer::send(slot3, "three");
    ScriptedServer::close(slot3);
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }));

    ASSERT_EQ(applied.size(), 2);
    EXPECT_EQ(applied[0].fileName, QStringLiteral("kelvaris.tmp1.png"));
    EXPECT_EQ(applied[0].bytes, QByteArray("one"));
    EXPECT_EQ(applied[0].width, 256);
    EXPECT_EQ(applied[0].height, 128);
    EXPECT_EQ(applied[0].path, QStringLiteral("texture_library/GUI/Online"));
    EXPECT_EQ(applied[0].file, QStringLiteral("tex1"));
    EXPECT_EQ(applied[1].fileName, QStringLiteral("kelvaris.tmp3.gif"));
    EXPECT_EQ(applied[1].bytes, QByteArray("three"));
    EXPECT_FALSE(QFile::exists(tempPath(QStringLiteral("kelvaris.tmp1.png"))));
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastOnlineUpdate")), QString());
}

TEST_F(DownloadsFixture, AbortEndsEverySlotAndDeletesTheTemporaryFiles) {
    ASSERT_EQ(start(0), Start::Started);
    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    ASSERT_EQ(start(4), Start::Started); // a server that never answers this one
    ASSERT_NE(server.waitForRequest(1), nullptr);
    ScriptedServer::send(connection, kPngHeader);
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(0).HeaderDone; }));
    ScriptedServer::send(connection, "partial");
    const QString temp = tempPath(QStringLiteral("kelvaris.tmp0.png"));
    ASSERT_TRUE(QFile::exists(temp));

    downloads->AbortDownloads();
    EXPECT_FALSE(downloads->AnyActive());
    EXPECT_FALSE(QFile::exists(temp));
    EXPECT_TRUE(downloads->Slot(0).TempFile.isEmpty());
    WaitUntil([] { return false; }, 100);
    EXPECT_TRUE(applied.isEmpty());
    EXPECT_EQ(finished, 0);
}

TEST_F(DownloadsFixture, BodyPastTheLimitIsRefusedAndDeleted) {
    downloads->SetLimits(1024, 4096);
    ASSERT_EQ(start(0), Start::Started);
    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    ScriptedServer::send(connection, kPngHeader);
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(0).HeaderDone; }));
    ScriptedServer::send(connection, QByteArray(10000, 'b'));
    ASSERT_TRUE(WaitUntil([&] { return !downloads->AnyActive(); }));
    EXPECT_TRUE(red.contains(0));
    EXPECT_TRUE(downloads->Slot(0).TempFile.isEmpty());
    EXPECT_FALSE(QFile::exists(tempPath(QStringLiteral("kelvaris.tmp0.png"))));
}

TEST_F(DownloadsFixture, WriteFailureIsReportedAndTheFileStillDeleted) {
    applierResult = false;
    ASSERT_EQ(start(0), Start::Started);
    serveSlot(0, 0, "data");
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Error writing image. Please check file permissions."));
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_FALSE(QFile::exists(tempPath(QStringLiteral("kelvaris.tmp0.png"))));
}

TEST_F(DownloadsFixture, TargetOutsideTheDataFolderIsNeverWritten) {
    modRegistry::SetValue(kSettingsKey, QStringLiteral("webPath0"), QStringLiteral("../../etc"));
    ASSERT_EQ(start(0), Start::Started);
    serveSlot(0, 0, "data");
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }));
    EXPECT_TRUE(applied.isEmpty());
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.contains(QStringLiteral("online slot 0")));
    EXPECT_FALSE(QFile::exists(tempPath(QStringLiteral("kelvaris.tmp0.png"))));
}

TEST_F(DownloadsFixture, RandomizerModeStoresTheDateOfTheRefresh) {
    makeDownloads(true);
    ASSERT_EQ(start(0), Start::Started);
    serveSlot(0, 0, "data");
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }));
    EXPECT_EQ(applied.size(), 1);
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastOnlineUpdate")),
              ShortDateText(QDate::currentDate()));
}

} // namespace
