#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <list>

struct ImportEnd;

// Brings what was taken into Screenshots, at its end: a PNG file in a fresh folder of the temporary area, so that two
// of one name never meet, which is then imported. The file is written beside the main thread. A picture that cannot be
// written or imported is kept until the person had it tried again or gave it up. Main thread.
class CaptureStore : public QObject
{
    Q_OBJECT
public:
    static inline const QString errorDomain = QStringLiteral("CaptureStore");
    // Those behind the first the person knows of: it was given up, or goes on at the next launch.
    enum ErrorCode { NotOpen = 1, GivenUp, GoesOn };
    // `items`: the item directories' names; without any, why not.
    using Stored = std::function<void(const QStringList &items, const ZQError &error)>;
    // Who waits. Neither is called any more once the store is gone.
    struct Told
    {
        std::function<void()> importDidBegin = {}; // once, if it does
        Stored didEnd = {};                        // once
    };

    CaptureStore();
    ~CaptureStore() override; // waits until all of it is being imported

    void store(const QImage &image, const QString &name, const QVariantMap &metadata, Told told);
    // A finished file in a folder of its own in the temporary area, which are the store's from then on.
    void importFile(const QString &path, const QVariantMap &metadata, Told told);
    // Returns when all that was to be written is written and being imported.
    void finish();

    // "Screenshot Mar 05 14.07.31.png": one component of a path, whatever the name is.
    static QString fileName(const QString &name, const QDateTime &date);

private:
    struct Picture
    {
        QImage image;
        QString name;
        QDateTime date;
        QVariantMap metadata;
        Told told;
        QString path = {};
        ZQError error = {};
    };
    void write(Picture picture);
    void didWrite(); // all that are written by now
    void didFail(Picture picture);
    void didImport(const ImportEnd &end, const QString &path, const QVariantMap &metadata, const Told &told);

    ZQMutex m_mutex;
    std::list<Picture> m_written ZQ_GUARDED_BY(m_mutex);
    ZQOperationQueue m_queue;
};
