#include "CatalogueWriter.h"

#include "app/FileRecord.h"
#include "app/PathUtils.h"

#include <QDir>
#include <QFile>
#include <QThreadPool>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Fills the catalogue's text straight into a buffer, grown only when a
// texture's line might not fit: the catalogue build writes tens of thousands
// of lines, and a call per field would cost more than the file's write.
class CatalogueText {
public:
    explicit CatalogueText(qsizetype capacity)
        : bytes_(qMax<qsizetype>(capacity, 64), Qt::Uninitialized) {
        out_ = bytes_.data();
        end_ = out_ + bytes_.size();
    }

    // Makes room for `bytes` more bytes.
    void Room(qsizetype bytes) {
        if (end_ - out_ >= bytes)
            return;
        const qsizetype used = out_ - bytes_.constData();
        bytes_.resize(qMax(2 * bytes_.size(), used + bytes));
        out_ = bytes_.data() + used;
        end_ = bytes_.constData() + bytes_.size();
    }
    // The text in double quotes, as UTF-8. Marks the text as doubtful when it
    // holds a double quote or a line end (which the catalogue cannot hold).
    // Needs room for three bytes a character and its quotes.
    void Quoted(const QString& text) {
        *out_++ = '"';
        if (text.constData() == sharedData_ && text.size() == sharedSize_) {
            // The string of the previous folder again, as a category's
            // textures share their folder's: its bytes are copied.
            std::memcpy(out_, bytes_.constData() + sharedAt_, sharedBytes_);
            out_ += sharedBytes_;
            *out_++ = '"';
            return;
        }
        const char16_t* __restrict in = reinterpret_cast<const char16_t*>(text.constData());
        char* __restrict out = out_;
        const qsizetype size = text.size();
        // Written without branches, so the compiler turns the loop into
        // vector instructions: `any` gathers every bit of every character,
        // `special` is 1 once a double quote or line end is seen.
        unsigned any = 0;
        unsigned special = 0;
        for (qsizetype i = 0; i < size; ++i) {
            const unsigned c = in[i];
            any |= c;
            special |= (((c ^ 0x22u) - 1u) | ((c ^ 0x0Du) - 1u) | ((c ^ 0x0Au) - 1u)) >> 31;
            out[i] = char(c);
        }
        qsizetype written = size;
        if (any >= 0x80) {
            const QByteArray utf8 = text.toUtf8();
            std::memcpy(out_, utf8.constData(), utf8.size());
            written = utf8.size();
        }
        doubtful_ |= special != 0;
        out_ += written;
        *out_++ = '"';
    }
    // Quoted() for a string that may come again and again.
    void QuotedShared(const QString& text) {
        const qsizetype start = out_ + 1 - bytes_.constData();
        Quoted(text);
        sharedAt_ = start;
        sharedBytes_ = out_ - 1 - bytes_.constData() - start;
        sharedData_ = text.constData();
        sharedSize_ = text.size();
    }
    // Quoted() for UTF-8 known to hold no double quote or line end.
    void QuotedPlain(QByteArrayView utf8) {
        Q_ASSERT(!utf8.contains('"') && !utf8.contains('\r') && !utf8.contains('\n'));
        char* out = out_;
        *out++ = '"';
        std::memcpy(out, utf8.data(), size_t(utf8.size()));
        out += utf8.size();
        *out++ = '"';
        out_ = out;
    }
    void Number(qsizetype value) { out_ = std::to_chars(out_, out_ + 24, value).ptr; }
    void Number(int value) { out_ = std::to_chars(out_, out_ + 12, value).ptr; }
    void Char(char c) { *out_++ = c; }
    void LineEnd() {
        *out_++ = '\r';
        *out_++ = '\n';
    }
    void MarkDoubtful() { doubtful_ = true; }
    bool Doubtful() const { return doubtful_; }
    QByteArray Take() {
        bytes_.truncate(out_ - bytes_.constData());
        return std::move(bytes_);
    }

private:
    QByteArray bytes_;
    char* out_ = nullptr;
    const char* end_ = nullptr;
    bool doubtful_ = false;
    qsizetype sharedAt_ = 0; // in bytes_
    qsizetype sharedBytes_ = 0;
    const QChar* sharedData_ = nullptr;
    qsizetype sharedSize_ = 0;
};

// The most bytes a number takes (a 64-bit one, with its sign).
constexpr qsizetype kNumberBytes = 24;

// The most bytes a texture's line takes: every character three bytes of
// UTF-8, both numbers as long as they can be, quotes, commas and line end.
qsizetype lineRoom(const CatalogueEntry& entry) {
    return 3 * (entry.name.size() + entry.folder.size() + entry.file.size()) + 2 * kNumberBytes +
           12;
}

bool isSize(int value) {
    return value >= 1 && value <= kMaxCatalogueCount;
}

// The first reason the categories cannot be written, or "".
QString problemWith(const QList<CatalogueCategory>& categories) {
    if (categories.size() > kMaxCatalogueCount)
        return QStringLiteral("it would hold more than %1 categories.").arg(kMaxCatalogueCount);
    for (const CatalogueCategory& category : categories) {
        if (!IsCatalogueText(category.name))
            return QStringLiteral("the category name \"%1\" holds a double quote or a line end.")
                .arg(category.name);
        if (category.entries.size() > kMaxCatalogueCount)
            return QStringLiteral("the category \"%1\" would hold more than %2 textures.")
                .arg(category.name)
                .arg(kMaxCatalogueCount);
        for (const CatalogueEntry& entry : category.entries) {
            if (!IsCatalogueText(entry.name) || !IsCatalogueText(entry.folder) ||
                !IsCatalogueText(entry.file))
                return QStringLiteral("the texture \"%1\" holds a double quote or a line end.")
                    .arg(entry.name);
            if (!isSize(entry.width) || !isSize(entry.height))
                return QStringLiteral("the texture \"%1\" has a size outside 1 to %2.")
                    .arg(entry.name)
                    .arg(kMaxCatalogueCount);
        }
    }
    return {};
}

} // namespace

bool IsCatalogueText(const QString& text) {
    return !text.contains(u'"') && !text.contains(u'\r') && !text.contains(u'\n');
}

struct CatalogueCategoryFormatter::State {
    explicit State(qsizetype room) : text(room) {}
    CatalogueText text;
};

CatalogueCategoryFormatter::CatalogueCategoryFormatter(const QString& name, qsizetype count,
                                                       qsizetype room)
    : state_(std::make_unique<State>(3 * name.size() + 2 * kNumberBytes + room)) {
    CatalogueText& text = state_->text;
    if (count > kMaxCatalogueCount)
        text.MarkDoubtful();
    text.Quoted(name);
    text.Char(',');
    text.Number(count);
    text.LineEnd();
}

CatalogueCategoryFormatter::~CatalogueCategoryFormatter() = default;

void CatalogueCategoryFormatter::Add(const CatalogueEntry& entry) {
    CatalogueText& text = state_->text;
    text.Room(lineRoom(entry));
    if (!isSize(entry.width) || !isSize(entry.height))
        text.MarkDoubtful();
    text.Quoted(entry.name);
    text.Char(',');
    text.Number(entry.width);
    text.Char(',');
    text.Number(entry.height);
    text.Char(',');
    text.QuotedShared(entry.folder);
    text.Char(',');
    text.Quoted(entry.file);
    text.LineEnd();
}

void CatalogueCategoryFormatter::AddPlain(QByteArrayView file, int width, int height,
                                          QByteArrayView folder) {
    CatalogueText& text = state_->text;
    text.Room(2 * file.size() + folder.size() + 2 * kNumberBytes + 12);
    if (!isSize(width) || !isSize(height))
        text.MarkDoubtful();
    text.QuotedPlain(file);
    text.Char(',');
    text.Number(width);
    text.Char(',');
    text.Number(height);
    text.Char(',');
    text.QuotedPlain(folder);
    text.Char(',');
    text.QuotedPlain(file);
    text.LineEnd();
}

CatalogueCategoryText CatalogueCategoryFormatter::Take() {
    const bool doubtful = state_->text.Doubtful();
    return {state_->text.Take(), doubtful};
}

CatalogueCategoryText FormatCatalogueCategory(const CatalogueCategory& category) {
    // Room for the longest text the category can make.
    qsizetype room = 0;
    for (const CatalogueEntry& entry : category.entries)
        room += lineRoom(entry);
    CatalogueCategoryFormatter text(category.name, category.entries.size(), room);
    for (const CatalogueEntry& entry : category.entries)
        text.Add(entry);
    return text.Take();
}

namespace {

// The disk is started on the file each time this much more has been written.
constexpr qint64 kFlushStep = 512 * 1024;

} // namespace

struct CatalogueFileWriter::State {
    QString fileName;
    qsizetype count = 0;
    FileRecord record;
    qsizetype appended = 0;
    bool doubtful = false;
    int failure = 0; // errno of the first failed step
    qint64 written = 0;
    qint64 flushed = 0; // the disk has been started on the bytes before this

    // A second name of the catalogue being replaced, made while the new one
    // is written: the rename then only drops one of its names, and freeing
    // its blocks (a good part of a millisecond for a large catalogue) is
    // left to the last name's removal, after the new catalogue is in place.
    // The second name keeps the old file's time, so a sweep of stale
    // temporaries running meanwhile may remove it: the rename then frees the
    // blocks itself, and nothing else changes.
    QByteArray retired;

    // It is named like the new catalogue's temporary, whose random ending
    // no other file beside it has, with ".old" before the marker:
    // "kelvaris.csv.old.kelvaris-Ab12Cd".
    void retireOld() {
        const QByteArray target = QFile::encodeName(fileName);
        // Only a catalogue that is a file of its own: a second name of a
        // link would be a link, which the sweep leaves alone.
        struct stat status;
        if (::lstat(target.constData(), &status) != 0 || !S_ISREG(status.st_mode))
            return;
        const QByteArray name =
            target + ".old" +
            QFile::encodeName(record.FileName).right(qsizetype(std::strlen(kTemporaryMarker)) + 6);
        if (::link(target.constData(), name.constData()) == 0)
            retired = name;
        errno = 0; // a failed link is no failure of the write
    }
    // Removes the second name: in the background once the new catalogue is
    // in place, at once when the old one stays.
    void releaseOld(bool replaced) {
        if (retired.isEmpty())
            return;
        if (replaced)
            QThreadPool::globalInstance()->start([name = retired] { ::unlink(name.constData()); });
        else
            ::unlink(retired.constData());
        retired.clear();
    }

    void write(const QByteArray& bytes) {
        if (failure != 0)
            return;
        if (WriteFileBytes(record, bytes.constData(), bytes.size()) != bytes.size()) {
            failure = errno != 0 ? errno : EIO;
            return;
        }
        written += bytes.size();
        if (written - flushed >= kFlushStep) {
            StartFlushingFileRecord(record, flushed, written - flushed);
            flushed = written;
        }
    }
};

CatalogueFileWriter::CatalogueFileWriter(const QString& fileName, qsizetype count)
    : state_(std::make_unique<State>()) {
    State& s = *state_;
    s.fileName = fileName;
    s.count = count;
    s.doubtful = count > kMaxCatalogueCount;
    QDir().mkpath(ReturnPath(fileName));
    errno = 0;
    s.record = OpenReplacingFileRecord(fileName);
    if (s.record.Handle == -1)
        s.failure = errno != 0 ? errno : EACCES; // a read-only catalogue is refused as such
    else
        s.retireOld();
    s.write(QByteArray::number(count) + "\r\n");
}

CatalogueFileWriter::~CatalogueFileWriter() {
    if (state_->record.Handle != -1)
        DiscardFileRecord(state_->record);
    state_->releaseOld(false);
}

void CatalogueFileWriter::Append(const CatalogueCategoryText& text) {
    ++state_->appended;
    state_->doubtful |= text.doubtful;
    state_->write(text.text);
}

QString CatalogueFileWriter::Finish(const QList<CatalogueCategory>& categories) {
    return Finish(categories.size(), [&categories] { return categories; });
}

QString CatalogueFileWriter::Finish(qsizetype count,
                                    const std::function<QList<CatalogueCategory>()>& categories) {
    State& s = *state_;
    QString message;
    if (s.appended != s.count || count != s.count) {
        message = QStringLiteral("The texture catalogue \"%1\" was not written: its text is not "
                                 "whole.")
                      .arg(s.fileName);
    } else if (const QString problem = s.doubtful ? problemWith(categories()) : QString();
               !problem.isEmpty()) {
        // What might be wrong is looked for again, in order, for its message.
        message = QStringLiteral("The texture catalogue \"%1\" was not written: %2")
                      .arg(s.fileName, problem);
    } else if (s.failure != 0 || !CommitFileRecord(s.record)) {
        message =
            QStringLiteral("The texture catalogue \"%1\" could not be written: %2")
                .arg(s.fileName,
                     QString::fromLocal8Bit(std::strerror(s.failure != 0 ? s.failure : errno)));
    }
    if (s.record.Handle != -1)
        DiscardFileRecord(s.record);
    s.releaseOld(message.isEmpty());
    return message;
}

QString WriteCatalogue(const QString& fileName, const QList<CatalogueCategory>& categories) {
    CatalogueFileWriter writer(fileName, categories.size());
    for (const CatalogueCategory& category : categories)
        writer.Append(FormatCatalogueCategory(category));
    return writer.Finish(categories);
}
