#include "Classes/Interface/Capture/SnapSound.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <atomic>
#include <canberra.h>
#include <memory>
#include <thread>

namespace {

const QString resource = QStringLiteral(":/zelto/sounds/snap_sound.wav");

// The library that plays it reads files. Empty where it cannot be written.
QString soundFile()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
    const QString path = folder.filePath(QStringLiteral("snap_sound.wav"));
    QFile sound(resource);
    if (!sound.open(QIODevice::ReadOnly)) {
        return {};
    }
    if (QFile there(path); there.open(QIODevice::ReadOnly) && there.readAll() == sound.readAll()) {
        return path;
    }
    sound.seek(0);
    QSaveFile copy(path);
    const bool isWritten = folder.mkpath(QStringLiteral(".")) && copy.open(QIODevice::WriteOnly) &&
                           copy.write(sound.readAll()) == sound.size() && copy.commit();
    return isWritten ? path : QString();
}

// A sound ends with its context, so there is one as long as the process runs.
void playFile(const QByteArray &path)
{
    static ca_context *context = nullptr;
    if (!context && ca_context_create(&context) != CA_SUCCESS) {
        context = nullptr;
        return;
    }
    ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Zelto", CA_PROP_APPLICATION_ID, "org.zelto.Zelto",
                            nullptr);
    if (path.isEmpty()) {
        ca_context_play(context, 0, CA_PROP_EVENT_ID, "screen-capture", CA_PROP_MEDIA_ROLE, "event", nullptr);
    } else {
        ca_context_play(context, 0, CA_PROP_EVENT_ID, "screen-capture", CA_PROP_MEDIA_FILENAME, path.constData(),
                        CA_PROP_MEDIA_NAME, "snap_sound", CA_PROP_MEDIA_ROLE, "event", nullptr);
    }
}

} // namespace

// On a thread that nobody waits for: reaching a sound server takes as long as that server likes.
void SnapSound::play()
{
    static std::atomic_bool isBusy = false;
    if (isBusy.exchange(true)) {
        return;
    }
    std::thread([path = QFile::encodeName(soundFile())] {
        playFile(path);
        isBusy = false;
    }).detach();
}
