#include "Kit/Files/ZQFileWatcher.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQWatchLoop.h"
#include "Kit/Files/ZQWatchOutbox.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>

#include <algorithm>
#include <iterator>

namespace {
constexpr qint64 longestDelivery = 3; // milliseconds
}

struct ZQFileWatcher::Private
{
    ZQWatchOptions options;
    std::shared_ptr<ZQWatchOutbox> outbox;
    std::shared_ptr<ZQWatchLoop> telling;
    std::shared_ptr<ZQWatchLoop> silent;
    QList<QByteArray> roots;
    QSet<QByteArray> silentPlaces; // below roots

    ZQWatchLoop &loop(bool isSilent)
    {
        std::shared_ptr<ZQWatchLoop> &one = isSilent ? silent : telling;
        if (!one) {
            one = ZQWatchLoop::start(options, isSilent, outbox);
        }
        return *one;
    }
    bool isSilent(const QByteArray &path) const { return ZQMountTable::read(options.mountTable).isSilent(path); }
    void remove(const QByteArray &path)
    {
        for (const auto &one : {telling, silent}) {
            if (one) {
                one->remove(path);
            }
        }
    }
};

ZQFileWatcher::ZQFileWatcher(QObject *parent) : ZQFileWatcher(ZQWatchOptions(), parent) {}

ZQFileWatcher::ZQFileWatcher(const ZQWatchOptions &options, QObject *parent)
    : QObject(parent), d(std::make_unique<Private>())
{
    d->options = options;
    d->outbox = std::make_shared<ZQWatchOutbox>(this, [this] { deliver(); });
}

ZQFileWatcher::~ZQFileWatcher()
{
    d->outbox->close();
    for (const auto &one : {d->telling, d->silent}) {
        if (one) {
            one->end();
        }
    }
}

bool ZQFileWatcher::addPath(const QString &path)
{
    if (!zqSystemPath(path, nullptr)) {
        return false;
    }
    const QByteArray root = QFile::encodeName(QDir::cleanPath(QDir(path).absolutePath()));
    if (!d->roots.contains(root)) {
        d->roots.append(root);
        d->silentPlaces.remove(root);
        d->loop(false); // which also tells of places
        d->loop(d->isSilent(root)).add(root);
    }
    return true;
}

void ZQFileWatcher::removePath(const QString &path)
{
    const QByteArray root = QFile::encodeName(QDir::cleanPath(QDir(path).absolutePath()));
    if (!d->roots.removeOne(root)) {
        return;
    }
    d->remove(root);
    if (isWithinRoots(root) && d->isSilent(root)) {
        d->silentPlaces.insert(root);
        d->loop(true).add(root);
    }
    const QSet<QByteArray> places = d->silentPlaces;
    for (const QByteArray &place : places) {
        if (!isWithinRoots(place)) {
            d->silentPlaces.remove(place);
            d->remove(place);
        }
    }
}

QStringList ZQFileWatcher::paths() const
{
    QStringList paths;
    std::transform(d->roots.cbegin(), d->roots.cend(), std::back_inserter(paths),
                   [](const QByteArray &root) { return QFile::decodeName(root); });
    return paths;
}

bool ZQFileWatcher::isSwept(const QString &root) const
{
    const QByteArray path = QFile::encodeName(QDir::cleanPath(root));
    const QSet<QByteArray> swept = d->outbox->sweptRoots();
    return std::any_of(swept.cbegin(), swept.cend(), [&](const QByteArray &one) { return zqIsPathWithin(one, path); });
}

bool ZQFileWatcher::isWithinRoots(const QByteArray &path) const
{
    return std::any_of(d->roots.cbegin(), d->roots.cend(),
                       [&](const QByteArray &root) { return zqIsPathWithin(path, root); });
}

void ZQFileWatcher::deliver()
{
    const QPointer<ZQFileWatcher> self(this); // who is told may delete the watcher
    std::vector<ZQWatchNews> news = d->outbox->take();
    QElapsedTimer timer;
    timer.start();
    for (auto it = news.begin(); it != news.end(); ++it) {
        if (timer.elapsed() >= longestDelivery) {
            news.erase(news.begin(), it);
            d->outbox->putBack(std::move(news));
            return;
        }
        tell(*it);
        if (!self) {
            return;
        }
    }
}

// What is mounted at its path is of the other kind now.
void ZQFileWatcher::moveToOtherLoop(const ZQWatchNews &news)
{
    if (d->silentPlaces.remove(news.path)) {
        Q_EMIT folderDidChange(QFile::decodeName(news.path), true); // it is an ordinary part of its root again
    } else {
        d->loop(!news.isFromSilent).add(news.path);
    }
}

void ZQFileWatcher::tell(const ZQWatchNews &news)
{
    using Kind = ZQWatchNews::Kind;
    const QString path = QFile::decodeName(news.path);
    const bool isRoot = d->roots.contains(news.path);
    if (news.kind == Kind::PlacesChanged) {
        Q_EMIT placesDidChange();
    } else if (news.kind == Kind::RanOut) {
        Q_EMIT watchesDidRunOut(news.needed);
    } else if (!isWithinRoots(news.path) && !isWithinRoots(news.to)) {
        return; // was removed meanwhile
    } else if (news.kind == Kind::Changed) {
        Q_EMIT folderDidChange(path, news.everythingBelow);
    } else if (news.kind == Kind::Moved) {
        Q_EMIT entryDidMove(path, QFile::decodeName(news.to));
    } else if (news.kind == Kind::SilentPlace) {
        if (!isRoot && !d->silentPlaces.contains(news.path)) {
            d->silentPlaces.insert(news.path);
            d->loop(true).add(news.path);
        }
    } else if (news.kind == Kind::Elsewhere) {
        moveToOtherLoop(news);
    } else if (!isRoot) {
        Q_EMIT folderDidChange(path, true); // a place below a root came or went
    } else if (news.kind == Kind::Started) {
        Q_EMIT watchingDidStart(path);
    } else {
        Q_EMIT rootDidVanish(path);
    }
}
