#pragma once

#include "Kit/Widgets/ZQTabStrip.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QLineEdit>
#include <QMenu>

// The main window as a person meets it.
class MainWindowTest : public MainWindowFixture
{
protected:
    ZQTabStrip &strip() { return *window().findChild<ZQTabStrip *>(); }
    QString tabs()
    {
        return strip().accessibleDescription() + u' ' + QString::number(strip().currentIndex()) + u'/' +
               QString::number(strip().count());
    }
    QLineEdit &search() { return *window().findChild<QLineEdit *>(QStringLiteral("Search")); }
    QMenu &menuOf(const char *title) { return *window().findChild<QMenu *>(QString::fromLatin1(title)); }
    static QString commandsOf(const QMenu &menu)
    {
        QStringList lines;
        for (const QAction *action : menu.actions()) {
            QStringList parts = {action->isSeparator() ? QStringLiteral("-") : action->text()};
            for (const QKeySequence &keys : action->shortcuts()) {
                parts.append(keys.toString());
            }
            lines.append(parts.join(u' ') + (action->isCheckable() ? QStringLiteral(" ✓") : QString()));
        }
        return lines.join(u'\n');
    }
};
