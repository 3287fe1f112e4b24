#pragma once

#include <QStringList>
#include <QVariantMap>

#include <functional>

class QMimeData;

// What a clipboard or a drop holds, as files that can be imported.
struct PasteboardFiles
{
    QStringList paths;
    QVariantMap metadata; // "webURL" when a picture came with its address

    // Files on the clipboard are answered as they are. Otherwise the picture there (as encoded by its program when that
    // is a format the library takes, else its pixels as PNG) is written into a folder that `makeDirectory` makes, asked
    // for at most once. Nothing is downloaded. Main thread.
    static PasteboardFiles filesFromMimeData(const QMimeData *mimeData, const std::function<QString()> &makeDirectory);
};
