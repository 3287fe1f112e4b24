#include "Classes/Export/LayeredExport.h"

#include "Classes/Application/UserInteraction.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QFileInfo>

#include <utility>

LayeredExport::LayeredExport(QList<LayeredPicture> pictures, QString path, bool replaces, UserInteraction &user)
    : m_pictures(std::move(pictures)), m_path(std::move(path)), m_replaces(replaces), m_user(user)
{
}

void LayeredExport::begin(const QList<LayeredPicture> &pictures, const QString &path, bool replaces,
                          UserInteraction &user, ZQOperationQueue &queue)
{
    const auto operation = std::make_shared<LayeredExport>(pictures, path, replaces, user);
    operation->m_progress = user.beginProgress(zqLocalized("Exporting layers…"), double(pictures.size()),
                                               [weak = operation->weak_from_this()] {
                                                   if (const auto running = weak.lock()) {
                                                       running->cancel();
                                                   }
                                               });
    queue.addOperation(operation);
}

void LayeredExport::main()
{
    QStringList leftOut;
    const QSize canvas = LayeredDocument::largestSize(m_pictures, &leftOut);
    if (isCancelled()) {
        return;
    }
    if (m_pictures.isEmpty()) {
        tellOfError(ZQError::with(LayeredDocument::errorDomain, LayeredDocument::CannotRead,
                                  zqLocalized("None of these can be read as a picture."), leftOut.join(u'\n')));
        return;
    }
    if (m_progress) {
        m_progress->setMaximum(double(m_pictures.size()));
    }
    const auto didAdd = [this] {
        if (m_progress) {
            m_progress->advanceBy(1);
        }
    };
    ZQError error;
    const bool isWritten = LayeredDocument::write(m_pictures, canvas, m_path, m_replaces, didAdd, &error);
    m_progress.reset();
    if (isWritten) {
        tell(leftOut);
    } else if (!isCancelled()) {
        tellOfError(error);
    }
}

void LayeredExport::tell(const QStringList &leftOut)
{
    const QString name = QFileInfo(m_path).fileName();
    if (!leftOut.isEmpty()) {
        tellOfError(
            ZQError::with(LayeredDocument::errorDomain, LayeredDocument::CannotRead,
                          zqFormat(zqLocalized("“%@” was written without what can't be read as a picture."), {name}),
                          leftOut.join(u'\n')));
        return;
    }
    const QString text = m_pictures.size() == 1
                             ? zqFormat(zqLocalized("“%@” was written with one layer"), {name})
                             : zqFormat(zqLocalized("“%@” was written with %d layers"), {name, m_pictures.size()});
    zqOnMainThread([&user = m_user, text] {
        user.showNotificationWithText(text, NotificationPlace::Browser, usualNotificationTime);
    });
}

void LayeredExport::tellOfError(const ZQError &error)
{
    zqOnMainThread([&user = m_user, error] { user.presentError(error); });
}
