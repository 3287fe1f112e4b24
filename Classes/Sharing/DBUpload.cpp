#include "Classes/Sharing/DBUpload.h"

#include "Classes/Sharing/UploadProblem.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Network/ZQNetworkError.h"

#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int mostFailures = 5;

// Where Dropbox wants the next piece to begin; negative: it does not say.
qint64 correctOffset(const ZQHTTPResponse &response)
{
    const QJsonObject error = DBCalls::objectOf(response).value(u"error").toObject();
    const QJsonObject lookup = error.value(u"lookup_failed").toObject();
    return (lookup.isEmpty() ? error : lookup).value(u"correct_offset").toInteger(-1);
}

bool mayWorkNextTime(const ZQHTTPResponse &response)
{
    return response.statusCode >= 500 || zqIsNetworkError(response.error, ZQNetworkErrorCode::ConnectionLost) ||
           zqIsNetworkError(response.error, ZQNetworkErrorCode::TimedOut) ||
           zqIsNetworkError(response.error, ZQNetworkErrorCode::CannotConnect);
}

} // namespace

DBUpload::DBUpload(DBSession &session, const QString &fromPath, const QString &path, const QString &parentRev,
                   const Sizes &sizes, Progress progress, Done done)
    : m_calls(session), m_fromPath(fromPath), m_path(path), m_parentRev(parentRev), m_sizes(sizes),
      m_progress(std::move(progress)), m_done(std::move(done))
{
    m_pause.setSingleShot(true);
}

void DBUpload::start()
{
    const QFileInfo file(m_fromPath);
    m_size = file.size();
    m_modified = file.lastModified();
    m_size > m_sizes.mostAtOnce ? beginSession() : sendWhole();
}

bool DBUpload::isUnchanged() const
{
    const QFileInfo file(m_fromPath);
    return file.isFile() && file.size() == m_size && file.lastModified() == m_modified;
}

std::optional<ZQHTTPBody> DBUpload::contents(qint64 offset, qint64 length)
{
    ZQHTTPBody body;
    ZQError error;
    if (!isUnchanged()) {
        fail(UploadProblem::with(zqFormat(zqLocalized("“%@” was changed while it was uploaded."), {m_fromPath}),
                                 zqLocalized("Share it again.")));
        return {};
    }
    if (!body.appendFile(m_fromPath, &error, offset, length)) {
        fail(error);
        return {};
    }
    return body;
}

QJsonObject DBUpload::commit() const
{
    const QJsonValue mode = m_parentRev.isEmpty()
                                ? QJsonValue(QStringLiteral("add"))
                                : QJsonValue(QJsonObject{{QStringLiteral(".tag"), QStringLiteral("update")},
                                                         {QStringLiteral("update"), m_parentRev}});
    return {{QStringLiteral("path"), m_path},
            {QStringLiteral("mode"), mode},
            {QStringLiteral("autorename"), false},
            {QStringLiteral("mute"), true}};
}

void DBUpload::tell(qint64 sent) const
{
    if (m_size > 0) {
        const Progress progress = m_progress; // who hears of it may end this
        progress(std::clamp(double(sent) / double(m_size), 0.0, 1.0));
    }
}

void DBUpload::sendWhole()
{
    if (const auto whole = contents(0, m_size)) {
        m_calls.sendContent(
            QStringLiteral("/2/files/upload"), commit(), *whole,
            [this](const ZQHTTPResponse &response) { end(response); }, [this](qint64 sent, qint64) { tell(sent); });
    }
}

void DBUpload::beginSession()
{
    const QJsonObject argument{{QStringLiteral("close"), false}};
    m_calls.sendContent(QStringLiteral("/2/files/upload_session/start"), argument, {},
                        [this](const ZQHTTPResponse &response) {
                            m_session = DBCalls::objectOf(response).value(u"session_id").toString();
                            if (response.isWhole() && !m_session.isEmpty()) {
                                sendPiece();
                            } else if (!tryAgain(response, &DBUpload::beginSession)) {
                                fail(DBCalls::errorOf(response));
                            }
                        });
}

void DBUpload::sendPiece()
{
    const qint64 length = std::min(m_sizes.piece, m_size - m_offset);
    const QJsonObject cursor{{QStringLiteral("session_id"), m_session}, {QStringLiteral("offset"), m_offset}};
    const auto piece = contents(m_offset, length);
    if (!piece) {
        return;
    }
    m_calls.sendContent(
        QStringLiteral("/2/files/upload_session/append_v2"),
        {{QStringLiteral("cursor"), cursor}, {QStringLiteral("close"), false}}, *piece,
        [this, length](const ZQHTTPResponse &response) {
            if (response.isWhole()) {
                m_offset += length;
                m_furthest = std::max(m_furthest, m_offset);
                m_failures = 0;
                m_offset < m_size ? sendPiece() : finishSession();
            } else if (!goOnElsewhere(response) && !tryAgain(response, &DBUpload::sendPiece)) {
                fail(DBCalls::errorOf(response));
            }
        },
        [this](qint64 sent, qint64) { tell(m_offset + sent); });
}

void DBUpload::finishSession()
{
    const QJsonObject cursor{{QStringLiteral("session_id"), m_session}, {QStringLiteral("offset"), m_size}};
    const QJsonObject argument{{QStringLiteral("cursor"), cursor}, {QStringLiteral("commit"), commit()}};
    m_calls.sendContent(
        QStringLiteral("/2/files/upload_session/finish"), argument, {}, [this](const ZQHTTPResponse &response) {
            if (response.isWhole() || (!goOnElsewhere(response) && !tryAgain(response, &DBUpload::finishSession))) {
                end(response);
            }
        });
}

bool DBUpload::goOnElsewhere(const ZQHTTPResponse &response)
{
    const qint64 offset = correctOffset(response);
    if (response.statusCode != 409 || offset < 0 || offset > m_size) {
        return false;
    }
    if (offset > m_furthest) {
        m_furthest = offset;
        m_failures = 0;
    } else if (++m_failures >= mostFailures) {
        return false; // it says so again and again
    }
    m_offset = offset;
    m_offset < m_size ? sendPiece() : finishSession();
    return true;
}

bool DBUpload::tryAgain(const ZQHTTPResponse &response, void (DBUpload::*step)())
{
    if (!mayWorkNextTime(response) || ++m_failures >= mostFailures) {
        return false;
    }
    m_pause.disconnect();
    QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this, step] { (this->*step)(); });
    m_pause.start(m_sizes.pause);
    return true;
}

void DBUpload::end(const ZQHTTPResponse &response)
{
    const QJsonObject metadata = DBCalls::objectOf(response);
    if (response.isWhole() && !metadata.isEmpty()) {
        if (const Done done = std::exchange(m_done, nullptr)) {
            done(metadata.toVariantMap(), {});
        }
    } else {
        fail(DBCalls::errorOf(response));
    }
}

void DBUpload::fail(const ZQError &error)
{
    if (const Done done = std::exchange(m_done, nullptr)) {
        done({}, error);
    }
}
