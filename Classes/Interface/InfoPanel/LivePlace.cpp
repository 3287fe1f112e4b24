#include "Classes/Interface/InfoPanel/LivePlace.h"

#include "Classes/Interface/Sidebar/LiveFolderActions.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr int iconSide = 12;
constexpr int besideText = iconSide + 10; // the icon, its gap and the border

QString shownPath(const QString &path)
{
    const QString home = QDir::homePath();
    return home.size() > 1 && path.startsWith(home + u'/') ? u'~' + path.mid(home.size()) : path;
}

} // namespace

LivePlace::LivePlace(QWidget *parent) : QToolButton(parent)
{
    setObjectName(QStringLiteral("LivePlace"));
    setIcon(ZQIcon::icon(QStringLiteral("live"), ZQColorRole::Accent));
    setIconSize({iconSide, iconSide});
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(this, &QToolButton::clicked, this,
            [this] { LiveFolderActions::reveal(m_isFolder ? m_path : QFileInfo(m_path).absolutePath()); });
    hide();
}

void LivePlace::setPath(const QString &path, bool isFolder)
{
    m_path = path;
    m_isFolder = isFolder;
    setToolTip(path + u'\n' + zqLocalized("Show in Files"));
    setAccessibleName(zqFormat(zqLocalized("In a live folder: %@"), {path}));
    setAccessibleDescription(zqLocalized("Show in Files"));
    elide();
    setVisible(!path.isEmpty());
}

void LivePlace::elide()
{
    // What a path means to a button is a key beside it.
    QString text = fontMetrics().elidedText(shownPath(m_path), Qt::ElideMiddle, width() - besideText);
    setText(text.replace(u'&', QStringLiteral("&&")));
}

QSize LivePlace::sizeHint() const
{
    return {0, fontMetrics().height() + 4};
}

QSize LivePlace::minimumSizeHint() const
{
    return sizeHint();
}

void LivePlace::resizeEvent(QResizeEvent *event)
{
    QToolButton::resizeEvent(event);
    elide();
}
