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

void ImportReport::addDropped(const DroppedFile &file)
{
    const ZQLockGuard lock(m_mutex);
    DroppedFile shown = file;
    QString &path = shown.path;
    if (!m_originFolder.isEmpty() && (path == m_originFolder || path.startsWith(m_originFolder + u'/'))) {
        path.replace(0, m_originFolder.size(), m_originShownAs);
    }
    if (m_incomplete.remove(path)) {
        m_dropped.removeIf([&path](const DroppedFile &earlier) { return earlier.path == path; });
    }
    if (shown.telling == DroppedFile::Telling::InWindowIncomplete) {
        m_incomplete.insert(path);
    }
    m_dropped.append(shown);
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
