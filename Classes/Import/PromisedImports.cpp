#include "Classes/Import/PromisedImports.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/ImportOwner.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QMimeData>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds timeBetweenLooks{100};

void tellOfBrokenPromise(const QString &name, PromisedFiles::State state)
{
    const QString text =
        state == PromisedFiles::State::Refused
            ? zqLocalized("The other program did not save “%@”. Save it there as a file, and drop that here.")
            : zqLocalized("“%@” did not come from the other program. Save it there as a file, and drop that here.");
    tamberin_AppDelegate::sharedDelegate()->userInteraction().showNotificationWithText(
        zqFormat(text, {name}), NotificationPlace::Browser, 2 * usualNotificationTime);
}

} // namespace

PromisedImports::PromisedImports(ImportOwner &owner, PromiseSourceMaker makeSource)
    : m_owner(owner), m_makeSource(std::move(makeSource))
{
    m_timer.setInterval(timeBetweenLooks);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
}

bool PromisedImports::isPromised(const QMimeData &data) const
{
    return m_makeSource && !PromisedFiles::formatIn(data).isEmpty();
}

bool PromisedImports::start(const QMimeData &data, const ZQObjectID &target, quint32 index)
{
    auto source = isPromised(data) ? m_makeSource(PromisedFiles::formatIn(data)) : nullptr;
    if (!source) {
        return false;
    }
    const QString folder = TemporaryFolder::temporaryDirectory();
    if (folder.isEmpty()) {
        return true; // the person knows
    }
    Drop drop;
    drop.files = std::make_unique<PromisedFiles>(std::move(source), folder);
    drop.request = {.target = target, .index = index, .metadata = PromisedFiles::metadataFrom(data)};
    keepPicture(drop, data);
    m_drops.push_back(std::move(drop));
    m_timer.start();
    return true;
}

// The data of a drag can be asked for during the drop only.
void PromisedImports::keepPicture(Drop &drop, const QMimeData &data)
{
    if (!PasteboardFiles::hasContent(data)) {
        return;
    }
    drop.otherwise = PasteboardFiles::filesFromMimeData(&data, [&drop] {
        const QString folder = TemporaryFolder::temporaryDirectory();
        drop.folderOfOtherwise = folder.isEmpty() ? nullptr : std::make_unique<TemporaryFolder>(folder);
        return folder;
    });
}

// What is begun here may show a sheet, below which the timer goes on.
void PromisedImports::look()
{
    std::vector<std::pair<Drop, PromisedFiles::State>> ended;
    for (auto drop = m_drops.begin(); drop != m_drops.end();) {
        const PromisedFiles::State state = drop->files->look();
        if (state == PromisedFiles::State::Awaited) {
            ++drop;
            continue;
        }
        ended.emplace_back(std::move(*drop), state);
        drop = m_drops.erase(drop);
    }
    if (m_drops.empty()) {
        m_timer.stop();
    }
    for (auto &[drop, state] : ended) {
        end(drop, state);
    }
}

void PromisedImports::end(Drop &drop, PromisedFiles::State state)
{
    if (state == PromisedFiles::State::Here) {
        drop.request.paths = drop.files->take();
        m_owner.startImport(drop.request);
        return;
    }
    qCInfo(zqLogImport).noquote() << "The promised file" << drop.files->name() << "was"
                                  << (state == PromisedFiles::State::Refused ? "not saved" : "awaited in vain");
    if (drop.otherwise.paths.isEmpty()) {
        tellOfBrokenPromise(drop.files->name(), state);
        return;
    }
    drop.request.paths = drop.otherwise.paths;
    drop.request.metadata = drop.otherwise.metadata;
    if (drop.folderOfOtherwise) {
        drop.folderOfOtherwise->keep();
    }
    m_owner.startImport(drop.request);
}
