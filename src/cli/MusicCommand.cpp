// The music command: one sound file for a set of the game's music targets.

#include "CliRequest.h"
#include "app/PathUtils.h"
#include "audio/MusicInstall.h"
#include "audio/MusicTables.h"
#include "audio/clsEncoderOGG.h"
#include "audio/clsWinampPlugin.h"

#include <QFileInfo>
#include <memory>

int RunMusicCommand(const CliRequest& request) {
    if (request.words.size() < 3)
        return UsageError(QStringLiteral("music needs a SOUNDFILE and at least one TARGET"));
    MusicBoxStates boxes;
    for (const QString& target : request.words.mid(2)) {
        const QStringList named = MusicBoxesNamed(target);
        if (named.isEmpty())
            return UsageError(QStringLiteral("unknown music target %1").arg(target));
        for (const QString& box : named)
            boxes[box] = Qt::Checked;
    }
    const QString source = QFileInfo(request.word(1)).absoluteFilePath();
    // The decoder and encoder are readied as the Music tab readies them; an
    // Ogg file needs neither.
    std::unique_ptr<clsWinampPlugin> decoder;
    std::unique_ptr<clsEncoderOGG> encoder;
    if (source.right(4).toLower() != u".ogg") {
        decoder = std::make_unique<clsWinampPlugin>();
        encoder = std::make_unique<clsEncoderOGG>();
        if (decoder->Init(ProgramFolder(), 0) == 0) {
            request.ui->Message(QStringLiteral("No sound input plugins found."),
                                MsgIcon::Exclamation);
            return kCliFailure;
        }
        if (!encoder->InitEncoder()) {
            request.ui->Message(QStringLiteral("Unable to initialize OGG encoder."),
                                MsgIcon::Exclamation);
            return kCliFailure;
        }
    }
    InstallMusic(source, request.game, boxes, decoder.get(), encoder.get(), *request.busy,
                 *request.ui);
    int written = 0;
    for (auto state = boxes.cbegin(); state != boxes.cend(); ++state)
        written += state.value() == Qt::PartiallyChecked ? 1 : 0;
    PrintLine(QStringLiteral("%1 of %2 music target(s) written.").arg(written).arg(boxes.size()));
    return written == boxes.size() ? kCliSuccess : kCliFailure;
}
