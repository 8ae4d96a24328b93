#include "DownloadsFixture.h"

namespace {

// A whole download from Debian's python3 HTTP server, which answers in
// HTTP/1.0 with "Content-type: image/png" for a ".png" file. The body holds
// no CR LF, because lines that arrive in the same read as the header's end
// are dropped; it is large enough to come in several reads, so that the part
// read with the header is written at the next read.
TEST_F(DownloadsFixture, DownloadsAPictureFromARealServer) {
    QByteArray body(8 * 1024 * 1024, '\0');
    for (qsizetype i = 0; i < body.size(); ++i) {
        const char c = char(i * 7 % 251);
        body[i] = c == '\r' ? 'R' : c;
    }
    writeFile(QStringLiteral("www/pictures/big.png"), body);

    PythonHttpServer python(root() + QStringLiteral("/www"));
    ASSERT_TRUE(python.started());
    downloads->SetPort(python.port());
    ASSERT_EQ(start(2, QStringLiteral("/pictures/big.png")), OnlineDownloads::StartResult::Started);
    ASSERT_TRUE(WaitUntil([&] { return finished == 1; }, 120000));

    ASSERT_EQ(applied.size(), 1);
    EXPECT_EQ(applied[0].fileName, QStringLiteral("kelvaris.tmp2.png"));
    EXPECT_EQ(applied[0].bytes.size(), body.size());
    EXPECT_TRUE(applied[0].bytes == body);
    EXPECT_EQ(applied[0].file, QStringLiteral("tex2"));
    EXPECT_TRUE(red.isEmpty());
    EXPECT_TRUE(ui.messages.isEmpty());
}

} // namespace
