#include "Classes/Interface/Cloud/CloudActions.h"

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Cloud/CloudButton.h"
#include "Classes/Interface/Cloud/CloudMenu.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Classes/Sharing/SecretStore.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"

CloudActions::CloudActions(WindowContext &window, BrowserViewController &browser, CloudButton &button, QObject *parent)
    : QObject(parent), m_window(window), m_browser(browser), m_button(button),
      m_menu(new CloudMenu(button, window.user, &button))
{
    m_button.setCloudMenu(m_menu);
    connect(&m_button, &QAbstractButton::clicked, this, &CloudActions::share);
    connect(&m_button, &CloudButton::presetDropped, this,
            [](const QStringList &paths) { CloudUploader::sharedCloudUploader().setFileToUploadAfterExport(paths); });
    connect(&m_button, &CloudButton::uploadingChanged, this, &CloudActions::changed);
    connect(m_menu, &CloudMenu::preferencesRequested, this, &CloudActions::preferencesRequested);
    const auto showSelection = [this] { m_button.setHasSelection(m_browser.selectionCount() > 0); };
    connect(&m_browser, &BrowserViewController::selectionChanged, this, showSelection);
    showSelection();
    follow();
}

void CloudActions::follow()
{
    const auto on = [this](const QString &name, std::function<void(const ZQNotification &)> heard) {
        m_tokens.push_back(ZQNotificationCenter::defaultCenter().addObserver(name, nullptr, std::move(heard)));
    };
    const auto number = [](const ZQNotification &said) { return said.userInfo.value(CloudUploader::numberKey); };
    on(CloudUploader::didStart,
       [this, number](const ZQNotification &said) { m_button.uploadDidStart(number(said).toLongLong()); });
    on(CloudUploader::didUpdate,
       [this, number](const ZQNotification &said) { m_button.uploadDidUpdate(number(said).toDouble()); });
    on(SecretStore::waitingDidChange,
       [this](const ZQNotification &) { m_button.setIsWaiting(SecretStore::isWaiting()); });
    on(CloudUploader::preferencesRequested, [this](const ZQNotification &) { Q_EMIT preferencesRequested(); });
    on(CloudUploader::didFinish, [this](const ZQNotification &) { m_button.uploadDidFinish(); });
}

void CloudActions::share()
{
    QList<ZQRef<ZQLibraryBaseItem>> items;
    if (!m_button.isUploading()) {
        items = ZQLibraryBaseItem::itemsWithIDs(m_browser.selectedItems(), m_window.context);
        ZQLibraryBaseItem::lookForFiles(items);
    }
    CloudUploader::sharedCloudUploader().uploadLibrayItems(items);
}

QList<WindowCommand> CloudActions::commands()
{
    return {
        {.id = CommandID::Share,
         .title = zqLocalized("Share"),
         .keys = {Qt::CTRL | Qt::SHIFT | Qt::Key_C},
         .run = [this] { share(); },
         .isEnabled = [this] { return m_button.isUploading() || m_browser.selectionCount() > 0; },
         .shown = [this] { return m_button.isUploading() ? zqLocalized("Cancel Sharing") : zqLocalized("Share"); }},
        {.id = CommandID::LatestUploads,
         .title = zqLocalized("Latest Uploads…"),
         .keys = {},
         .run = [this] { m_button.showCloudMenu(); }},
    };
}
