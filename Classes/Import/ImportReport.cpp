#include "Classes/Import/ImportReport.h"

QStringList ImportReport::imported() const
{
    const std::lock_guard lock(m_mutex);
    return m_imported;
}

QList<DroppedFile> ImportReport::dropped() const
{
    const std::lock_guard lock(m_mutex);
    return m_dropped;
}

QStringList ImportReport::notifications() const
{
    const std::lock_guard lock(m_mutex);
    return m_notifications;
}

void ImportReport::setImported(const QStringList &bundleIDs)
{
    const std::lock_guard lock(m_mutex);
    m_imported = bundleIDs;
}

void ImportReport::addDropped(const DroppedFile &file)
{
    const std::lock_guard lock(m_mutex);
    m_dropped.append(file);
}

void ImportReport::addNotification(const QString &text)
{
    const std::lock_guard lock(m_mutex);
    m_notifications.append(text);
}
