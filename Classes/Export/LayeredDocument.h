#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>

// A picture that becomes a layer.
struct LayeredPicture
{
    QString path;
    QString name;      // of the layer
    QPoint offset;     // of its top left, from that of the canvas
    float opacity = 1; // 0 to 1
};

// Layered documents (PSD) of picture files. One picture is read at a time, at full size. Any thread.
namespace LayeredDocument {

inline const QString errorDomain = QStringLiteral("zelto.layers");
enum Code {
    CannotRead = 1,
    DoesNotFit, // in a document that other programs open
    AlreadyThere,
    Cancelled, // by the thread's ZQCancellation
};

// The largest width and the largest height, as the pictures are shown. Those that cannot be read are taken out of the
// list; `leftOut` receives a line for each, with the reason.
QSize largestSize(QList<LayeredPicture> &pictures, QStringList *leftOut);

// Writes the document to `path`, the first picture at the bottom: whole, or not at all. `replaces`: also over a file
// that is there. `didAdd` is called after each layer.
bool write(const QList<LayeredPicture> &pictures, QSize canvas, const QString &path, bool replaces,
           const std::function<void()> &didAdd, ZQError *error = nullptr);

} // namespace LayeredDocument
