#include "Classes/Interface/Preferences/CloudPane.h"

#include "Classes/Interface/Preferences/CloudAppPage.h"
#include "Classes/Interface/Preferences/DescriptionsPage.h"
#include "Classes/Interface/Preferences/DropboxPage.h"
#include "Classes/Interface/Preferences/ImgurPage.h"
#include "Classes/Interface/Preferences/OwnServerPage.h"
#include "Classes/Sharing/CloudServices.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQSwitch.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QStackedWidget>

CloudPane::CloudPane(UserInteraction &user, QWidget *parent)
    : PreferencesPane(zqLocalized("Cloud"), parent), m_service(new QComboBox(this)), m_inUse(new QLabel(this)),
      m_missing(new QLabel(this)), m_pages(new QStackedWidget(this))
{
    addService();
    addAccounts({new CloudAppPage(user), new DropboxPage(user), new ImgurPage, new OwnServerPage(user),
                 new DescriptionsPage(user)});
    setShown(CloudServices::choiceKey, [this] { showServices(); });
}

void CloudPane::addService()
{
    m_service->setObjectName(QStringLiteral("Service"));
    m_service->setAccessibleName(zqLocalized("Share to"));
    auto *label = new QLabel(zqLocalized("&Share to"), this);
    label->setObjectName(QStringLiteral("Muted"));
    label->setBuddy(m_service);
    auto *row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(label);
    row->addWidget(m_service, 1);
    column()->addSpacing(6);
    column()->addLayout(row);
    m_inUse->setObjectName(QStringLiteral("SmallMuted"));
    m_missing->setObjectName(QStringLiteral("Problem"));
    for (QLabel *each : {m_inUse, m_missing}) {
        each->setTextFormat(Qt::PlainText);
        each->setWordWrap(true);
        column()->addWidget(each);
    }
    connect(m_service, &QComboBox::activated, this, &CloudPane::choose);
}

void CloudPane::addAccounts(const QList<CloudAccountPage *> &pages)
{
    QStringList titles;
    for (CloudAccountPage *page : pages) {
        titles.append(page->title());
        m_pages->addWidget(page);
        connect(page, &CloudAccountPage::refused, this, &PreferencesPane::refused);
        connect(page, &CloudAccountPage::changed, this, &CloudPane::showServices);
        connect(page, &CloudAccountPage::useRequested, this, &CloudPane::use);
    }
    m_switch = new ZQSwitch(titles, this);
    addHeading(zqLocalized("ACC&OUNTS"), m_switch);
    column()->addWidget(m_switch);
    column()->addWidget(m_pages);
    connect(m_switch, &ZQSwitch::currentIndexChanged, m_pages, &QStackedWidget::setCurrentIndex);
    QHash<QString, QList<CloudAccountPage *>> interested;
    for (CloudAccountPage *page : pages) {
        for (const QString &key : page->preferences()) {
            interested[key].append(page);
        }
    }
    for (auto each = interested.constBegin(); each != interested.constEnd(); ++each) {
        setShown(each.key(), [this, pagesToTell = each.value()] {
            for (CloudAccountPage *page : pagesToTell) {
                page->refresh();
            }
            showServices();
        });
    }
    if (const auto inUse = CloudServices::sharedCloudServices().adapterClassForUpload()) {
        showPage(inUse->identifier());
    }
}

CloudAccountPage *CloudPane::page(const QString &service) const
{
    for (int i = 0; i < m_pages->count(); ++i) {
        auto *const page = static_cast<CloudAccountPage *>(m_pages->widget(i));
        if (service.section(u':', 0, 0) == page->service()) {
            return page;
        }
    }
    return nullptr;
}

void CloudPane::showPage(const QString &service)
{
    if (CloudAccountPage *const shown = page(service)) {
        m_switch->setCurrentIndex(m_pages->indexOf(shown));
    }
}

void CloudPane::showServices()
{
    const CloudServices &services = CloudServices::sharedCloudServices();
    const QString chosen = ZQUserDefaults::standardUserDefaults().stringForKey(CloudServices::choiceKey);
    const QSignalBlocker blocker(m_service);
    m_service->clear();
    m_service->addItem(zqLocalized("Automatic"), QString());
    for (const auto &service : services.services()) {
        m_service->addItem(service->title(), service->identifier());
    }
    int index = m_service->findData(chosen);
    if (index < 0) {
        index = m_service->count();
        m_service->addItem(zqFormat(zqLocalized("%@ (gone)"), {chosen}), chosen);
    }
    m_service->setCurrentIndex(index);

    const auto inUse = services.adapterClassForUpload();
    m_inUse->setVisible(chosen.isEmpty());
    m_inUse->setText(
        zqFormat(zqLocalized("The first of these that is set up: CloudApp, Dropbox, Imgur, your own server, "
                             "the others. Now: %@."),
                 {inUse ? inUse->title() : zqLocalized("nothing")}));
    m_missing->setVisible(!inUse || !inUse->isReady());
    for (int i = 0; i < m_pages->count(); ++i) {
        static_cast<CloudAccountPage *>(m_pages->widget(i))->showUse(inUse ? inUse->identifier() : QString());
    }
    m_missing->setText(
        inUse ? zqFormat(zqLocalized("%@ is not set up yet: its part below says what it needs."), {inUse->title()})
              : zqLocalized("The service that was chosen is not there any more. Choose another one."));
}

void CloudPane::choose(int index)
{
    use(m_service->itemData(index).toString());
}

void CloudPane::use(const QString &service)
{
    if (store(service, CloudServices::choiceKey)) {
        showPage(service);
    }
    showServices();
}
