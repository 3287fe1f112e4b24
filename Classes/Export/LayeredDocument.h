#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Models/DataModel/ZQExportRepresentation.h"

#include <QList>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>

// A picture that becomes a layer.
struct LayeredPicture
{
    ZQExportRepresentation picture;
    QString name;      // of the layer
    QPoint offset;     // of its top left, from that of the canvas
    float opacity = 1; // 0 to 1
    QString file = {}; // of the asset, which is never written over; empty where it is the picture's
};

// Layered documents (PSD) of pictures. The processes that decode pack each into its layer, two at a time; here is only
// the document, and what of the packed layers is not in it yet. Any thread.
namespace LayeredDocument {

inline const QString errorDomain = QStringLiteral("zelto.layers");
enum Code {
    CannotRead = 1,
    DoesNotFit, // in a document that other programs open
    AlreadyThere,
    Cancelled, // by the thread's ZQCancellation
};

// What is missing in a document, a line for each picture, with its name.
struct Gaps
{
    QStringList leftOut;    // cannot be read, for the reason in the line
    QStringList incomplete; // only a part of the picture is in its file, and on its layer
};

// The largest width and the largest height, as the pictures are shown. Those that cannot be read are taken out of the
// list; `leftOut` receives a line for each, with the reason. What says no size of its own is drawn for it.
QSize largestSize(QList<LayeredPicture> &pictures, QStringList *leftOut);

// Writes the document to `path`, the first picture at the bottom: whole, or not at all. `replaces`: also over a file
// that is there. `didAdd` is called after each picture. With `gaps` a picture that cannot be read is left out and one
// that is incomplete goes in; both are added there. Without, they are errors.
bool write(const QList<LayeredPicture> &pictures, QSize canvas, const QString &path, bool replaces,
           const std::function<void()> &didAdd, ZQError *error = nullptr, Gaps *gaps = nullptr);

} // namespace LayeredDocument
