#include "LibraryOperations.h"

#include "LibraryFolder.h"
#include "RandomFile.h"
#include "app/BusyHost.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "app/modRegistry.h"
#include "image/FrameOverlay.h"
#include "image/LoadImage.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureReader.h"
#include "texture/TextureWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QThreadPool>
#include <algorithm>
#include <deque>
#include <future>
#include <memory>

namespace {

// WriteLibraryEntry without its message.
bool writeEntry(const LibraryAdd& add, const QString& FileName, const TextureContext& context,
                BusyHost& busy, UiServices& ui) {
    const auto picture = add.frameFile.isEmpty() ? add.image : ApplyFrame(add.frameFile, add.image);
    return WriteTexture(TextureRequest::LibraryEntry(LibraryFolderOf(context.gameFolder, add.half),
                                                     FileName, *picture),
                        context, busy, ui);
}

// The pictures a folder add keeps in hand at most, per thread preparing
// them: enough that a thread never waits for the writes, few enough that a
// large folder is never held in memory.
constexpr int kPicturesPerWorker = 2;

// A very large picture may take a few hundred megabytes while it decodes:
// past this many at once, more cores buy little and may cost the memory.
constexpr int kMostWorkers = 8;

int workerCount(const LibraryAdd& add) {
    return add.workers > 0 ? add.workers : std::clamp(QThread::idealThreadCount(), 1, kMostWorkers);
}

int addOneByOne(const LibraryAdd& add, const QString& Folder, const QStringList& names,
                const TextureContext& context, BusyHost& busy, UiServices& ui) {
    const qsizetype count = names.size();
    int added = 0;
    for (qsizetype i = 0; i < count && !busy.CancelRequested(); ++i) {
        const QString path = Folder + u'/' + names[i];
        if (add.step)
            add.step(i + 1, count, path);
        const PreviewMaker previews = i + 1 == count ? add.lastPreviews : PreviewMaker();
        if (LoadImage(path, *add.image, kScreenWidth, kScreenHeight, busy, ui, previews) &&
            !busy.CancelRequested() && WriteLibraryEntry(add, names[i], context, busy, ui))
            ++added;
    }
    return added;
}

// Library entries written but not yet in place: each is flushed to the disk
// on a thread of its own, a few at once, and renamed into place here in the
// order they were written. A failure is told when its entry's turn comes.
class EntryCommits {
public:
    explicit EntryCommits(UiServices& ui) : ui_(ui) { flushers_.setMaxThreadCount(kFlushesAtOnce); }
    ~EntryCommits() { Settle(true); }
    EntryCommits(const EntryCommits&) = delete;
    EntryCommits& operator=(const EntryCommits&) = delete;

    void Add(FileRecord&& output) {
        auto record = std::make_shared<FileRecord>(std::move(output));
        auto flush =
            std::make_shared<std::packaged_task<void()>>([record] { FlushFileRecord(*record); });
        pending_.push_back({record, flush->get_future()});
        flushers_.start([flush] { (*flush)(); });
        while (qsizetype(pending_.size()) > kFlushesAtOnce)
            settleFirst();
    }

    // Puts in place the entries whose flush has ended, oldest first; with
    // `all`, every entry, waiting for their flushes.
    void Settle(bool all) {
        while (!pending_.empty() && (all || pending_.front().flushed.wait_for(std::chrono::seconds(
                                                0)) == std::future_status::ready))
            settleFirst();
    }

    // Whether an entry of this file name, in any letter case, still waits to
    // be put in place: a later entry of the same name must find it there, to
    // replace it as it would one picture at a time.
    bool Holds(const QString& fileName) const {
        for (const Entry& entry : pending_)
            if (QFileInfo(entry.record->FinalName)
                    .fileName()
                    .compare(fileName, Qt::CaseInsensitive) == 0)
                return true;
        return false;
    }

    int Added() const { return added_; }

private:
    static constexpr int kFlushesAtOnce = 4;

    struct Entry {
        std::shared_ptr<FileRecord> record;
        std::future<void> flushed;
    };

    void settleFirst() {
        Entry entry = std::move(pending_.front());
        pending_.pop_front();
        entry.flushed.wait();
        if (CommitFileRecord(*entry.record))
            ++added_;
        else
            ui_.Message(WriteErrorText(), MsgIcon::Exclamation);
    }

    UiServices& ui_;
    QThreadPool flushers_;
    std::deque<Entry> pending_;
    int added_ = 0;
};

// As addOneByOne, with the decoding and resampling done ahead on a pool of
// threads and the entries flushed to the disk alongside; the loading
// (messages, previews), writing and renaming stay here, in the folder's
// order, so what the player sees and what is written are the same.
int addTogether(const LibraryAdd& add, const QString& Folder, const QStringList& names, int workers,
                const TextureContext& context, BusyHost& busy, UiServices& ui) {
    QThreadPool pool;
    pool.setMaxThreadCount(workers);
    const qsizetype count = names.size();
    const qsizetype window = qsizetype(workers) * kPicturesPerWorker;
    std::deque<PendingPicture> pending; // the pictures from the next one on
    qsizetype queued = 0;
    auto queueUpTo = [&](qsizetype end) {
        for (; queued < std::min(end, count); ++queued) {
            auto task = std::make_shared<std::packaged_task<std::optional<cDIBSection>()>>(
                [path = QString(Folder + u'/' + names[queued])] {
                    return PreparePicture(path, kScreenWidth, kScreenHeight);
                });
            pending.push_back(task->get_future());
            pool.start([task] { (*task)(); });
        }
    };

    // The compressor's messages come from inside the write: with it, each
    // entry is committed there and then, so nothing is told out of order.
    EntryCommits commits(ui);
    TextureContext handingOver = context;
    if (!context.compress)
        handingOver.handOver = [&commits](FileRecord&& output) { commits.Add(std::move(output)); };

    int added = 0;
    for (qsizetype i = 0; i < count && !busy.CancelRequested(); ++i) {
        queueUpTo(i + window);
        const QString path = Folder + u'/' + names[i];
        if (add.step)
            add.step(i + 1, count, path);
        PendingPicture next = std::move(pending.front());
        pending.pop_front();
        std::optional<cDIBSection> picture = AwaitPreparedImage(path, next, busy);
        if (!picture)
            commits.Settle(true); // earlier entries' failures are told first
        const PreviewMaker previews = i + 1 == count ? add.lastPreviews : PreviewMaker();
        if (!FinishPreparedImage(path, std::move(picture), *add.image, busy, ui, previews) ||
            busy.CancelRequested())
            continue;
        if (commits.Holds(names[i] + QStringLiteral(".dds")))
            commits.Settle(true);
        if (!writeEntry(add, names[i], handingOver, busy, ui)) {
            commits.Settle(true);
            ui.Message(WriteErrorText(), MsgIcon::Exclamation);
        } else if (!handingOver.handOver) {
            ++added;
        }
        commits.Settle(false);
    }
    // Pictures not begun are dropped; those under way are waited for. The
    // entries already written are put in place.
    pool.clear();
    pool.waitForDone();
    commits.Settle(true);
    return added + commits.Added();
}

} // namespace

bool WriteLibraryEntry(const LibraryAdd& add, const QString& FileName,
                       const TextureContext& context, BusyHost& busy, UiServices& ui) {
    const bool written = writeEntry(add, FileName, context, busy, ui);
    if (!written)
        ui.Message(WriteErrorText(), MsgIcon::Exclamation);
    return written;
}

bool AddPictureToLibrary(const LibraryAdd& add, const QString& PictureFile,
                         const TextureContext& context, BusyHost& busy, UiServices& ui) {
    // The name as the folder has it, so the library entry matches the file.
    const QFileInfo file(ResolveExistingCase(PictureFile));
    if (!file.isFile() || !LoadImage(file.filePath(), *add.image, kScreenWidth, kScreenHeight, busy,
                                     ui, add.lastPreviews))
        return false;
    return WriteLibraryEntry(add, file.fileName(), context, busy, ui);
}

int AddFolderToLibrary(const LibraryAdd& add, const QString& Folder, const TextureContext& context,
                       BusyHost& busy, UiServices& ui) {
    const FolderPictures pictures = ListFolderPictures(Folder);
    if (pictures.reachedLimit)
        ui.Message(QStringLiteral("Kelvaris will only process the first 1000 images."),
                   MsgIcon::None);
    const int workers = workerCount(add);
    if (workers == 1 || pictures.names.size() < 2)
        return addOneByOne(add, Folder, pictures.names, context, busy, ui);
    return addTogether(add, Folder, pictures.names, workers, context, busy, ui);
}

QStringList ListLibrary(const QString& gameFolder, LibraryHalf half) {
    return ListLibraryImages(ResolveExistingCase(LibraryFolderOf(gameFolder, half)));
}

int RemoveLibraryEntries(const QString& gameFolder, LibraryHalf half, const QStringList& names,
                         UiServices& ui) {
    const QString folder = ResolveExistingCase(LibraryFolderOf(gameFolder, half));
    int removed = 0;
    for (const QString& name : names) {
        // Only entries of this half: a name never leads out of its folder.
        if (!IsContainedRelative(name) || name.contains(u'/'))
            continue;
        if (QFile::remove(folder + u'/' + name))
            ++removed;
        else
            ui.Message(QStringLiteral("\"%1\" could not be deleted. Please check file "
                                      "permissions.")
                           .arg(folder + u'/' + name),
                       MsgIcon::Exclamation);
    }
    return removed;
}

QImage LibraryThumbnail(const QString& gameFolder, LibraryHalf half, const QString& name,
                        const QSize& size) {
    const TexturePicture picture =
        ReadTextureFile(ResolveExistingCase(LibraryFolderOf(gameFolder, half)) + u'/' + name);
    if (picture.image.isNull())
        return {};
    return picture.image.copy(0, 0, int(kScreenWidth), int(kScreenHeight))
        .scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QString LastLibraryPick(LibraryHalf half) {
    return modRegistry::QueryValue(kSettingsKey, QString::fromLatin1(HalfInfo(half).lastPick));
}
