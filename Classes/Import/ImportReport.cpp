#include "Classes/Import/ImportReport.h"

QStringList ImportReport::imported() const
{
    const ZQLockGuard lock(m_mutex);
    return m_imported;
}

QList<DroppedFile> ImportReport::dropped() const
{
    const ZQLockGuard lock(m_mutex);
    return m_dropped;
}

QStringList ImportReport::notifications() const
{
    const ZQLockGuard lock(m_mutex);
    return m_notifications;
}

void ImportReport::setImported(const QStringList &bundleIDs)
{
    const ZQLockGuard lock(m_mutex);
    m_imported = bundleIDs;
}

void ImportReport::setOrigin(const QString &folder, const QString &shownAs)
{
    const ZQLockGuard lock(m_mutex);
    m_originFolder = folder;
    m_originShownAs = shownAs;
}

QString ImportReport::shown(const QString &path) const
{
    const bool isInOrigin =
        !m_originFolder.isEmpty() && (path == m_originFolder || path.startsWith(m_originFolder + u'/'));
    return isInOrigin ? m_originShownAs + path.mid(m_originFolder.size()) : path;
}

QString ImportReport::shownPath(const QString &path) const
{
    const ZQLockGuard lock(m_mutex);
    return shown(path);
}

void ImportReport::addDropped(const DroppedFile &file)
{
    const ZQLockGuard lock(m_mutex);
    const QString path = shown(file.path);
    if (m_incomplete.remove(path)) {
        m_dropped.removeIf([&path](const DroppedFile &earlier) { return earlier.path == path; });
    }
    if (file.telling == DroppedFile::Telling::InWindowIncomplete) {
        m_incomplete.insert(path);
    }
    m_dropped.append({path, file.reason, file.telling});
}

void ImportReport::addNotification(const QString &text)
{
    const ZQLockGuard lock(m_mutex);
    m_notifications.append(text);
}

bool ImportReport::isUnfinished() const
{
    const ZQLockGuard lock(m_mutex);
    return m_isUnfinished;
}

void ImportReport::setUnfinished()
{
    const ZQLockGuard lock(m_mutex);
    m_isUnfinished = true;
}
