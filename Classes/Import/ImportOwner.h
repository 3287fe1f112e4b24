#pragma once

#include <memory>

class ImportOperation;
class ImportWhole;
class PendingImportFile;
struct BatchRequest;
struct UnfoldedArchive;
struct ZQContextDidSave;

// What a batch asks of whoever started it, which outlives it. Main thread, except where stated.
class ImportOwner
{
public:
    virtual ~ImportOwner() = default;
    // Brings a background save into the main context and saves that.
    virtual void mergeChanges(const ZQContextDidSave &notification) = 0;
    // The answer runs, or waits for its turn, on the background queue; its report is complete when it has finished.
    // Null without a library, which the person is told.
    virtual std::shared_ptr<ImportOperation> startImport(const BatchRequest &request) = 0;
    // A request goes on, as a part of `whole`, with what came out of its archive, which was unpacked again. Null
    // without a library, or when that could not be noted.
    virtual std::shared_ptr<ImportOperation> resumeImportOfArchive(const UnfoldedArchive &archive,
                                                                   const std::shared_ptr<PendingImportFile> &pending,
                                                                   const std::shared_ptr<ImportWhole> &whole) = 0;
    // Whether a cancel is no decision of the person's, so that the request is kept for the next launch. Any thread.
    virtual bool keepsCancelledImports() const = 0;
};
