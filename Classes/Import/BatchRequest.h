#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Import/ImportWhole.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Classes/Import/UnfoldedArchive.h"
#include "Kit/Persistence/ZQObjectID.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

class ImportOperation;

// What is to be imported, and where to.
struct BatchRequest
{
    QStringList paths = {};                         // in drop order
    ZQObjectID target = {};                         // a saved sidebar item; null: the library
    quint32 index = ZQSidebarBaseItem::appendIndex; // among the target's children or items
    QVariantMap metadata = {};                      // attribute values of every item
    QVariantMap fileMetadata = {};                  // by path: attribute values of that file's item, above the others
    std::optional<UnfoldedArchive> origin = {};     // what `paths` came out of; its folder goes with the request
    std::shared_ptr<TemporaryFolder> holder = {};   // of `paths`; goes with the request, unless that is kept for later
    std::optional<DuplicateChoice> duplicates = {}; // what becomes of them; nothing: the person is asked
    std::shared_ptr<ImportWhole> whole = std::make_shared<ImportWhole>(); // that it belongs to
    std::shared_ptr<ImportPart> part = {}; // of one that came out of an archive, once it is queued
    // It asks nothing and depends on no other: imported at once, too, while another waits for an answer.
    bool goesPastQuestions = false;
    // For who waits for its end; later, on the main thread. Not for what came out of its archives. `goesOn`: it is kept
    // for another launch.
    std::function<void(const ImportOperation &operation, bool goesOn)> didEnd = {};
};
