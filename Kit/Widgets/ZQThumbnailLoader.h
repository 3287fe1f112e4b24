#pragma once

#include "Kit/Widgets/ZQArtworkGround.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

// One picture to load: a file and the version of it that is wanted.
struct ZQThumbnailRequest
{
    QString path;
    qint64 version = 0;
    bool isForeign = false; // an original, of any kind; else a thumbnail that was made of one
    bool operator==(const ZQThumbnailRequest &) const = default;
};

struct ZQThumbnail
{
    QImage image; // in a form that is painted without a conversion
    ZQArtworkTone tone;
};

// Loads pictures on a few background threads, the latest asked first, and keeps those used last within a limit of
// bytes. Main thread, except for the decoder, which is all it knows of files: even a thumbnail may come from a
// stranger's library.
class ZQThumbnailLoader : public QObject
{
    Q_OBJECT
public:
    // Answers the picture within `pixels` × `pixels`, or a null one. Called on the background threads.
    using Decoder = std::function<QImage(const ZQThumbnailRequest &request, int pixels)>;

    explicit ZQThumbnailLoader(qsizetype cacheBytes = qsizetype(192) << 20, QObject *parent = nullptr);
    ~ZQThumbnailLoader() override;

    void setDecoder(Decoder decoder); // before the first request; without one, every picture is null

    // The picture when it is there at a resolution for `pixels` (device pixels of the longer side); otherwise the best
    // other resolution, which may be null, and a load is begun. Until a new version is there, the one that was shown
    // before stands for it; a file that cannot be read then, since it is being replaced, is tried a few times.
    ZQThumbnail thumbnail(const ZQThumbnailRequest &request, int pixels);
    // The same of that version alone.
    QImage image(const ZQThumbnailRequest &request, int pixels);
    bool hasFailed(const ZQThumbnailRequest &request) const;

    // Between these two, requests are noted as still wanted; those not asked for again are dropped from the queue.
    void beginVisible();
    void endVisible();

    qsizetype cachedBytes() const;
    int pendingCount() const; // waiting or being read

Q_SIGNALS:
    void loaded(const QString &path);

private:
    struct Private;
    std::shared_ptr<Private> d;
};
