#pragma once

#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <functional>

class QMimeData;

// What a clipboard or a drop holds, as files that can be imported.
struct PasteboardFiles
{
    QStringList paths;
    QVariantMap metadata; // "webURL" when a picture came with its address, "webPageURL" with that of its link

    // Whether there is a picture in a format the library takes. Looks at the names of the formats only.
    static bool hasPicture(const QMimeData &mimeData);
    // Whether anything can come of it: a picture, also one in an address, or files. An address of the web alone is
    // none.
    static bool hasContent(const QMimeData &mimeData);
    // Browsers give the address of what is dragged, or of the link around it; empty when there is none of the web.
    static QUrl linkOf(const QMimeData &mimeData);

    // Files on the clipboard are answered as they are. Otherwise the picture there, as its program has encoded it, is
    // written into a folder that `makeDirectory` makes, asked for at most once. Nothing is downloaded. Main thread.
    static PasteboardFiles filesFromMimeData(const QMimeData *mimeData, const std::function<QString()> &makeDirectory);
};
