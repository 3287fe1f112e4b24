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
#include <memory>

class QuestionWithdrawal;
struct ImportEnd;

// Brings what was taken into Screenshots, at its end: a PNG file in a fresh folder of the temporary area, so that two
// of one name never meet, which is then imported. The file is written beside the main thread; until its import is noted
// a copy lies among the bundle's pending captures. What cannot be written or imported is asked about, one after
// another, and is held until the person had it tried again, discarded it or kept it among their pictures, where a
// question that nobody answers puts it, too. Main thread.
class CaptureStore : public QObject
{
    Q_OBJECT
public:
    static inline const QString errorDomain = QStringLiteral("CaptureStore");
    // Those behind the first the person knows of: it was given up, goes on at the next launch, or lies among the
    // person's own pictures.
    enum ErrorCode { NotOpen = 1, GivenUp, GoesOn, Kept, Held };
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
    // Imports what a process that was killed had written, each once. Once the library is open.
    void takeUpLeft();
    // Returns when all that was to be written is written and being imported. A question that waits below ends: what it
    // is about, and what waits behind it, is kept among the person's pictures. False while there are pictures for which
    // there is no place anywhere.
    bool finish();
    // Whether there is anything that is not an import yet: what is being written, and what is asked about, but not what
    // is held.
    bool isStoring() const;

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
        QString path = {};    // in the temporary area
        QString pending = {}; // among the pending captures; empty: there is no copy
        ZQError error = {};
        bool isWritten = false; // and it is the library that did not take it
        bool isTriedAgain = false;
    };
    static void writeFile(Picture &picture); // any thread
    void write(Picture picture);
    void didWrite(); // all that are written by now
    void importPicture(Picture picture);
    void didImport(const ImportEnd &end, const Picture &picture);
    void askAboutFailed();
    void act(Picture picture, int answer);
    void keep(Picture picture);
    void hold(Picture picture);
    void keepAllFailed();

    mutable ZQMutex m_mutex;
    std::list<Picture> m_written ZQ_GUARDED_BY(m_mutex);
    std::list<Picture> m_failed;                    // the first is asked about
    std::list<Picture> m_held;                      // there was no place for
    std::shared_ptr<QuestionWithdrawal> m_question; // while it is
    ZQOperationQueue m_queue;
};
