#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <list>

// Brings what was taken into Screenshots, at its end: a PNG file in a fresh folder of the temporary area, so that two
// of one name never meet, which is then imported. The file is written beside the main thread. A picture that cannot be
// written is kept until the person had it tried again or gave it up. Main thread.
class CaptureStore : public QObject
{
    Q_OBJECT
public:
    static inline const QString errorDomain = QStringLiteral("CaptureStore");
    enum ErrorCode { NotOpen = 1, GivenUp }; // the latter by the person, who knows then
    // Null once the import has begun.
    using Stored = std::function<void(const ZQError &error)>;

    CaptureStore();
    ~CaptureStore() override; // waits, and stores

    void store(const QImage &image, const QString &name, const QVariantMap &metadata, Stored stored);
    // A finished file of the temporary area, which is the import's from then on.
    void importFile(const QString &path, const QVariantMap &metadata, const Stored &stored);
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
        Stored stored;
        QString path = {};
        ZQError error = {};
    };
    void write(Picture picture);
    void didWrite(); // all that are written by now
    void didFail(Picture picture);

    ZQMutex m_mutex;
    std::list<Picture> m_written ZQ_GUARDED_BY(m_mutex);
    ZQOperationQueue m_queue;
};
