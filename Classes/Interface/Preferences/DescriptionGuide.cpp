#include "Classes/Interface/Preferences/DescriptionGuide.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QFile>
#include <QPushButton>
#include <QTextBrowser>
#include <QTextCursor>

namespace {

constexpr int closeCode = 1;
constexpr int guideWidth = 580;
constexpr int guideHeight = 320;

QString guide()
{
    QFile file(QStringLiteral(":/zelto/documents/UPLOADS.md"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Shows texts and nothing that they name: no picture is fetched or decoded here.
class GuideView final : public QTextBrowser
{
public:
    using QTextBrowser::QTextBrowser;
    QVariant loadResource(int, const QUrl &) override { return {}; }
};

} // namespace

DescriptionGuide::DescriptionGuide(QWidget *window) : Sheet(window, zqLocalized("What a description says"))
{
    setWidth(guideWidth);
    auto *text = new GuideView(this);
    text->setAccessibleName(zqLocalized("What a description says"));
    text->setTabChangesFocus(true);
    text->setMinimumHeight(guideHeight);
    QTextCursor(text->document()).insertMarkdown(guide());
    text->moveCursor(QTextCursor::Start);
    content()->addWidget(text);
    addButton(zqLocalized("Close"), closeCode, true);
}
