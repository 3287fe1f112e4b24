#include "Classes/Application/RemovalNote.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

RemovalNote::RemovalNote(QString path, QString library) : m_path(std::move(path)), m_library(std::move(library)) {}

QStringList RemovalNote::names() const
{
    constexpr qint64 largestNote = qint64(256) << 20;
    const auto note = zqReadRegularFile(m_path, largestNote, nullptr, O_NOFOLLOW);
    if (!note) {
        return {};
    }
    QStringList names = QString::fromUtf8(*note).split(u'\n', Qt::SkipEmptyParts);
    names.removeIf([](const QString &name) { return name.startsWith(u'.') || name.contains(u'/'); });
    return names;
}

bool RemovalNote::isPresent(const QString &name) const
{
    return QFileInfo(m_library + u'/' + name).isDir();
}

QStringList RemovalNote::present() const
{
    QStringList present = names();
    present.removeIf([this](const QString &name) { return !isPresent(name); });
    return present;
}

void RemovalNote::write(const QStringList &names) const
{
    ZQError error;
    if (names.isEmpty()) {
        QFile::remove(m_path);
    } else if (!zqWriteFileAtomically(m_path, names.join(u'\n').toUtf8(), &error)) {
        qCWarning(zqLogApplication).noquote() << error.localizedDescription(); // they may be taken back then
    }
}

void RemovalNote::dropWhatIsGone() const
{
    const QStringList noted = names();
    if (noted.isEmpty() || !QFileInfo(m_library).isDir()) {
        return;
    }
    const QStringList left = present();
    if (left.size() < noted.size()) {
        zqSyncFolder(m_library); // a power cut must not bring back the directories without the note
        write(left);
    }
}
