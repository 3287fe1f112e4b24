#pragma once

#include "Classes/Export/ExportItem.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class CloudService;
class ExportOperation;
class TemporaryFolder;
class UserProgress;
class ZQManagedObjectContext;
struct CommandContext;

// Items on their way to a service for a command: as they are, or exported into a folder that goes with this. Main
// thread.
class ShareJob
{
public:
    // Progress is shown where the command is alone; a window has its own.
    ShareJob(QList<ZQObjectID> items, std::shared_ptr<CloudService> service, const CommandContext &context);
    ~ShareJob();
    ShareJob(const ShareJob &) = delete;
    ShareJob &operator=(const ShareJob &) = delete;

    // Begins. What keeps it from that, localized; null: nothing.
    QString start(const std::optional<ExportItem> &preset, ZQManagedObjectContext &store);
    bool isDone(); // to be asked again and again: an upload follows an export, and nobody may want it any more
    void cancel();
    int finish(CommandContext &context); // prints what became of it; answers the exit status

private:
    struct Problem
    {
        QString title;
        QString reason;
    };
    QString beginExport(const ExportItem &preset);
    void takeExport();
    bool upload(const QList<CloudFile> &files);
    void showProgress(qsizetype files);
    void print(CommandContext &context) const;

    const QList<ZQObjectID> m_items;
    const std::shared_ptr<CloudService> m_service;
    const std::function<bool()> m_isAbandoned;
    const bool m_showsProgress;
    std::unique_ptr<TemporaryFolder> m_folder; // null without an export, as the next
    std::shared_ptr<ExportOperation> m_export;
    QList<Problem> m_missing; // what is not shared
    std::shared_ptr<CloudUploadResult> m_result = std::make_shared<CloudUploadResult>();
    std::shared_ptr<bool> m_isUploading = std::make_shared<bool>(false); // both outlive this, for the uploader
    quint64 m_upload = 0;                                                // 0: it has not begun
    bool m_isCancelled = false;
    QString m_refusal; // of the export; null: none
    std::shared_ptr<UserProgress> m_progress;
    ZQNotificationCenter::Token m_progressObserver;
    double m_shown = 0;
};
