#pragma once

#include "Classes/Sharing/DBCalls.h"

#include <QDateTime>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>

// One file on its way into a Dropbox: in one request, or, where it is too large for one, as a session of pieces, each
// of which is sent again from where Dropbox says when it did not come through. Main thread.
class DBUpload
{
public:
    struct Sizes
    {
        qint64 mostAtOnce = 150'000'000; // bytes of a file that is sent in one request
        qint64 piece = qint64(32) << 20;
        std::chrono::milliseconds pause{2'000}; // before a piece is sent again
    };
    using Progress = std::function<void(double fraction)>;
    using Done = std::function<void(const QVariantMap &metadata, const ZQError &error)>;

    // `parentRev`: the revision that it takes the place of; empty: it takes the place of none.
    DBUpload(DBSession &session, const QString &fromPath, const QString &path, const QString &parentRev,
             const Sizes &sizes, Progress progress, Done done);

    void start(); // `done` once, unless it goes before
    const QString &path() const { return m_path; }

private:
    QJsonObject commit() const;
    void sendWhole();
    void beginSession();
    void sendPiece();
    void finishSession();
    std::optional<ZQHTTPBody> contents(qint64 offset, qint64 length); // nothing: it failed
    bool isUnchanged() const;
    bool goOnElsewhere(const ZQHTTPResponse &response);
    bool tryAgain(const ZQHTTPResponse &response, void (DBUpload::*step)());
    void end(const ZQHTTPResponse &response);
    void fail(const ZQError &error);
    void tell(qint64 sent) const;

    DBCalls m_calls;
    const QString m_fromPath;
    const QString m_path;
    const QString m_parentRev;
    const Sizes m_sizes;
    const Progress m_progress;
    Done m_done; // null: it was called
    QString m_session;
    qint64 m_size = 0;
    QDateTime m_modified;
    qint64 m_offset = 0;
    qint64 m_furthest = 0; // that Dropbox said it has
    int m_failures = 0;    // since it got that far
    QTimer m_pause;
};
