#pragma once

#include "Classes/Export/LayeredDocument.h"
#include "Kit/Operations/ZQOperation.h"

class UserInteraction;
class UserProgress;
class ZQOperationQueue;

// Writes assets as the layers of one document, the first at the bottom, on a canvas as large as the largest of them.
// Those that are no pictures, or prove to be damaged, are left out; of what is incomplete the part that is there goes
// in. Both are named at the end. Cancelled, it leaves nothing.
class LayeredExport : public ZQOperation
{
public:
    // Shows progress and puts the export on the queue. `user` outlives it. Main thread.
    static void begin(const QList<LayeredPicture> &pictures, const QString &path, bool replaces, UserInteraction &user,
                      ZQOperationQueue &queue);

    LayeredExport(QList<LayeredPicture> pictures, QString path, bool replaces, UserInteraction &user);
    void main() override;

private:
    void tell(const LayeredDocument::Gaps &gaps);
    void tellOfError(const ZQError &error);

    QList<LayeredPicture> m_pictures;
    QString m_path;
    bool m_replaces;
    UserInteraction &m_user;
    std::shared_ptr<UserProgress> m_progress; // null for none
};
