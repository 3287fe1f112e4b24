#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

// Watches folders with everything below them (inotify) and announces one path after its changes have settled.
// Lives on the thread that made it, which needs an event loop.
class ZQFileWatcher : public QObject
{
    Q_OBJECT
public:
    explicit ZQFileWatcher(QObject *parent = nullptr);
    ~ZQFileWatcher() override;

    bool addPath(const QString &path); // false when the folder cannot be watched
    void removePath(const QString &path);
    QStringList paths() const;
    // Changes to this path are ours and are not announced for a moment.
    void ignoreNextChange(const QString &path);

Q_SIGNALS:
    // Something in `folder` changed; with `everythingBelow` the system lost events, so look at all of it.
    void folderDidChange(const QString &folder, bool everythingBelow);
    // A watched root itself was moved, deleted or unmounted.
    void rootDidVanish(const QString &root);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
