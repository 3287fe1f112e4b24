#pragma once

#include "Classes/Import/BatchRequest.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Classes/Import/PromisedFiles.h"

#include <QTimer>

#include <memory>
#include <vector>

class ImportOwner;
class QMimeData;

// The drops whose files other programs have promised: waits for them beside the window, then has them imported where
// they were dropped. When a promise is not kept, the picture that came with the same drag is imported instead, and
// without one the person is told. What is awaited when this goes is given up.
//
// Main thread.
class PromisedImports
{
public:
    // An empty `makeSource`: nothing is promised here.
    PromisedImports(ImportOwner &owner, PromiseSourceMaker makeSource);

    bool isPromised(const QMimeData &data) const; // asks nobody
    // From a drop, while its event is handled. False when nothing is promised.
    bool start(const QMimeData &data, const ZQObjectID &target, quint32 index);
    qsizetype count() const { return qsizetype(m_drops.size()); } // that are awaited

private:
    struct Drop
    {
        std::unique_ptr<PromisedFiles> files;
        BatchRequest request; // but for the paths
        PasteboardFiles otherwise;
        std::unique_ptr<TemporaryFolder> folderOfOtherwise; // null: there is nothing
    };

    static void keepPicture(Drop &drop, const QMimeData &data);
    void look();
    void end(Drop &drop, PromisedFiles::State state);

    ImportOwner &m_owner;
    const PromiseSourceMaker m_makeSource;
    std::vector<Drop> m_drops;
    QTimer m_timer;
};
