#pragma once

#include <QDesktopServices>
#include <QList>
#include <QObject>
#include <QUrl>

// Hears what the desktop is asked to open, and opens nothing.
class DesktopListener : public QObject
{
    Q_OBJECT
public:
    DesktopListener() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~DesktopListener() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};
