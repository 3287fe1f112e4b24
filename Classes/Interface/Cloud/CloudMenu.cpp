#include "Classes/Interface/Cloud/CloudMenu.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Interface/Cloud/CloudButton.h"
#include "Classes/Sharing/CloudMenuViewController.h"
#include "Classes/Sharing/CloudService.h"
#include "Classes/Sharing/CloudServices.h"
#include "Classes/Sharing/CloudUploader.h"
#include "Classes/Sharing/HumanizedTime.h"
#include "Classes/Sharing/LatestUploads.h"
#include "Classes/Sharing/WebBrowser.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPainter>
#include <QStyleOptionMenuItem>
#include <QUrl>
#include <QWidgetAction>

#include <chrono>

namespace {

constexpr int menuWidth = 320;
constexpr int nameWidth = 150;
constexpr int linkWidth = 130;
constexpr int rightMargin = 12;
constexpr int arrowWidth = 24;
constexpr std::chrono::milliseconds copiedTime{1500};

// What stands on the left, and what on the right: a tab parts them, and & would mark a key.
QString line(const QString &left, const QString &right)
{
    QString text = left.simplified();
    text.replace(u'&', QStringLiteral("&&"));
    return right.isEmpty() ? text : text + u'\t' + right;
}

} // namespace

class CloudMenu::Bar : public QWidget
{
public:
    explicit Bar(QWidget *parent) : QWidget(parent) {}
    QSize sizeHint() const override { return {menuWidth / 2, 12}; } // without a width a menu gives it no place
    void setFraction(double fraction)
    {
        m_fraction = fraction;
        setAccessibleName(QStringLiteral("%1 %").arg(int(fraction * 100)));
        update();
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const QRectF whole(10, 2, width() - 20, 4);
        painter.setBrush(zqColor(ZQColorRole::Border));
        painter.drawRoundedRect(whole, 2, 2);
        painter.setBrush(zqColor(ZQColorRole::Accent));
        painter.drawRoundedRect(QRectF(whole.topLeft(), QSizeF(whole.width() * m_fraction, whole.height())), 2, 2);
    }

private:
    double m_fraction = 0;
};

CloudMenu::CloudMenu(CloudButton &button, UserInteraction &user, QWidget *parent)
    : QMenu(parent), m_button(button), m_user(user)
{
    setObjectName(QStringLiteral("CloudMenu"));
    setAccessibleName(zqLocalized("Latest uploads"));
    setMinimumWidth(menuWidth);
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, &CloudMenu::fill);
    connect(&button, &CloudButton::progressChanged, this, &CloudMenu::showProgress);
    connect(&button, &CloudButton::uploadingChanged, this, &CloudMenu::fillSoon);
    m_token = ZQNotificationCenter::defaultCenter().addObserver(CloudMenuViewController::menuDidUpdate, nullptr,
                                                                [this](const ZQNotification &) { fillSoon(); });
    fill();
}

// What stands on the right is muted, and ends where the others do.
void CloudMenu::initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const
{
    QMenu::initStyleOption(option, action);
    option->text = option->text.section(u'\t', 0, 0);
}

void CloudMenu::paintEvent(QPaintEvent *event)
{
    QMenu::paintEvent(event);
    QPainter painter(this);
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    for (QAction *action : actions()) {
        const QString right = action->text().section(u'\t', 1);
        const bool isActive = action == activeAction() && action->isEnabled();
        painter.setPen(zqColor(isActive               ? ZQColorRole::AccentText
                               : action == m_progress ? ZQColorRole::Accent
                                                      : ZQColorRole::TextMuted));
        const QRect place = actionGeometry(action);
        painter.drawText(place.adjusted(0, 0, action->menu() ? -arrowWidth : -rightMargin, 0),
                         Qt::AlignRight | Qt::AlignVCenter, right);
    }
}

// Later: one of its entries may be what leads to it.
void CloudMenu::fillSoon()
{
    const auto fillOpen = [this] {
        if (isVisible()) {
            fill();
        }
    };
    QMetaObject::invokeMethod(this, fillOpen, Qt::QueuedConnection);
}

void CloudMenu::fill()
{
    if (m_services) {
        m_services->deleteLater();
    }
    m_progress = nullptr;
    m_bar = nullptr;
    clear();
    if (m_button.isUploading()) {
        addProgress();
    }
    addUploads();
    addSeparator();
    addServices();
    addAction(zqLocalized("Cloud preferences…"), this, &CloudMenu::preferencesRequested);
    if (isVisible()) {
        adjustSize();
    }
}

void CloudMenu::addCaption(const QString &text)
{
    auto *label = new QLabel(text, this);
    label->setObjectName(QStringLiteral("Caption"));
    label->setContentsMargins(10, 6, 10, 4);
    auto *action = new QWidgetAction(this);
    action->setText(text);
    action->setDefaultWidget(label);
    action->setEnabled(false);
    addAction(action);
}

void CloudMenu::addProgress()
{
    m_progress = addAction(QString(), &m_button, &QAbstractButton::click);
    m_progress->setToolTip(zqLocalized("Cancels what is being shared."));
    auto *bar = new QWidgetAction(this);
    m_bar = new Bar(this);
    bar->setDefaultWidget(m_bar);
    bar->setEnabled(false);
    addAction(bar);
    addSeparator();
    showProgress();
}

void CloudMenu::showProgress()
{
    if (m_progress && m_button.isUploading()) {
        m_progress->setText(line(m_button.progressText(), zqLocalized("Cancel")));
        m_bar->setFraction(m_button.filesDone() / double(m_button.totalFiles()));
    }
}

void CloudMenu::addUploads()
{
    addCaption(zqLocalized("LATEST UPLOADS"));
    const QList<LatestUpload> uploads = LatestUploads::all();
    const QString copied = QGuiApplication::clipboard()->text();
    for (const LatestUpload &upload : uploads) {
        const QString name = upload.filename.isEmpty() ? upload.url : upload.filename;
        const QString shown = fontMetrics().elidedText(name, Qt::ElideMiddle, nameWidth);
        const QString time = zqFormat(QStringLiteral("%@ · %@"),
                                      {stringWithHumanizedTimeDifference(upload.date), shortLink(upload.url)});
        QAction *action =
            addAction(ZQIcon::icon(QStringLiteral("project")),
                      line(shown, upload.url == copied ? zqFormat(zqLocalized("%@ · Copied"), {time}) : time), this,
                      [this, url = upload.url, name] { take(url, name); });
        action->setToolTip(
            zqFormat(zqLocalized("%@\nCopies the link. With Ctrl: opens it in the browser."), {upload.url}));
        action->setData(upload.url);
    }
    if (uploads.isEmpty()) {
        addAction(zqLocalized("No uploads yet"))->setEnabled(false);
    }
    if (const QStringList links = CloudUploader::sharedCloudUploader().linksOfLastUpload(); links.size() > 1) {
        QAction *all = addAction(
            zqCounted({"Copy the Link of the Last Upload", "Copy All %@ Links of the Last Upload"}, links.size()), this,
            [this, links] { takeAll(links); });
        all->setToolTip(zqLocalized("One on each line. After several files the clipboard holds the link of the last."));
    }
}

QString CloudMenu::shortLink(const QString &url) const
{
    // Without a query, and without "&", which would mark a key.
    const QString plain = url.section(QStringLiteral("://"), 1).section(u'?', 0, 0).remove(u'&');
    return fontMetrics().elidedText(plain.startsWith(u"www.") ? plain.mid(4) : plain, Qt::ElideMiddle, linkWidth);
}

void CloudMenu::takeAll(const QStringList &links)
{
    QGuiApplication::clipboard()->setText(links.join(u'\n'));
    m_user.showNotificationWithText(
        zqCounted({"1 link copied to clipboard!", "%@ links copied to clipboard!"}, links.size()),
        NotificationPlace::Window, copiedTime);
}

void CloudMenu::take(const QString &url, const QString &name)
{
    if (QGuiApplication::keyboardModifiers() & Qt::ControlModifier) {
        if (!WebBrowser::shared().open(QUrl(url))) {
            m_user.showNotificationWithText(zqLocalized("No web browser could be opened."), NotificationPlace::Window,
                                            usualNotificationTime);
        }
        return;
    }
    QGuiApplication::clipboard()->setText(url);
    m_user.showNotificationWithText(zqFormat(zqLocalized("Link to “%@” copied to clipboard!"), {name}),
                                    NotificationPlace::Window, copiedTime);
}

void CloudMenu::addServices()
{
    const CloudServices &services = CloudServices::sharedCloudServices();
    const auto inUse = services.adapterClassForUpload();
    m_services = addMenu(line(zqLocalized("Share to"), inUse ? inUse->title() : zqLocalized("Nothing")));
    QMenu *const menu = m_services;
    menu->setToolTipsVisible(true);
    auto *group = new QActionGroup(menu);
    const QString chosen = ZQUserDefaults::standardUserDefaults().stringForKey(CloudServices::choiceKey);
    const auto add = [&](const QString &title, const QString &identifier) {
        QAction *action = menu->addAction(line(title, {}), this, [this, identifier] { choose(identifier); });
        action->setCheckable(true);
        action->setChecked(identifier == chosen);
        group->addAction(action);
    };
    add(zqLocalized("Automatic"), {});
    menu->addSeparator();
    for (const auto &service : services.services()) {
        if (service->isReady()) {
            add(service->title(), service->identifier());
        } else {
            menu->addAction(line(service->title(), zqLocalized("Set up…")), this, &CloudMenu::preferencesRequested)
                ->setToolTip(service->whatIsMissing());
        }
    }
}

void CloudMenu::choose(const QString &service)
{
    ZQError error;
    if (!ZQUserDefaults::standardUserDefaults().storeObjectForKey(service, CloudServices::choiceKey, &error)) {
        m_user.presentError(error);
    }
}
