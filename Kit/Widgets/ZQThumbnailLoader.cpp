#include "Kit/Widgets/ZQThumbnailLoader.h"

#include "Kit/Foundation/ZQSignalStack.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QCache>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <deque>
#include <thread>

namespace {

// The pictures come from other processes: what waits for one computes nothing.
constexpr int threadCount = 3;
constexpr int mostTries = 3; // of a new version
constexpr std::chrono::milliseconds betweenTries{500};
constexpr int mostLatest = 20000;
constexpr std::array resolutions = {128, 256, 512, 1024, 2048};

int resolutionFor(int pixels)
{
    const auto it = std::lower_bound(resolutions.begin(), resolutions.end(), pixels);
    return it == resolutions.end() ? resolutions.back() : *it;
}

QString keyFor(const ZQThumbnailRequest &request)
{
    return request.path + QChar(u'\0') + QString::number(request.version);
}
QString keyFor(const QString &file, int resolution)
{
    return file + QChar(u'\0') + QString::number(resolution);
}

// Many pictures carry an alpha channel that hides nothing.
bool isOpaque(const QImage &image)
{
    // The decoder's format has its alpha in the same byte as ARGB32 has on this side.
    static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN);
    const bool isReadable = image.format() == QImage::Format_RGBA8888 || image.format() == QImage::Format_ARGB32;
    const QImage checked = isReadable ? image : image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < checked.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(checked.constScanLine(y));
        if (std::any_of(line, line + checked.width(), [](QRgb pixel) { return qAlpha(pixel) != 255; })) {
            return false;
        }
    }
    return true;
}

} // namespace

struct ZQThumbnailLoader::Private
{
    struct Job
    {
        ZQThumbnailRequest request;
        int resolution = 0;
        QString key;
    };

    ZQMutex lock;
    ZQCondition wake;
    std::deque<Job> waiting ZQ_GUARDED_BY(lock); // the latest at the end
    QSet<QString> known ZQ_GUARDED_BY(lock);     // waiting or being read
    int reading ZQ_GUARDED_BY(lock) = 0;
    bool stopping ZQ_GUARDED_BY(lock) = false;

    Decoder decoder; // set before the first thread is there

    // Main thread only.
    std::vector<std::thread> threads;
    QCache<QString, ZQThumbnail> cache;
    QSet<QString> failed;                       // by file and version
    QCache<QString, qint64> latest{mostLatest}; // by file, the version that was read last
    QHash<QString, int> tries;                  // by file and version
    QSet<QString> resting;                      // the same, until they are tried again
    QSet<QString> wanted;
    bool collecting = false;

    void run(ZQThumbnailLoader *owner);
    ZQThumbnail begin(const ZQThumbnailRequest &request, int pixels, ZQThumbnailLoader *owner);
    ZQThumbnail best(const QString &file);
    void take(const Job &job, const ZQThumbnail &thumbnail, ZQThumbnailLoader *owner);
    ZQThumbnail read(const Job &job) const;
};

ZQThumbnail ZQThumbnailLoader::Private::read(const Job &job) const
{
    QImage image = decoder ? decoder(job.request, job.resolution) : QImage();
    if (image.hasAlphaChannel() && isOpaque(image)) {
        image.convertTo(QImage::Format_RGB32);
    }
    if (!image.isNull() && image.format() != QImage::Format_RGB32 &&
        image.format() != QImage::Format_ARGB32_Premultiplied) {
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
    }
    return {image, zqArtworkTone(image)};
}

void ZQThumbnailLoader::Private::run(ZQThumbnailLoader *owner)
{
    const ZQLockGuard guard(lock);
    while (true) {
        while (!stopping && waiting.empty()) {
            wake.wait(lock);
        }
        if (stopping) {
            return;
        }
        const Job job = std::move(waiting.back());
        waiting.pop_back();
        ++reading;
        ZQThumbnail thumbnail;
        {
            const ZQUnlockGuard open(lock);
            thumbnail = read(job);
        }
        --reading;
        if (stopping) {
            return;
        }
        // The destructor joins this thread before the owner goes, so it lives while the call is queued; Qt drops calls
        // to the dead.
        QMetaObject::invokeMethod(
            owner,
            [owner, job, thumbnail] {
                Private &d = *owner->d;
                {
                    const ZQLockGuard inner(d.lock);
                    d.known.remove(job.key);
                }
                d.take(job, thumbnail, owner);
                Q_EMIT owner->loaded(job.request.path);
            },
            Qt::QueuedConnection);
    }
}

void ZQThumbnailLoader::Private::take(const Job &job, const ZQThumbnail &thumbnail, ZQThumbnailLoader *owner)
{
    const QString file = keyFor(job.request);
    if (!thumbnail.image.isNull()) {
        cache.insert(job.key, new ZQThumbnail(thumbnail), thumbnail.image.sizeInBytes());
        latest.insert(job.request.path, new qint64(job.request.version));
        tries.remove(file);
        return;
    }
    const qint64 *const before = latest.object(job.request.path);
    const bool isNewVersion = before && *before != job.request.version;
    if (!isNewVersion || ++tries[file] >= mostTries) {
        tries.remove(file);
        failed.insert(file);
        return;
    }
    resting.insert(file);
    QTimer::singleShot(betweenTries, owner, [this, owner, file, path = job.request.path] {
        resting.remove(file);
        Q_EMIT owner->loaded(path); // who shows it asks again
    });
}

ZQThumbnailLoader::ZQThumbnailLoader(qsizetype cacheBytes, QObject *parent)
    : QObject(parent), d(std::make_shared<Private>())
{
    d->cache.setMaxCost(cacheBytes);
}

ZQThumbnailLoader::~ZQThumbnailLoader()
{
    {
        const ZQLockGuard guard(d->lock);
        d->stopping = true;
    }
    d->wake.notifyAll();
    for (std::thread &thread : d->threads) {
        thread.join();
    }
}

void ZQThumbnailLoader::setDecoder(Decoder decoder)
{
    d->decoder = std::move(decoder);
}

ZQThumbnail ZQThumbnailLoader::Private::best(const QString &file)
{
    for (auto it = resolutions.rbegin(); it != resolutions.rend(); ++it) {
        if (const ZQThumbnail *other = cache.object(keyFor(file, *it))) {
            return *other;
        }
    }
    return {};
}

ZQThumbnail ZQThumbnailLoader::Private::begin(const ZQThumbnailRequest &request, int pixels, ZQThumbnailLoader *owner)
{
    const QString file = keyFor(request);
    const int resolution = resolutionFor(pixels);
    const QString key = keyFor(file, resolution);
    if (const ZQThumbnail *found = cache.object(key)) {
        return *found;
    }
    if (failed.contains(file)) {
        return {};
    }
    if (!resting.contains(file)) {
        {
            const ZQLockGuard guard(lock);
            if (!known.contains(key)) {
                known.insert(key);
                waiting.push_back({request, resolution, key});
            }
        }
        for (int i = int(threads.size()); i < threadCount; ++i) {
            threads.emplace_back([this, owner] {
                const ZQSignalStack stack;
                run(owner);
            });
        }
        wake.notifyOne();
    }
    if (collecting) {
        wanted.insert(key);
    }
    return best(file);
}

QImage ZQThumbnailLoader::image(const ZQThumbnailRequest &request, int pixels)
{
    return request.path.isEmpty() ? QImage() : d->begin(request, pixels, this).image;
}

ZQThumbnail ZQThumbnailLoader::thumbnail(const ZQThumbnailRequest &request, int pixels)
{
    if (request.path.isEmpty()) {
        return {};
    }
    const ZQThumbnail found = d->begin(request, pixels, this);
    const qint64 *const before = d->latest.object(request.path);
    if (!found.image.isNull() || !before || *before == request.version || hasFailed(request)) {
        return found;
    }
    return d->best(keyFor({request.path, *before, request.isForeign}));
}

bool ZQThumbnailLoader::hasFailed(const ZQThumbnailRequest &request) const
{
    return d->failed.contains(keyFor(request));
}

void ZQThumbnailLoader::beginVisible()
{
    d->wanted.clear();
    d->collecting = true;
}

void ZQThumbnailLoader::endVisible()
{
    d->collecting = false;
    const ZQLockGuard guard(d->lock);
    std::erase_if(d->waiting, [this](const Private::Job &job) ZQ_REQUIRES(d->lock) {
        const bool drop = !d->wanted.contains(job.key);
        if (drop) {
            d->known.remove(job.key);
        }
        return drop;
    });
}

qsizetype ZQThumbnailLoader::cachedBytes() const
{
    return d->cache.totalCost();
}

int ZQThumbnailLoader::pendingCount() const
{
    const ZQLockGuard guard(d->lock);
    return int(d->known.size());
}
