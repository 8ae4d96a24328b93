#include "DownloadUrl.h"

namespace {

const QByteArray kCrLf = QByteArrayLiteral("\r\n");
constexpr qsizetype kContentTypeNameLength = 13; // "content-type:"

// Trims spaces only, as a header value is trimmed; tabs stay.
QByteArray trimmedOfSpaces(const QByteArray& text) {
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == ' ')
        ++begin;
    while (end > begin && text[end - 1] == ' ')
        --end;
    return text.mid(begin, end - begin);
}

} // namespace

std::optional<DownloadTarget> SplitDownloadUrl(const QString& Url) {
    const qsizetype schemeEnd = Url.indexOf(QStringLiteral("://"));
    if (schemeEnd < 0 || Url.left(schemeEnd).toLower() != u"http")
        return std::nullopt;
    const QString rest = Url.mid(schemeEnd + 3);
    const qsizetype slash = rest.indexOf(u'/');
    if (slash < 0)
        return std::nullopt;
    return DownloadTarget{rest.left(slash), rest.mid(slash)};
}

QByteArray DownloadRequest(const DownloadTarget& Target) {
    return "GET " + Target.Path.toUtf8() + " HTTP/1.1" + kCrLf + "Host: " + Target.Host.toUtf8() +
           kCrLf + "Connection: close" + kCrLf + kCrLf;
}

bool IsAcceptedImageType(const QByteArray& ContentType) {
    return ContentType == "image/jpeg" || ContentType == "image/gif" || ContentType == "image/png";
}

QString DownloadTempFileName(int Slot, const QByteArray& ContentType) {
    return QStringLiteral("kelvaris.tmp") + QString::number(Slot) + u'.' +
           QString::fromLatin1(ContentType.mid(6));
}

std::optional<QByteArray> ContentTypeOfLine(const QByteArray& Line) {
    if (Line.left(kContentTypeNameLength).toLower() != "content-type:")
        return std::nullopt;
    return trimmedOfSpaces(Line.mid(kContentTypeNameLength)).toLower();
}
