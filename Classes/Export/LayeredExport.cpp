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
    LayeredDocument::Gaps gaps;
    const QSize canvas = LayeredDocument::largestSize(m_pictures, &gaps.leftOut);
    if (isCancelled()) {
        return;
    }
    if (m_pictures.isEmpty()) {
        tellOfError(ZQError::with(LayeredDocument::errorDomain, LayeredDocument::CannotRead,
                                  zqLocalized("None of these can be read as a picture."), gaps.leftOut.join(u'\n')));
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
    const bool isWritten = LayeredDocument::write(m_pictures, canvas, m_path, m_replaces, didAdd, &error, &gaps);
    m_progress.reset();
    if (isWritten) {
        tell(gaps);
    } else if (!isCancelled()) {
        tellOfError(error);
    }
}

void LayeredExport::tell(const LayeredDocument::Gaps &gaps)
{
    const QString name = QFileInfo(m_path).fileName();
    constexpr qsizetype mostTold = 20;
    QStringList lines = gaps.leftOut + gaps.incomplete;
    if (const qsizetype more = lines.size() - mostTold; more > 0) {
        lines.resize(mostTold);
        lines.append(zqFormat(zqLocalized("and %d more"), {more}));
    }
    if (!lines.isEmpty()) {
        const QString format = gaps.leftOut.isEmpty()
                                   ? zqLocalized("“%@” was written, but pictures in it are incomplete.")
                                   : zqLocalized("“%@” was written without what can't be read as a picture.");
        tellOfError(ZQError::with(LayeredDocument::errorDomain, LayeredDocument::CannotRead, zqFormat(format, {name}),
                                  lines.join(u'\n')));
        return;
    }
    const qsizetype layers = m_pictures.size();
    const QString text = layers == 1 ? zqFormat(zqLocalized("“%@” was written with one layer"), {name})
                                     : zqFormat(zqLocalized("“%@” was written with %d layers"), {name, layers});
    zqOnMainThread([&user = m_user, text] {
        user.showNotificationWithText(text, NotificationPlace::Browser, usualNotificationTime);
    });
}

void LayeredExport::tellOfError(const ZQError &error)
{
    zqOnMainThread([&user = m_user, error] { user.presentError(error); });
}
