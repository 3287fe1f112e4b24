#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

// What can be told of the address of an image on a page. Any thread.

// The local name of what an address leads to: the text up to its last "?", and of that what follows the last "/".
QString fileNameFromUrl(const QString &address);
// The same as a name that any folder takes and that leaves room for an extension: no control characters, no dot in
// front, not too long, never empty.
QString safeFileNameFromUrl(const QString &address);
// With percent escapes; one that is relative, as pages write them, is seen from the page.
QUrl urlOfImage(const QString &address, const QString &pageUrl);
// What a browser would tell the image's server of the page: all of its address to the page's own server, else only
// which server that is, and nothing where that would lose encryption. Empty: nothing.
QByteArray refererFor(const QUrl &image, const QString &pageUrl);
