#include "Classes/Interface/Preferences/DescriptionGuide.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QFile>
#include <QPushButton>
#include <QTextBrowser>

namespace {

constexpr int closeCode = 1;
constexpr int guideWidth = 580;
constexpr int guideHeight = 320;

QString guide()
{
    QFile file(QStringLiteral(":/zelto/documents/UPLOADS.md"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

DescriptionGuide::DescriptionGuide(QWidget *window) : Sheet(window, zqLocalized("What a description says"))
{
    setWidth(guideWidth);
    auto *text = new QTextBrowser(this);
    text->setAccessibleName(zqLocalized("What a description says"));
    text->setTabChangesFocus(true);
    text->setMinimumHeight(guideHeight);
    text->setMarkdown(guide());
    content()->addWidget(text);
    addButton(zqLocalized("Close"), closeCode, true);
}
