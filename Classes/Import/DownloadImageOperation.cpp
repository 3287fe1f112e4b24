#include "Classes/Import/DownloadImageOperation.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/BatchRequest.h"
#include "Classes/Import/ImageAddress.h"
#include "Classes/Import/ImageFetch.h"
#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportOwner.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Network/ZQDataAddress.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <algorithm>

namespace {

const QString imageUrlKey = QStringLiteral("imageUrl");
const QString imagePathKey = QStringLiteral("imagePath");
constexpr qsizetype longestAddress = 300; // that is shown or logged

tamberin_AppDelegate &application()
{
    return *tamberin_AppDelegate::sharedDelegate();
}

// A project that was made for an import which brought nothing into it, as when the person cancelled; not one that
// somebody has put something into, or named, since.
void takeBackIfEmpty(const ZQObjectID &id, const QString &title)
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    ZQManagedObjectContext *const context = delegate ? delegate->managedObjectContext() : nullptr;
    const auto project = context ? zqCast<ZQSidebarProject>(context->objectWithID(id)) : ZQRef<ZQSidebarProject>();
    if (project && !project->isDeleted() && project->title() == title && project->numberOfItems() == 0 &&
        project->projectItems().isEmpty() && project->childs().isEmpty()) {
        project->deletePermanently();
        delegate->saveAction();
    }
}

// By its content; empty for what is no picture.
QString extensionOfPicture(const QString &path)
{
    const QString type = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchContent).name();
    return type.startsWith(u"image/") ? zqExtensionForContentType(type) : QString();
}

bool isPage(const QString &path)
{
    const QString type = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchContent).name();
    return type == u"text/html" || type == u"application/xhtml+xml";
}

} // namespace

DownloadImageOperation::DownloadImageOperation(const ImageDownloadRequest &request, ImportOwner &owner)
    : m_request(request), m_owner(owner)
{
}

DownloadImageOperation::~DownloadImageOperation() = default;

void DownloadImageOperation::beginProgress()
{
    m_progress = application().userInteraction().beginProgress(zqLocalized("Downloading images"),
                                                               double(images().size()), [weak = weak_from_this()] {
                                                                   if (const auto operation = weak.lock()) {
                                                                       operation->cancel();
                                                                   }
                                                               });
}

void DownloadImageOperation::main()
{
    const QString directory = TemporaryFolder::temporaryDirectory();
    if (directory.isEmpty()) {
        m_failures.append({pageUrl(), zqNetworkError(ZQNetworkErrorCode::CannotWrite,
                                                     zqLocalized("There is no folder to download into."))});
        finish();
        return;
    }
    m_folder = std::make_unique<TemporaryFolder>(directory);
    const auto didReceive = [this](double part) {
        constexpr double leastStep = 0.01; // each is drawn
        if (part >= m_shownPart + leastStep) {
            moveProgress(part);
        }
    };
    ImageFetch fetch(pageUrl(), m_request.asker, {.didReceive = didReceive});
    for (const QString &imageUrl : images()) {
        download(fetch, imageUrl);
        moveProgress(1.0);
        m_shownPart = 0;
        if (isCancelled()) {
            break;
        }
    }
    if (!isCancelled()) {
        zqOnMainThreadAndWait([this] { massDownloadEnded(); });
    }
    finish();
}

void DownloadImageOperation::moveProgress(double part)
{
    if (m_progress) {
        m_progress->advanceBy(part - m_shownPart);
    }
    m_shownPart = part;
}

// Every image has its name from its address; the second of a name lies in a folder of its own.
QString DownloadImageOperation::freePath(const QString &name) const
{
    QString path = m_folder->path() + u'/' + name;
    for (int number = 2; QFileInfo::exists(path); ++number) {
        const QString folder = m_folder->path() + u'/' + QString::number(number);
        path = QDir().mkpath(folder) ? folder + u'/' + name : folder;
    }
    return path;
}

void DownloadImageOperation::download(ImageFetch &fetch, const QString &imageUrl)
{
    QString path = freePath(safeFileNameFromUrl(imageUrl));
    const auto response = fetch.fetch(imageUrl, path);
    ZQError error = response.error;
    if (error.isNull() && isPage(path)) { // whatever the server calls it
        error = zqNetworkError(ZQNetworkErrorCode::UnwantedType,
                               zqLocalized("The server sent a page of text in place of the picture."));
        QFile::remove(path);
    }
    if (error.isNull()) {
        fixExtension(path, QString::fromLatin1(response.header("Content-Type")));
        if (!ImportQueries::fileAtPathIsSupported(path)) {
            error = zqNetworkError(ZQNetworkErrorCode::UnwantedType, zqLocalized("It is no picture that can be "
                                                                                 "imported."));
            QFile::remove(path); // not only when all the others have come, too
        }
    }
    if (error.isNull()) {
        m_filesToImport.append({{imageUrlKey, imageUrl}, {imagePathKey, path}});
        return;
    }
    qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("IMPORT EXTENSION DOWNLOAD ERROR ->%@"),
                                                 {error.localizedDescription()});
    m_failures.append({imageUrl, error});
}

void DownloadImageOperation::fixExtension(QString &path, const QString &contentType) const
{
    if (ImportQueries::fileAtPathIsSupported(path)) {
        return;
    }
    QString extension = zqExtensionForContentType(contentType);
    if (!ImportQueries::fileAtPathIsSupported(path + u'.' + extension)) { // plain bytes, as many servers say
        extension = extensionOfPicture(path);
    }
    if (extension.isEmpty()) {
        return;
    }
    QFile file(path);
    const QString renamed = freePath(QFileInfo(path).fileName() + u'.' + extension);
    if (file.rename(renamed)) { // never over another one
        path = renamed;
    } else {
        qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("RENAMING FROM EXTENSION ERROR ->%@"),
                                                     {file.errorString()});
    }
}

QString DownloadImageOperation::titleOfNewProject() const
{
    const QString title = pageTitle().trimmed();
    return title.isEmpty() ? zqLocalized("New Project") : title;
}

// Of the main context: it has to be in the store before the import looks for it.
ZQObjectID DownloadImageOperation::newProject() const
{
    ZQManagedObjectContext &context = *application().managedObjectContext();
    const auto label = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context);
    if (!label) {
        return {};
    }
    const auto project = context.insertNewObject<ZQSidebarProject>();
    project->setTitle(titleOfNewProject());
    label->appendChild(project.get());
    application().saveAction();
    return project->objectID();
}

void DownloadImageOperation::massDownloadEnded()
{
    if (isCancelled() || m_filesToImport.isEmpty() || !application().managedObjectContext()) {
        return;
    }
    BatchRequest request;
    request.target = importAll().isEmpty() ? ZQObjectID() : newProject();
    for (const QVariantMap &file : std::as_const(m_filesToImport)) {
        const QString path = file.value(imagePathKey).toString();
        const QString imageUrl = file.value(imageUrlKey).toString();
        QVariantMap metadata;
        if (!pageUrl().isEmpty()) {
            metadata.insert(QStringLiteral("webPageURL"), pageUrl());
        }
        if (!ZQDataAddress::isOne(imageUrl)) { // such an address is the picture itself, and as long
            const bool isRelative = QUrl(imageUrl).isRelative();
            metadata.insert(QStringLiteral("webURL"),
                            isRelative ? urlOfImage(imageUrl, pageUrl()).toString() : imageUrl);
        }
        request.paths.append(path);
        request.fileMetadata.insert(path, metadata);
    }
    if (!request.target.isNull()) {
        request.didEnd = [project = request.target, title = titleOfNewProject()](const ImportOperation &ended,
                                                                                 bool goesOn) {
            if (!goesOn && ended.followUps().isEmpty()) { // archives bring theirs later
                takeBackIfEmpty(project, title);
            }
        };
    }
    request.holder = std::move(m_folder); // the import takes the files from there, also after a restart
    m_importOperation = m_owner.startImport(request);
}

void DownloadImageOperation::finish()
{
    m_progress.reset();
    m_folder.reset();
}

bool DownloadImageOperation::lacksPage() const
{
    return pageUrl().isEmpty() && std::any_of(m_failures.begin(), m_failures.end(), [](const Failure &failure) {
               return zqIsNetworkError(failure.error, ZQNetworkErrorCode::NotAllowed);
           });
}

ZQError DownloadImageOperation::errorOfFailures() const
{
    constexpr qsizetype mostTold = 8;
    if (m_failures.isEmpty() || isCancelled()) {
        return {};
    }
    QStringList lines;
    for (const Failure &failure : m_failures.first(std::min(mostTold, m_failures.size()))) {
        lines.append(zqFormat(zqLocalized("“%@”: %@"),
                              {zqShortened(failure.imageUrl, longestAddress), failure.error.localizedDescription()}));
    }
    if (m_failures.size() > mostTold) {
        lines.append(zqFormat(zqLocalized("and %d more"), {int(m_failures.size() - mostTold)}));
    }
    return ZQError::with(QStringLiteral("zelto.import"), 8,
                         zqFormat(zqLocalized("%d of %d images could not be downloaded:"),
                                  {int(m_failures.size()), int(images().size())}),
                         lines.join(u'\n'));
}
