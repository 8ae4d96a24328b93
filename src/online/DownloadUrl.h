#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The plain-HTTP addresses an online slot accepts, the request sent for them
// and the picture types a response may carry.

struct DownloadTarget {
    QString Host; // exactly as typed, a ":port" included (it is never used)
    QString Path; // from the first "/" after the host to the end, query included
};

// Splits an address of the form "http://host/path". Nothing when it has no
// "://", a scheme other than "http" (letter case ignored, so "https" is
// refused too) or no "/" after the host.
std::optional<DownloadTarget> SplitDownloadUrl(const QString& Url);

// The whole request, sent in one piece: the GET line, the Host line and
// "Connection: close", each ending in CR LF, then an empty line. The path
// goes out unescaped, as typed.
QByteArray DownloadRequest(const DownloadTarget& Target);

// True for exactly "image/jpeg", "image/gif" and "image/png"; a type with
// parameters such as "; charset=" is not one of them.
bool IsAcceptedImageType(const QByteArray& ContentType);

// The work-folder file an accepted response is saved in: "kelvaris.tmp", the
// slot digit, "." and the type after "image/" ("kelvaris.tmp0.jpeg").
QString DownloadTempFileName(int Slot, const QByteArray& ContentType);

// The value of a "content-type:" header line (name in any letter case),
// trimmed and lower-cased; nothing for any other line.
std::optional<QByteArray> ContentTypeOfLine(const QByteArray& Line);
